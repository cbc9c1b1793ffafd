// The weights of the windowed filters, many at a time.
#pragma once

#include "kernels/row_function.h"
#include "kernels/sine_series.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace kzb::kernels {

// Weights are made eight at a time.
inline constexpr size_t weights_together = 8;

// sin(πt) / (πt)
template <bool fused = false> inline double sinc(double t) {
    const double angle = std::numbers::pi * t;
    const double ratio = sine_of<fused>(angle, 0).high / angle;
    return t == 0 ? 1.0 : ratio;
}

// sinc(x) sinc(x / reach) for distances below `reach`, which is at most 1000; 0 elsewhere.
template <bool fused = false> inline double windowed_sinc(double distance, double reach) {
    const double x = std::abs(distance);
    const double weight = sinc<fused>(x) * sinc<fused>(x / reach);
    return x < reach ? weight : 0.0;
}

// Replaces distances, of magnitude at most 1000, by their weights; `count` is a multiple of weights_together.
extern const RowFunction<void(double *distances, double reach, size_t count)> windowed_sincs;

} // namespace kzb::kernels
