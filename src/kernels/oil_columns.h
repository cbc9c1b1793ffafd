// The most frequent values of small neighbourhoods, from histograms of columns.
#pragma once

#include "kernels/oil.h"
#include "kernels/row_function.h"

namespace kzb::kernels {

// Neighbourhoods up to this range hold no more pixels than a byte can count.
inline constexpr int32_t largest_column_range = 7;

// Whether histograms of columns beat counting every pixel in and out. They do with registers of 64 bytes, by 3 to 1 at
// range 3; with smaller ones they lose by a third.
inline bool column_histograms_pay() {
    return level_in_use() >= Level::avx512;
}

// For each column of a strip and each channel how often the values of a few rows occur, bin by bin.
struct OilColumns {
    uint8_t *counts; // `stride` of them for each column and channel, the channels of a column side by side
    uint16_t *sums;  // of the values in each bin, arranged alike; nil where a bin has one value alone
    size_t stride;   // bins, a multiple of 64
    size_t channels; // 1 to 4
    int32_t columns; // in the strip
    const Bins *bins;
};

// Counts a row's packed pixels, one for each column, in (`sign` 1) or out (-1).
void count_row(const OilColumns &columns, const uint8_t *row, int32_t sign);

// Writes the mean, truncated, of the fullest bin for `count` pixels, of several bins the lowest. The neighbourhood of
// the i-th one has the columns first + i - range to first + i + range, as far as the strip has them.
extern const RowFunction<void(uint8_t *target, const OilColumns &columns, int32_t first, int32_t count, int32_t range)>
    fullest_means;

} // namespace kzb::kernels
