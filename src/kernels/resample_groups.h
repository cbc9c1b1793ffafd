// Weighted means of many rows at a time, in double precision.
//
// Rows are taken in eights: a column is, for each lane, the eight values of one pixel in as many rows. What is added up
// for one output is then the same for all eight, and each sum is still made in its own order. Three lanes are the
// colours of eight rows; four are colours and alpha of eight rows, gray and alpha of sixteen, or gray of thirty-two.
#pragma once

#include "kernels/resample.h"
#include "kernels/row_function.h"

#include <array>

namespace kzb::kernels {

inline constexpr size_t rows_together = 8;

// Values are taken to the ends of blocks of this many: rows of doubles have room for whole ones.
inline constexpr size_t block_of_values = 32;

// Lanes of a column for pixels of 1 to 4 channels.
constexpr size_t lanes_for(size_t channels) {
    return channels == 3 ? 3 : 4;
}

// Where eight rows' pixels have their channels.
struct RowGroup {
    std::array<const uint8_t *, rows_together> rows;
    ptrdiff_t ahead; // bytes from each to the row that will be read in its place next
    size_t pixel_size;
    std::array<size_t, 4> offsets; // below pixel_size; red, green and blue first where they are mixed
    size_t channels;               // that the pixels give
    bool mixes_gray;               // the first is gray from the first three offsets, the second that of the fourth
};

// columns[(x * lanes + channel) * 8 + row] for the `count` pixels from `start` of the rows; x counts from 0.
extern const RowFunction<void(double *columns, size_t lanes, const RowGroup &group, size_t start, size_t count)>
    gather_columns;

// The means, not yet clamped, of `count` lists over columns whose first is input pixel `first`. Lane by lane, eight
// values each: means[(i * channels + channel) * 8 + row], those of the next eight rows `group_size` values later.
extern const RowFunction<void(float *means, size_t group_size, const double *columns, int32_t first, size_t channels,
                              const ContributionList *lists, size_t count)>
    weigh_columns;

// rows[r][i] = means[i * 8 + r], clamped to 0..255, for i below count rounded up to a multiple of 8.
extern const RowFunction<void(const std::array<double *, rows_together> &rows, const float *means, size_t count)>
    deal_means;

// bytes[i] = the clamped, truncated mean of the list over rows[k][start + i], for i below count. The rows are read up
// to a multiple of block_of_values.
extern const RowFunction<void(uint8_t *bytes, const double *const *rows, size_t start, const ContributionList &list,
                              size_t count)>
    mean_of_rows;

// The working pixels of a row of doubles that hold floats' values; `channels` as in the source: gray; gray and alpha;
// red, green and blue; all four. `passes_by`: the caches may be left to others.
extern const RowFunction<void(uint8_t *target, const double *row, size_t channels, size_t count, bool passes_by)>
    write_working_pixels;

} // namespace kzb::kernels
