// Rows handing fractions of their bytes to the next pixel or row, in 16-bit arithmetic.
#pragma once

#include "kernels/row_function.h"

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// A number for which byte * factor / 2^16, rounded down, is part_of(byte, fraction) for each byte; -1 where there is
// none. There is one unless the fraction is 1, or a product of it is rounded to a whole number and others are not:
// fractions differ in their parts only where one of m / n with n up to 255 lies between them, and these lie further
// than 2^-16 apart.
int32_t factor_of(double fraction);

// target[i] = source[i] - part of source[i] + part of before[i], for i below count. The target overlaps no other.
extern const RowFunction<void(uint8_t *target, const uint8_t *source, const uint8_t *before, uint16_t factor,
                              size_t count)>
    hand_parts_on;

// The same with a factor for each byte.
extern const RowFunction<void(uint8_t *target, const uint8_t *source, const uint8_t *before, const uint16_t *factors,
                              size_t count)>
    hand_own_parts_on;

// The same for any fraction.
void hand_exact_parts_on(uint8_t *target, const uint8_t *source, const uint8_t *before, double fraction, size_t count);

// Pixels of `channels` bytes from rows `row_step` bytes apart, each pixel from a row of its own:
// target[i] = first_row[rows[i] * row_step + i] for the bytes i below count. The bytes of a pixel have one row, and
// from pixel to pixel rows only grow or only shrink.
extern const RowFunction<void(uint8_t *target, const uint8_t *first_row, ptrdiff_t row_step, const uint8_t *rows,
                              size_t channels, size_t count)>
    take_stairs;

} // namespace kzb::kernels
