#include "geometry/scale_kernels.h"

#include "kernels/windowed_sinc.h"

#include <algorithm>
#include <cmath>

namespace kzb {

namespace {

double triangle(double distance) {
    const double x = std::abs(distance);
    return x < 1 ? 1 - x : 0.0;
}

double box(double distance) {
    return std::abs(distance) <= 0.5 ? 1.0 : 0.0;
}

double lanczos3(double distance) {
    return kernels::windowed_sinc(distance, 3);
}

double lanczos8(double distance) {
    return kernels::windowed_sinc(distance, 8);
}

double mitchell(double distance) {
    const double x = std::abs(distance);
    if (x < 1) return (7.0 * (x * x * x) - 12.0 * (x * x) + 16.0 / 3.0) / 6.0;
    if (x < 2) return (-7.0 / 3.0 * (x * x * x) + 12.0 * (x * x) - 20.0 * x + 32.0 / 3.0) / 6.0;
    return 0.0;
}

double poly3(double distance) {
    const double x = std::abs(distance);
    if (x < 1) return 1.25 * (x * x * x) - 2.25 * (x * x) + 1.0;
    if (x < 2) return -0.75 * (x * x * x) + 3.75 * (x * x) - 6.0 * x + 3.0;
    return 0.0;
}

double cubic(double distance) {
    const double x = std::abs(distance);
    if (x < 1) return 4.0 / 3.0 * (x * x * x) - 7.0 / 3.0 * (x * x) + 1.0;
    if (x < 2) return -7.0 / 12.0 * (x * x * x) + 3.0 * (x * x) - 59.0 / 12.0 * x + 5.0 / 2.0;
    if (x < 3) return 1.0 / 12.0 * (x * x * x) - 2.0 / 3.0 * (x * x) + 7.0 / 4.0 * x - 3.0 / 2.0;
    return 0.0;
}

template <double weight(double)> void each(double *distances, size_t count) {
    for (size_t i = 0; i < count; ++i) distances[i] = weight(distances[i]);
}

template <int reach> void windowed(double *distances, size_t count) {
    constexpr size_t together = kernels::weights_together;
    const size_t rounded = (count + together - 1) / together * together;
    std::fill(distances + count, distances + rounded, double{reach});
    kernels::windowed_sincs(distances, reach, rounded);
}

// In the order of the modes. Poly3 looks farther than it reaches; the pixels beyond 2 weigh 0.
constexpr ScaleKernel scale_kernels[] = {
    {1, triangle, each<triangle>}, {0.5, box, each<box>},   {3, lanczos3, windowed<3>}, {8, lanczos8, windowed<8>},
    {2, mitchell, each<mitchell>}, {4, poly3, each<poly3>}, {3, cubic, each<cubic>},
};

} // namespace

const ScaleKernel *scale_kernel(int32_t mode) {
    constexpr auto count = static_cast<int32_t>(sizeof scale_kernels / sizeof scale_kernels[0]);
    return mode >= 1 && mode <= count ? &scale_kernels[mode - 1] : nullptr;
}

} // namespace kzb
