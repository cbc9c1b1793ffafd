// Pixels taken from random places nearby.
#pragma once

#include "kernels/row_function.h"

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// Division of numbers from 0 to 2^31 - 1 by 1 to 2^32 - 1. Exact: number + 1/2 keeps its quotient half a divisor's part
// away from whole numbers, and the rounded reciprocal and product shift it by no more than a 2^-20th of that.
struct Remainder {
    double divisor;
    double reciprocal;

    explicit Remainder(uint32_t by) : divisor(by), reciprocal(1.0 / by) {}
    double of(int32_t number) const {
        return number - static_cast<double>(static_cast<int32_t>((number + 0.5) * reciprocal)) * divisor;
    }
};

// Each number, 0 or more, becomes a place at most `level` away from its own, which is `own` for the first and grows by
// `step`: own + remainder - level, kept within 0 to limit - 1. The divisor is 2 * level + 1.
extern const RowFunction<void(int32_t *numbers, const Remainder &remainder, int32_t own, int32_t step, int32_t level,
                              int32_t limit, size_t count)>
    place_near;

// Writes `count` pixels of `channels` bytes, the i-th from the row rows[places[i] - first] and its pixel columns[i]. Of
// the rows, all but the target may change meanwhile; pixels are taken as they then are.
void gather_pixels(uint8_t *target, const uint8_t *const *rows, const int32_t *places, int32_t first,
                   const int32_t *columns, size_t channels, size_t count);

} // namespace kzb::kernels
