// Pixels picked from a row at places of their own.
#pragma once

#include "kernels/convert.h"

namespace kzb::kernels {

// places[i] = (first + i) * step, truncated, times pixel_size, for i below count.
void step_places(int32_t *places, int32_t first, double step, int32_t pixel_size, size_t count);

// Converts the `count` source pixels that start places[i] bytes after `source`, in ascending order, to pixels side by
// side; a conversion that inverts nothing. The rows may share bytes in any way: pixels are taken in ascending order, in
// each the channels in theirs, and each byte is read after the earlier ones were written.
void pick(uint8_t *target, const uint8_t *source, const int32_t *places, const Conversion &conversion, size_t count);

} // namespace kzb::kernels
