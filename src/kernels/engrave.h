// Differences to a neighbour, around a middle gray.
#pragma once

#include "kernels/row_function.h"

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// target[i] = row[i] - neighbours[i] + 128, clamped, for i below count in ascending order. Any of the three may be the
// same bytes, shifted or not: each byte is read as it then is.
extern const RowFunction<void(uint8_t *target, const uint8_t *row, const uint8_t *neighbours, size_t count)> engrave;

// The same for `count` pixels with one neighbour for all.
void engrave_against(uint8_t *target, const uint8_t *row, const uint8_t *neighbour, size_t channels, size_t count);

} // namespace kzb::kernels
