#include "kernels/resample_groups_avx512.h"
#include "kernels/resample_groups_loops.h"

namespace kzb::kernels {

namespace {

// Divides where there is no fused multiply-add.
constexpr auto weigh_baseline = weigh_columns_loop<16, false>;
constexpr auto mean_baseline = mean_of_rows_loop<16, false>;

} // namespace

#ifdef KZB_X86

namespace {

constexpr auto weigh_avx2 = Compiled<weigh_columns_loop<32, true>>::avx2;
constexpr auto mean_avx2 = Compiled<mean_of_rows_loop<32, true>>::avx2;

} // namespace

decltype(gather_columns) gather_columns = compiled<gather_columns_loop, Compiled<gather_columns_loop>::avx2,
                                                   gather_columns_avx512, gather_columns_avx512vbmi>();
decltype(weigh_columns) weigh_columns = compiled<weigh_baseline, weigh_avx2, weigh_columns_avx512>();
decltype(deal_means) deal_means = compiled<deal_means_loop, Compiled<deal_means_loop>::avx2, deal_means_avx512>();
decltype(mean_of_rows) mean_of_rows = compiled<mean_baseline, mean_avx2, mean_of_rows_avx512>();
decltype(write_working_pixels) write_working_pixels =
    compiled<write_working_pixels_loop, Compiled<write_working_pixels_loop>::avx2, write_working_pixels_avx512>();

#else

decltype(gather_columns) gather_columns = compiled<gather_columns_loop>();
decltype(weigh_columns) weigh_columns = compiled<weigh_baseline>();
decltype(deal_means) deal_means = compiled<deal_means_loop>();
decltype(mean_of_rows) mean_of_rows = compiled<mean_baseline>();
decltype(write_working_pixels) write_working_pixels = compiled<write_working_pixels_loop>();

#endif

} // namespace kzb::kernels
