// Bytes through a table.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// target[i * target_step] = table[source[i * source_step]] for i below count. Target and source may be the same bytes.
void look_up(uint8_t *target, size_t target_step, const uint8_t *source, size_t source_step, const uint8_t *table,
             size_t count);

// target[i * target_step] = table[256 * target[i * target_step] + source[i * source_step]] for i below count. Target
// and source may be the same bytes.
void look_up_pairs(uint8_t *target, size_t target_step, const uint8_t *source, size_t source_step, const uint8_t *table,
                   size_t count);

} // namespace kzb::kernels
