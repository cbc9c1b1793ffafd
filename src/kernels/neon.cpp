#include "kernels/neon.h"

#include <algorithm>
#include <array>

namespace kzb::kernels {

namespace {

// The first sum of squares with 2 * sqrt(sum) of 255 or more, and all beyond.
constexpr int32_t brightest = (255 * 255 + 3) / 4;

// 2 * sqrt(sum), truncated: the largest v with v² <= 4 sum.
constexpr std::array<uint8_t, brightest + 1> magnitudes = [] {
    std::array<uint8_t, brightest + 1> table = {};
    int32_t v = 0;
    for (int32_t sum = 0; sum <= brightest; ++sum) {
        while ((v + 1) * (v + 1) <= 4 * sum) ++v;
        table[static_cast<size_t>(sum)] = static_cast<uint8_t>(v);
    }
    return table;
}();
static_assert(magnitudes[brightest] == 255 && magnitudes[brightest - 1] == 254);

} // namespace

void neon(uint8_t *target, const uint8_t *row, const uint8_t *below, size_t step, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const int32_t across = row[i] - row[i + step];
        const int32_t down = row[i] - below[i];
        target[i] = magnitudes[static_cast<size_t>(std::min(across * across + down * down, brightest))];
    }
}

} // namespace kzb::kernels
