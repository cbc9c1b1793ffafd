#include "geometry/scale_kernels.h"

#include "geometry/sine.h"

#include <cmath>
#include <numbers>

namespace kzb {

namespace {

double triangle(double distance) {
    const double x = std::abs(distance);
    return x < 1 ? 1 - x : 0.0;
}

double box(double distance) {
    return std::abs(distance) <= 0.5 ? 1.0 : 0.0;
}

double sinc(double t) {
    if (t == 0) return 1.0;
    const double angle = std::numbers::pi * t;
    return sine(angle) / angle;
}

double lanczos3(double distance) {
    const double x = std::abs(distance);
    return x < 3 ? sinc(x) * sinc(x / 3) : 0.0;
}

double lanczos8(double distance) {
    const double x = std::abs(distance);
    return x < 8 ? sinc(x) * sinc(x * 0.125) : 0.0;
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

// In the order of the modes. Poly3 looks farther than it reaches; the pixels beyond 2 weigh 0.
constexpr ScaleKernel kernels[] = {
    {1, triangle}, {0.5, box}, {3, lanczos3}, {8, lanczos8}, {2, mitchell}, {4, poly3}, {3, cubic},
};

} // namespace

const ScaleKernel *scale_kernel(int32_t mode) {
    constexpr auto count = static_cast<int32_t>(sizeof kernels / sizeof kernels[0]);
    return mode >= 1 && mode <= count ? &kernels[mode - 1] : nullptr;
}

} // namespace kzb
