// Runs of one to four bytes moved from place to place. Steps are bytes from one run to the next and may be negative.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// target[i] = source[i] for i below count, `bytes` bytes each. The two share no byte.
void move_runs(uint8_t *target, ptrdiff_t target_step, const uint8_t *source, ptrdiff_t source_step, size_t count,
               size_t bytes);

// target[i] = the `bytes` bytes at value, for i below count.
void fill_runs(uint8_t *target, ptrdiff_t step, const uint8_t *value, size_t count, size_t bytes);

// The run at target + shift + places[i] = source[i], for i below count, `bytes` bytes each.
void scatter_runs(uint8_t *target, ptrdiff_t shift, const ptrdiff_t *places, const uint8_t *source,
                  ptrdiff_t source_step, size_t count, size_t bytes);

} // namespace kzb::kernels
