#include "filters/fractional_blur.h"

#include "image/destination.h"
#include "image/packed_rows.h"
#include "image/storage.h"
#include "kernels/three_taps.h"

#include <cmath>
#include <cstring>

namespace kzb {

namespace {

using kernels::ThreeTaps;

ThreeTaps taps_of(double radius) {
    const double f = std::isfinite(radius) ? radius - std::floor(radius) : 0;
    return {f, 1 / (2 * f + 1)};
}

// Down the columns: each row is copied before it is written, the row below is read as it stands.
bool blur_columns_plainly(ImageRecord &source, ImageRecord &destination, const Channels &channels,
                          const ThreeTaps &taps) {
    const ChannelOffsets from = offsets_of(source, channels);
    const ChannelOffsets to = offsets_of(destination, channels);
    RowCopy copies[] = {RowCopy(source), RowCopy(source)};
    if (!copies[0] || !copies[1]) return false;
    for (int32_t y = 0; y < source.Height; ++y) {
        RowCopy &row = copies[y % 2];
        const RowCopy &above = copies[(y + 1) % 2];
        row.take(y);
        for (int32_t x = 0; x < source.Width; ++x) {
            for (size_t i = 0; i < channels.size(); ++i) {
                const int64_t byte = static_cast<int64_t>(x) * source.PixelSize + from[i];
                const uint8_t centre = row[byte];
                const uint8_t *below =
                    y == 0 || y == source.Height - 1 ? nullptr : channel_at(source, x, y + 1, from[i]);
                const uint8_t value = taps(centre, y == 0 ? centre : above[byte], below == nullptr ? centre : *below);
                if (uint8_t *written = channel_at(destination, x, y, to[i])) *written = value;
            }
        }
    }
    return true;
}

// Along the destination's rows, over the source's width and height.
void blur_lines_plainly(const ImageRecord &source, ImageRecord &destination, const Channels &channels,
                        const ThreeTaps &taps) {
    const ChannelOffsets offsets = offsets_of(destination, channels);
    RowCopy row(destination);
    if (!row) return;
    const int32_t last = source.Width - 1;
    for (int32_t y = 0; y < source.Height; ++y) {
        row.take(y);
        for (int32_t x = 0; x <= last; ++x) {
            for (size_t i = 0; i < channels.size(); ++i) {
                const int64_t step = destination.PixelSize;
                const int64_t byte = x * step + offsets[i];
                const uint8_t centre = row[byte];
                const uint8_t left = x == 0 || x == last ? centre : row[byte - step];
                const uint8_t right = x == last ? centre : row[byte + step];
                if (uint8_t *written = channel_at(destination, x, y, offsets[i])) *written = taps(centre, left, right);
            }
        }
    }
}

// A packed row of `count` bytes in pixels of `step`.
void blur_line(uint8_t *result, const uint8_t *row, const ThreeTaps &taps, size_t step, size_t count) {
    const size_t last = count - step;
    if (last != 0) {
        kernels::three_taps(result, row, row, row + step, taps, step);
        kernels::three_taps(result + step, row + step, row, row + 2 * step, taps, last - step);
    }
    kernels::three_taps(result + last, row + last, row + last, row + last, taps, step);
}

// Both passes row by row. A row is finished as soon as the one below it has been read, which serves in place as well.
void blur_rows(ImageRecord &source, ImageRecord &destination, const Channels &channels, const ThreeTaps &taps) {
    PackedRows rows(source, channels, source.Width, false);
    PackedRows result(destination, channels, source.Width, false);
    const size_t bytes = rows.bytes();
    Buffer<uint8_t> above(static_cast<int64_t>(bytes)), row(static_cast<int64_t>(bytes)),
        below(static_cast<int64_t>(bytes)), column_blurred(static_cast<int64_t>(bytes)),
        blurred(static_cast<int64_t>(bytes));
    if (!rows || !result || !above || !row || !below || !column_blurred || !blurred) return;

    const auto copy_row = [&](int32_t y, Buffer<uint8_t> &copy) {
        const uint8_t *packed = rows.read(y);
        if (packed != nullptr) std::memcpy(copy.get(), packed, bytes);
        return packed != nullptr;
    };
    const int32_t last = source.Height - 1;
    if (!copy_row(0, row)) return;
    for (int32_t y = 0; y <= last; ++y) {
        if (y < last && !copy_row(y + 1, below)) return;
        kernels::three_taps(column_blurred.get(), row.get(), y == 0 ? row.get() : above.get(),
                            y == 0 || y == last ? row.get() : below.get(), taps, bytes);
        blur_line(blurred.get(), column_blurred.get(), taps, channels.size(), bytes);
        if (!result.write(y, blurred.get())) return;
        std::swap(above, row);
        std::swap(row, below);
    }
}

void fractional_blur(ImageRecord &source, ImageRecord &destination, const ThreeTaps &taps) {
    const Channels channels = channels_of(source);
    if (channels.size() == 0 || source.Width <= 0 || source.Height <= 0) return;
    if (rows_may_run(source, destination, channels, source.Width, source.Height) &&
        rows_lie_apart(source, channels, source.Width) && rows_lie_apart(destination, channels, source.Width))
        blur_rows(source, destination, in_byte_order(channels, source), taps);
    else if (blur_columns_plainly(source, destination, channels, taps))
        blur_lines_plainly(source, destination, channels, taps);
}

} // namespace

ImageObject box_blur_fractional_filter(ImageObject image, ImageObject dest, double radius) {
    auto passage = open_passage(image, dest);
    if (!passage) return nullptr;
    fractional_blur(passage->source, passage->destination, taps_of(radius));
    return passage->result.release();
}

} // namespace kzb
