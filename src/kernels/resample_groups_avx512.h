// Hand-written loops over eight rows at a time for processors with AVX-512.
#pragma once

#include "kernels/resample_groups.h"

namespace kzb::kernels {

void gather_columns_avx512(double *columns, size_t lanes, const RowGroup &group, size_t start, size_t count);
void gather_columns_avx512vbmi(double *columns, size_t lanes, const RowGroup &group, size_t start, size_t count);
void weigh_columns_avx512(float *means, size_t group_size, const double *columns, int32_t first, size_t channels,
                          const ContributionList *lists, size_t count);
void deal_means_avx512(const std::array<double *, rows_together> &rows, const float *means, size_t count);
void mean_of_rows_avx512(uint8_t *bytes, const double *const *rows, size_t start, const ContributionList &list,
                         size_t count);
// Writes past the caches: half the traffic of a target that is not read soon.
void write_working_pixels_avx512(uint8_t *target, const double *row, size_t channels, size_t count, bool passes_by);

} // namespace kzb::kernels
