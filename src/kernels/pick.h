// Pixels picked from a row at places of their own.
//
// Target and source may share bytes in any way, except in pick_pixels: pixels are taken in ascending order, in each the
// channels in theirs, and each byte is read after the earlier ones were written.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// places[i] = (first + i) * step, truncated, times pixel_size, for i below count.
void step_places(int32_t *places, int32_t first, double step, int32_t pixel_size, size_t count);

// Copies the first `channels` (at most 4) of the offsets `from` of each picked pixel to the offsets `to` of the
// target's pixels.
void pick_channels(uint8_t *target, size_t target_step, const int32_t *to, const uint8_t *source,
                   const int32_t *places, const int32_t *from, size_t channels, size_t count);

// The same with the gray, in integers, of the first three offsets `from` for the first offset `to`, and with
// `with_alpha` the fourth for the second.
void pick_gray(uint8_t *target, size_t target_step, const int32_t *to, const uint8_t *source, const int32_t *places,
               const int32_t *from, bool with_alpha, size_t count);

// Copies whole pixels of 1 to 4 bytes.
void pick_pixels(uint8_t *target, const uint8_t *source, const int32_t *places, size_t pixel_size, size_t count);

} // namespace kzb::kernels
