#include "image/storage.h"

namespace kzb {

uint8_t *byte_at(ImageRecord &image, int64_t row, int64_t byte) {
    const int64_t at = (image.RowOffset + row) * image.RowSize + byte;
    if (at < 0 || at >= image.TotalSize) return nullptr;
    if (!image.IsMapping) return image.pixel_buffer + at;
    const auto storage_row = static_cast<int32_t>(at / image.RowSize);
    uint8_t *address = image.row_accessor(image, storage_row - image.RowOffset);
    return address == nullptr ? nullptr : address + at % image.RowSize;
}

uint8_t *channel_at(ImageRecord &image, int64_t x, int64_t y, int32_t offset) {
    const int64_t byte = x * image.PixelSize + offset;
    if (x < 0 || x >= image.Width || y < 0 || y >= image.Height) return byte_at(image, y, byte);
    uint8_t *address = image.row_accessor(image, static_cast<int32_t>(y));
    return address == nullptr ? nullptr : address + byte;
}

namespace {

// Bytes from the pixel buffer to the end of what the image may touch. The caller of the memory-block constructor may
// have named a row size below the row's pixels.
uint64_t extent(const ImageRecord &image) {
    const int64_t last_row = static_cast<int64_t>(image.RowOffset) + image.Height - 1;
    return static_cast<uint64_t>(std::max(
        image.TotalSize, last_row * image.RowSize + static_cast<int64_t>(image.Width) * image.PixelSize));
}

bool common_bytes(const ImageRecord &a, const ImageRecord &b) {
    if (a.IsMapping || b.IsMapping) return a.storage_id == b.storage_id;
    const auto a_start = reinterpret_cast<uintptr_t>(a.pixel_buffer);
    const auto b_start = reinterpret_cast<uintptr_t>(b.pixel_buffer);
    return a_start < b_start + extent(b) && b_start < a_start + extent(a);
}

} // namespace

Sharing sharing_of(const ImageRecord &a, const ImageRecord &b, const Channels &channels) {
    if (!common_bytes(a, b)) return Sharing::none;
    const bool same_start = a.IsMapping ? b.IsMapping : !b.IsMapping && a.pixel_buffer == b.pixel_buffer;
    const bool same_pixels = same_start && a.RowOffset == b.RowOffset && a.RowSize == b.RowSize &&
                             a.PixelSize == b.PixelSize && offsets_of(a, channels) == offsets_of(b, channels);
    return same_pixels ? Sharing::identical : Sharing::mixed;
}

bool rows_may_run(const ImageRecord &source, const ImageRecord &destination, const Channels &channels, int64_t width,
                  int64_t height) {
    if (!holds(destination, width, height) || sharing_of(source, destination, channels) == Sharing::mixed) return false;
    const ChannelOffsets offsets = offsets_of(destination, channels);
    for (size_t i = 0; i < channels.size(); ++i)
        for (size_t j = 0; j < i; ++j)
            if ((offsets[i] - offsets[j]) % destination.PixelSize == 0) return false;
    return true;
}

} // namespace kzb
