// What DitherFilter means.
#pragma once

#include "filters/dither_matrices.h"
#include "fixtures/filter_check.h"

namespace kzb::test {

inline uint8_t dithered(const DitherMatrix &matrix, int32_t levels, int32_t x, int32_t y, uint8_t v) {
    const int32_t n = matrix.size;
    const int32_t level = v * (levels - 1) / 256;
    const int32_t fraction = v * (n * n + 1) / 256;
    const int32_t threshold = matrix.thresholds[static_cast<size_t>(y % n * n + x % n)];
    return static_cast<uint8_t>((threshold < fraction ? level : level + 1) * 255 / (levels - 1));
}

inline Reference dithering(const DitherMatrix &matrix, int32_t levels) {
    return [&matrix, levels](const PlainImage &source, const PlainImage &destination) {
        for (int32_t y = 0; y < source.height; ++y)
            for (int32_t x = 0; x < source.width; ++x)
                for (Channel channel : source.channels())
                    destination.set(x, y, channel, dithered(matrix, levels, x, y, source.get(x, y, channel)));
    };
}

} // namespace kzb::test
