#include "image/packed_rows.h"

#include "image/mapped_store.h"
#include "image/storage.h"
#include "kernels/convert.h"

#include <algorithm>
#include <cstring>

namespace kzb {

Channels in_byte_order(const Channels &channels, const ImageRecord &image) {
    std::array<Channel, 4> sorted = {};
    for (size_t i = 0; i < channels.size(); ++i) {
        size_t place = i;
        for (; place > 0 && offset_of(image, sorted[place - 1]) > offset_of(image, channels[i]); --place)
            sorted[place] = sorted[place - 1];
        sorted[place] = channels[i];
    }
    Channels ordered;
    for (size_t i = 0; i < channels.size(); ++i) ordered.add(sorted[i]);
    return ordered;
}

bool rows_lie_apart(const ImageRecord &image, const Channels &channels, int32_t width) {
    const int64_t last_pixel = (static_cast<int64_t>(width) - 1) * image.PixelSize;
    return std::all_of(channels.begin(), channels.end(),
                       [&](Channel channel) { return last_pixel + offset_of(image, channel) < image.RowSize; });
}

PackedRows::PackedRows(ImageRecord &image, const Channels &channels, int32_t width, bool plainly)
    : image_(image), offsets_(offsets_of(image, channels)), channels_(channels.size()), width_(width),
      way_(plainly ? Way::plain : Way::stepped), packed_(static_cast<int64_t>(bytes())) {
    if (plainly || static_cast<size_t>(image.PixelSize) != channels_) return;
    for (size_t i = 1; i < channels_; ++i)
        if (offsets_[i] != offsets_[i - 1] + 1) return;
    way_ = Way::dense;
}

const uint8_t *PackedRows::read(int32_t y) {
    if (way_ == Way::plain) {
        uint8_t *packed = packed_.get();
        for (int32_t x = 0; x < width_; ++x) {
            for (size_t i = 0; i < channels_; ++i) {
                const uint8_t *byte = channel_at(image_, x, y, offsets_[i]);
                *packed++ = byte == nullptr ? uint8_t{0} : *byte;
            }
        }
        return packed_.get();
    }
    const uint8_t *row = walked_row(image_, y);
    if (row == nullptr) return nullptr;
    if (way_ == Way::dense) return row + offsets_[0];
    for (size_t i = 0; i < channels_; ++i)
        kernels::copy_channel(packed_.get() + i, channels_, row + offsets_[i], pixel_size(), 0, pixels());
    return packed_.get();
}

bool PackedRows::write(int32_t y, const uint8_t *packed) {
    if (way_ == Way::plain) {
        for (int32_t x = 0; x < width_; ++x) {
            for (size_t i = 0; i < channels_; ++i, ++packed)
                if (uint8_t *byte = channel_at(image_, x, y, offsets_[i])) *byte = *packed;
        }
        return true;
    }
    uint8_t *row = walked_row(image_, y);
    if (row == nullptr) return false;
    if (way_ == Way::dense) {
        std::memcpy(row + offsets_[0], packed, bytes());
        return true;
    }
    for (size_t i = 0; i < channels_; ++i)
        kernels::copy_channel(row + offsets_[i], pixel_size(), packed + i, channels_, 0, pixels());
    return true;
}

uint8_t *PackedRows::place(int32_t y) {
    if (way_ != Way::dense) return packed_.get();
    uint8_t *row = image_.row_accessor(image_, y);
    return row == nullptr ? nullptr : row + offsets_[0];
}

void RowCopy::take(int32_t y) {
    const uint8_t *row = byte_at(image_, y, 0);
    length_ = row == nullptr ? 0 : image_.RowSize;
    if (row != nullptr) std::memcpy(bytes_.get(), row, static_cast<size_t>(length_));
}

} // namespace kzb
