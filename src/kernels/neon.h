// Gradients.
#pragma once

#include "kernels/row_function.h"

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// target[i] = 2 * sqrt((row[i] - row[i + step])² + (row[i] - below[i])²), truncated, at most 255, for i below count.
// The target is apart from both rows.
extern const RowFunction<void(uint8_t *target, const uint8_t *row, const uint8_t *below, size_t step, size_t count)>
    neon;

} // namespace kzb::kernels
