// A value drawn toward its two neighbours.
#pragma once

#include "kernels/row_function.h"

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// The centre with weight 1 and its neighbours with weight f, 0 <= f < 1; w is 1 / (2 f + 1).
struct ThreeTaps {
    double f;
    double w;

    uint8_t operator()(int32_t centre, int32_t before, int32_t after) const {
        return static_cast<uint8_t>(static_cast<int32_t>((centre + (before + after) * f) * w));
    }
};

// result[i] = taps(centre[i], before[i], after[i]). The rows may overlap, the result overlaps none of them.
extern const RowFunction<void(uint8_t *result, const uint8_t *centre, const uint8_t *before, const uint8_t *after,
                              const ThreeTaps &taps, size_t count)>
    three_taps;

} // namespace kzb::kernels
