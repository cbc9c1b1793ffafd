#include "filters/dither.h"

#include "filters/dither_matrices.h"
#include "filters/tables.h"
#include "image/mapped_store.h"
#include "image/plain_walk.h"
#include "kernels/look_up.h"
#include "platform/buffer.h"

namespace kzb {

namespace {

// Where a byte lies among the levels, whatever its pixel's threshold.
struct Levels {
    Table lower;
    Table upper;
    Table fraction; // a threshold below it selects the lower level

    Levels(int32_t levels, int32_t cells) {
        const int32_t steps = levels - 1;
        for (int32_t v = 0; v < 256; ++v) {
            const auto i = static_cast<size_t>(v);
            const int32_t level = v * steps / 256;
            lower[i] = static_cast<uint8_t>(level * 255 / steps);
            upper[i] = static_cast<uint8_t>((level + 1) * 255 / steps);
            fraction[i] = static_cast<uint8_t>(v * (cells + 1) / 256);
        }
    }

    uint8_t dithered(uint8_t value, uint8_t threshold) const {
        return threshold < fraction[value] ? lower[value] : upper[value];
    }
};

uint8_t threshold_at(const DitherMatrix &matrix, int32_t x, int32_t y) {
    return matrix.thresholds[static_cast<size_t>(y % matrix.size * matrix.size + x % matrix.size)];
}

void dither_plainly(ImageRecord &source, ImageRecord &destination, const Channels &channels, const DitherMatrix &matrix,
                    const Levels &levels) {
    walk_plainly(source, destination, channels, source.Width, source.Height,
                 [&](size_t, int32_t x, int32_t y, uint8_t value) {
                     return levels.dithered(value, threshold_at(matrix, x, y));
                 });
}

// The pixels that share a column of the matrix go through one table. False when there is no memory for the tables.
bool dither_by_rows(ImageRecord &source, ImageRecord &destination, const Channels &channels, const DitherMatrix &matrix,
                    const Levels &levels) {
    Buffer<Table> tables(static_cast<int64_t>(matrix.thresholds.size()));
    if (!tables) return false;
    for (size_t i = 0; i < matrix.thresholds.size(); ++i)
        for (size_t v = 0; v < 256; ++v) tables[i][v] = levels.dithered(static_cast<uint8_t>(v), matrix.thresholds[i]);

    const int32_t size = matrix.size;
    const int32_t width = source.Width;
    for (int32_t y = 0; y < source.Height; ++y) {
        const uint8_t *row = walked_row(source, y);
        uint8_t *target = walked_row(destination, y);
        if (row == nullptr || target == nullptr) return true;
        for (int32_t x = 0; x < std::min(size, width); ++x) {
            const uint8_t *table = tables[static_cast<size_t>(y % size * size + x)].data();
            for (Channel channel : channels)
                kernels::look_up(target + static_cast<int64_t>(x) * destination.PixelSize +
                                     offset_of(destination, channel),
                                 static_cast<size_t>(destination.PixelSize) * static_cast<size_t>(size),
                                 row + static_cast<int64_t>(x) * source.PixelSize + offset_of(source, channel),
                                 static_cast<size_t>(source.PixelSize) * static_cast<size_t>(size), table,
                                 static_cast<size_t>((width - x - 1) / size + 1));
        }
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
    const Levels levels(level_count, matrix.size * matrix.size);
    if (!rows_may_run(source, destination, channels, source.Width, source.Height) ||
        !dither_by_rows(source, destination, channels, matrix, levels))
        dither_plainly(source, destination, channels, matrix, levels);
    return result.release();
}

} // namespace kzb
