#include "kernels/resample_groups_avx512.h"
#include "kernels/resample_groups_loops.h"
#include "kernels/windowed_sinc.h"

#include <cstdlib>
#include <cstring>

namespace kzb::kernels {
namespace {
int level() {
    static const int l = [] {
        const char *e = std::getenv("KZB_ISA");
        if (e && !std::strcmp(e, "baseline")) return 0;
        if (e && !std::strcmp(e, "avx2")) return 1;
        return 2;
    }();
    return l;
}
#define A2 [[gnu::flatten, gnu::target("avx2,fma,f16c,bmi2")]]
A2 void gather2(double *columns, size_t lanes, const RowGroup &group, size_t start, size_t count) {
    gather_columns_loop(columns, lanes, group, start, count);
}
A2 void weigh2(float *means, size_t group_size, const double *columns, int32_t first, size_t channels,
               const ContributionList *lists, size_t count) {
    weigh_columns_loop<32, true>(means, group_size, columns, first, channels, lists, count);
}
A2 void deal2(const std::array<double *, rows_together> &rows, const float *means, size_t count) {
    deal_means_loop(rows, means, count);
}
A2 void mean2(uint8_t *bytes, const double *const *rows, size_t start, const ContributionList &list, size_t count) {
    mean_of_rows_loop<32, true>(bytes, rows, start, list, count);
}
#define A5 [[gnu::flatten, gnu::target("avx512f,avx512bw,avx512dq,avx512vl,avx512vbmi")]]
A5 void write5(uint8_t *target, const double *row, size_t channels, size_t count) {
    write_working_pixels_loop(target, row, channels, count);
}
A2 void write2(uint8_t *target, const double *row, size_t channels, size_t count) {
    write_working_pixels_loop(target, row, channels, count);
}
A5 void ws5(double *d, double reach, size_t n) {
    windowed_sincs_loop(d, reach, n);
}
A2 void ws2(double *d, double reach, size_t n) {
    windowed_sincs_loop(d, reach, n);
}
} // namespace

void windowed_sincs(double *d, double reach, size_t n) {
    if (level() == 2)
        ws5(d, reach, n);
    else if (level() == 1)
        ws2(d, reach, n);
    else
        windowed_sincs_loop(d, reach, n);
}
void gather_columns(double *columns, size_t lanes, const RowGroup &group, size_t start, size_t count) {
    if (level() == 2)
        gather_columns_avx512(columns, lanes, group, start, count);
    else if (level() == 1)
        gather2(columns, lanes, group, start, count);
    else
        gather_columns_loop(columns, lanes, group, start, count);
}
void weigh_columns(float *means, size_t group_size, const double *columns, int32_t first, size_t channels,
                   const ContributionList *lists, size_t count) {
    if (level() == 2)
        weigh_columns_avx512(means, group_size, columns, first, channels, lists, count);
    else if (level() == 1)
        weigh2(means, group_size, columns, first, channels, lists, count);
    else
        weigh_columns_loop<16, false>(means, group_size, columns, first, channels, lists, count);
}
void deal_means(const std::array<double *, rows_together> &rows, const float *means, size_t count) {
    if (level() == 2)
        deal_means_avx512(rows, means, count);
    else if (level() == 1)
        deal2(rows, means, count);
    else
        deal_means_loop(rows, means, count);
}
void mean_of_rows(uint8_t *bytes, const double *const *rows, size_t start, const ContributionList &list, size_t count) {
    if (level() == 2)
        mean_of_rows_avx512(bytes, rows, start, list, count);
    else if (level() == 1)
        mean2(bytes, rows, start, list, count);
    else
        mean_of_rows_loop<16, false>(bytes, rows, start, list, count);
}
void write_working_pixels(uint8_t *target, const double *row, size_t channels, size_t count) {
    if (level() == 2)
        write5(target, row, channels, count);
    else if (level() == 1)
        write2(target, row, channels, count);
    else
        write_working_pixels_loop(target, row, channels, count);
}
} // namespace kzb::kernels
