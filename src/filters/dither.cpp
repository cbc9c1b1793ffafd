#include "filters/dither.h"

#include "filters/dither_matrices.h"
#include "image/destination.h"
#include "image/mapped_store.h"
#include "image/packed_rows.h"
#include "image/plain_walk.h"
#include "kernels/dither.h"
#include "platform/buffer.h"

#include <algorithm>
#include <cstring>

namespace kzb {

namespace {

uint8_t threshold_at(const DitherMatrix &matrix, int32_t x, int32_t y) {
    return matrix.thresholds[static_cast<size_t>(y % matrix.size * matrix.size + x % matrix.size)];
}

void dither_plainly(ImageRecord &source, ImageRecord &destination, const Channels &channels, const DitherMatrix &matrix,
                    const kernels::DitherScale &scale) {
    walk_plainly(source, destination, channels, source.Width, source.Height,
                 [&](size_t, int32_t x, int32_t y, uint8_t value) { return scale(value, threshold_at(matrix, x, y)); });
}

// A byte for each byte of a row: the thresholds of its pixels, and which bytes are not a channel's and stay. Both
// repeat.
class DitherPattern {
public:
    // For rows of `width` pixels of `step` bytes, whose channels lie at these places of each.
    DitherPattern(const DitherMatrix &matrix, int32_t width, int32_t height, size_t step, const ChannelOffsets &places,
                  size_t channels)
        : period_(step * static_cast<size_t>(matrix.size)), rows_(std::min(matrix.size, height)) {
        constexpr size_t pass = 1024;
        length_ = std::min((pass + period_ - 1) / period_ * period_, static_cast<size_t>(width) * step);
        bytes_ = Buffer<uint8_t>(static_cast<int64_t>(length_) * (rows_ + 1));
        if (!bytes_) return;
        std::memset(&bytes_[0], 0xff, length_);
        for (size_t i = 0; i < channels; ++i)
            for (auto at = static_cast<size_t>(places[i]); at < length_; at += step) bytes_[at] = 0;
        for (int32_t y = 0; y < rows_; ++y) {
            uint8_t *row = &bytes_[length_ * static_cast<size_t>(y + 1)];
            for (size_t at = 0; at < std::min(length_, period_); ++at)
                row[at] = threshold_at(matrix, static_cast<int32_t>(at / step), y);
            for (size_t at = period_; at < length_; ++at) row[at] = row[at - period_];
        }
    }

    // False when there is no memory for it.
    explicit operator bool() const { return static_cast<bool>(bytes_); }

    void dither(uint8_t *target, const uint8_t *source, int32_t y, const kernels::DitherScale &scale,
                size_t count) const {
        const uint8_t *thresholds = &bytes_[length_ * static_cast<size_t>(y % rows_ + 1)];
        for (size_t at = 0; at < count; at += length_)
            kernels::dither(target + at, source + at, thresholds, &bytes_[0], scale, std::min(length_, count - at));
    }

private:
    size_t period_, length_;
    int32_t rows_;
    Buffer<uint8_t> bytes_; // what stays, then the thresholds row by row
};

// Whether the channels lie at the same places of pixels of the same size.
bool alike(const ImageRecord &source, const ImageRecord &destination, const ChannelOffsets &from, size_t channels,
           const ChannelOffsets &to) {
    if (source.PixelSize != destination.PixelSize || from != to) return false;
    const auto [low, high] = std::minmax_element(from.begin(), from.begin() + channels);
    return *high - *low < source.PixelSize;
}

// False when there is no memory for it.
bool dither_by_rows(ImageRecord &source, ImageRecord &destination, const Channels &channels, const DitherMatrix &matrix,
                    const kernels::DitherScale &scale) {
    const int32_t width = source.Width, height = source.Height;
    if (width < 1 || channels.size() == 0) return true;
    const ChannelOffsets from = offsets_of(source, channels);
    if (alike(source, destination, from, channels.size(), offsets_of(destination, channels))) {
        const auto [low, high] = std::minmax_element(from.begin(), from.begin() + channels.size());
        ChannelOffsets places = from;
        for (int32_t &place : places) place -= *low;
        const auto step = static_cast<size_t>(source.PixelSize);
        const DitherPattern pattern(matrix, width, height, step, places, channels.size());
        if (!pattern) return false;
        const size_t count = static_cast<size_t>(width - 1) * step + static_cast<size_t>(*high - *low) + 1;
        for (int32_t y = 0; y < height; ++y) {
            const uint8_t *row = walked_row(source, y);
            uint8_t *target = walked_row(destination, y);
            if (row == nullptr || target == nullptr) return true;
            pattern.dither(target + *low, row + *low, y, scale, count);
        }
        return true;
    }
    const DitherPattern pattern(matrix, width, height, channels.size(), {0, 1, 2, 3}, channels.size());
    PackedRows rows(source, channels, width, false);
    PackedRows written(destination, channels, width, false);
    Buffer<uint8_t> line(static_cast<int64_t>(rows.bytes()));
    if (!pattern || !rows || !written || !line) return false;
    for (int32_t y = 0; y < height; ++y) {
        const uint8_t *row = rows.read(y);
        if (row == nullptr) return true;
        pattern.dither(line.get(), row, y, scale, rows.bytes());
        if (!written.write(y, line.get())) return true;
    }
    return true;
}

} // namespace

ImageObject dither_filter(ImageObject image, ImageObject dest, int32_t code, int32_t level_count) {
    auto passage = open_passage(image, dest);
    if (!passage) return nullptr;
    auto &[source, destination, result] = *passage;
    const Channels channels = channels_of(source);
    const DitherMatrix matrix = dither_matrix(code);
    if (matrix.size == 0 || level_count < 2 || level_count > 256) return result.release();
    const kernels::DitherScale scale(level_count, matrix.size * matrix.size);
    if (!rows_may_run(source, destination, channels, source.Width, source.Height) ||
        !dither_by_rows(source, destination, channels, matrix, scale))
        dither_plainly(source, destination, channels, matrix, scale);
    return result.release();
}

} // namespace kzb
