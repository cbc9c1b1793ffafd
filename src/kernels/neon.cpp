#include "kernels/neon.h"

#include <algorithm>
#include <cmath>

namespace kzb::kernels {

namespace {

// The first sum of squares with 2 * sqrt(sum) of 255 or more, and all beyond.
constexpr int32_t brightest = (255 * 255 + 3) / 4;

// Exact in single precision: a root of a whole number up to 255² that is not whole lies at least 1 / 510 below the next
// whole number.
void neon_plainly(uint8_t *__restrict target, const uint8_t *row, const uint8_t *below, size_t step, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const int32_t across = row[i] - row[i + step];
        const int32_t down = row[i] - below[i];
        const int32_t sum = std::min(across * across + down * down, brightest);
        target[i] = static_cast<uint8_t>(static_cast<int32_t>(std::sqrt(static_cast<float>(4 * sum))));
    }
}

} // namespace

decltype(neon) neon = compiled<neon_plainly>();

} // namespace kzb::kernels
