// Bytes through a table.
#pragma once

#include "kernels/row_function.h"

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// target[i * target_step] = table[source[i * source_step]] for i below count. Target and source may be the same bytes.
extern const RowFunction<void(uint8_t *target, size_t target_step, const uint8_t *source, size_t source_step,
                              const uint8_t *table, size_t count)>
    look_up;

// target[i * target_step] = table[256 * target[i * target_step] + source[i * source_step]] for i below count. Target
// and source may be the same bytes.
extern const RowFunction<void(uint8_t *target, size_t target_step, const uint8_t *source, size_t source_step,
                              const uint8_t *table, size_t count)>
    look_up_pairs;

} // namespace kzb::kernels
