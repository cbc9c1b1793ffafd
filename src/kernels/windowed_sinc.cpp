#include "kernels/windowed_sinc.h"

namespace kzb::kernels {

namespace {

void windowed_sincs_loop(double *distances, double reach, size_t count) {
    for (size_t i = 0; i < count; i += weights_together)
        for (size_t k = 0; k < weights_together; ++k) distances[i + k] = windowed_sinc(distances[i + k], reach);
}

} // namespace

decltype(windowed_sincs) windowed_sincs = compiled<windowed_sincs_loop>();

} // namespace kzb::kernels
