// What DiffuseFilter means after srand(diffuse_seed).
#pragma once

#include "fixtures/filter_check.h"

#include <algorithm>
#include <cstdlib>

namespace kzb::test {

inline constexpr unsigned diffuse_seed = 4711;

// Draws from the C library's sequence, which the module shares: a column, then a row, for each pixel.
inline Reference diffusion(int64_t level) {
    return [=](const PlainImage &source, const PlainImage &destination) {
        const int64_t span = 2 * level + 1;
        std::srand(diffuse_seed);
        for (int64_t y = 0; y < source.height; ++y) {
            for (int64_t x = 0; x < source.width; ++x) {
                const int64_t a = std::rand();
                const int64_t b = std::rand();
                const int64_t u = std::clamp<int64_t>(x + a % span - level, 0, source.width - 1);
                const int64_t v = std::clamp<int64_t>(y + b % span - level, 0, source.height - 1);
                for (Channel channel : source.channels()) destination.set(x, y, channel, source.get(u, v, channel));
            }
        }
    };
}

} // namespace kzb::test
