// Rows of pixels as plain bytes, under a pattern that repeats from pixel to pixel.
#pragma once

#include "kernels/row_function.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// A whole number of pixels of 1, 2, 3, 4 or 16 bytes, and of vector registers of 32 bytes.
inline constexpr size_t lane_period = 96;
using Lanes = std::array<uint8_t, lane_period>;

// Each byte becomes the pattern's. Pages that are not read need not be fetched.
extern const RowFunction<void(uint8_t *bytes, size_t count, const Lanes &values)> set_lanes;

// Each byte b becomes (b & keep) ^ flip.
extern const RowFunction<void(uint8_t *bytes, size_t count, const Lanes &keep, const Lanes &flip)> change_lanes;

// Each byte t of the target becomes (t & keep) | ((s & ~keep) ^ flip), s being the source's. The two have no bytes in
// common.
extern const RowFunction<void(uint8_t *target, const uint8_t *source, size_t count, const Lanes &keep,
                              const Lanes &flip)>
    copy_lanes;

// The bits of a and b that are set in `exchanged` change places. The two have no bytes in common.
extern const RowFunction<void(uint8_t *a, uint8_t *b, size_t count, const Lanes &exchanged)> exchange_lanes;

} // namespace kzb::kernels
