// Means of equally weighted pixels whose counts are powers of two: whole numbers all the way, and exact.
#pragma once

#include "kernels/row_function.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// Bytes of a row that are summed at a time, and the stretch of the input that they come from.
inline constexpr size_t picks_together = 64, pick_window = 128;

// Up to picks_together sums, each of as many input bytes as there are picks.
struct Picks {
    size_t start;    // of the window, in bytes from the row's first
    size_t readable; // bytes of the window that the row has
    size_t target;   // of the first sum
    size_t count;    // of sums
};
// Where in the window the bytes lie that are added up.
using PickPlaces = std::array<uint8_t, picks_together>;

// sums[target + i] = the sum over each pick p of row[start + places[p][i]], for one entry of `entries` after the other;
// each has `picks` places in turn. Sums are written up to a multiple of picks_together.
extern const RowFunction<void(uint16_t *sums, const uint8_t *row, const Picks *entries, const PickPlaces *places,
                              size_t entry_count, size_t picks)>
    sum_picks;

// bytes[i] = the sum of row[i] over the rows, divided by 2 ^ shift, for i below count.
extern const RowFunction<void(uint8_t *bytes, const uint16_t *const *rows, size_t row_count, unsigned shift,
                              size_t count)>
    average_sums;

} // namespace kzb::kernels
