#include "filters/neon.h"

#include "image/destination.h"
#include "image/packed_rows.h"
#include "image/storage.h"
#include "kernels/convert.h"
#include "kernels/neon.h"

#include <cstring>

namespace kzb {

namespace {

// Packs one pixel more than the row has. Only RowSize bytes of a row can be read; what would follow counts as 0.
bool read_row_and_next_pixel(ImageRecord &image, int32_t y, const Channels &channels, uint8_t *packed) {
    const uint8_t *row = image.row_accessor(image, y);
    if (row == nullptr) return false;
    const int64_t step = image.PixelSize;
    const int64_t count = static_cast<int64_t>(image.Width) + 1;
    const ChannelOffsets offsets = offsets_of(image, channels);
    const int64_t last_offset = *std::max_element(offsets.begin(), offsets.begin() + channels.size());
    const int64_t whole = std::clamp<int64_t>((image.RowSize - last_offset + step - 1) / step, 0, count);
    const kernels::Conversion packing = {
        {channels.size(), {0, 1, 2, 3}}, {static_cast<size_t>(step), offsets}, channels.size(), false, 0};
    kernels::convert(packed, row, packing, static_cast<size_t>(whole));
    for (int64_t x = whole; x < count; ++x) {
        for (size_t i = 0; i < channels.size(); ++i) {
            const int64_t byte = x * step + offsets[i];
            packed[static_cast<size_t>(x) * channels.size() + i] = byte < image.RowSize ? row[byte] : uint8_t{0};
        }
    }
    return true;
}

} // namespace

ImageObject neon_filter(ImageObject image, ImageObject dest) {
    auto passage = open_passage(image, dest);
    if (!passage) return nullptr;
    auto &[source, destination, result] = *passage;
    const Channels listed = channels_of(source);
    // A view without columns may begin anywhere, and its rows have no next pixel.
    if (listed.size() == 0 || source.Width <= 0) return result.release();
    const bool plain_destination = !rows_may_run(source, destination, listed, source.Width, source.Height);
    const Channels channels = plain_destination ? listed : in_byte_order(listed, source);
    PackedRows written(destination, channels, source.Width, plain_destination);
    const size_t step = channels.size();
    const auto row_bytes = static_cast<int64_t>(written.bytes() + step);
    Buffer<uint8_t> row(row_bytes);
    Buffer<uint8_t> below(row_bytes);
    if (!written || !row || !below) return result.release();
    if (!read_row_and_next_pixel(source, 0, channels, row.get())) return result.release();
    const int32_t height = source.Height;
    for (int32_t y = 0; y < height; ++y) {
        if (y + 1 == height)
            std::memset(below.get(), 0, static_cast<size_t>(row_bytes));
        else if (!read_row_and_next_pixel(source, y + 1, channels, below.get()))
            break;
        uint8_t *target = written.place(y);
        if (target == nullptr) break;
        kernels::neon(target, row.get(), below.get(), step, written.bytes());
        if (!written.finish(y)) break;
        std::swap(row, below);
    }
    return result.release();
}

} // namespace kzb
