#include "kernels/windowed_sinc.h"

namespace kzb::kernels {

namespace {

template <bool fused> void windowed_sincs_loop(double *distances, double reach, size_t count) {
    for (size_t i = 0; i < count; i += weights_together)
        for (size_t k = 0; k < weights_together; ++k) distances[i + k] = windowed_sinc<fused>(distances[i + k], reach);
}

} // namespace

#ifdef KZB_X86
decltype(windowed_sincs) windowed_sincs =
    compiled<windowed_sincs_loop<false>, Compiled<windowed_sincs_loop<true>>::avx2,
             Compiled<windowed_sincs_loop<true>>::avx512>();
#else
decltype(windowed_sincs) windowed_sincs = compiled<windowed_sincs_loop<false>>();
#endif

} // namespace kzb::kernels
