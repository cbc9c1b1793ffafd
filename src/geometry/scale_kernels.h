// The reconstruction filters of filtered scaling.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kzb {

struct ScaleKernel {
    // How far from an output sample's centre input pixels are looked at, in input pixels (output pixels when the image
    // shrinks).
    double support;
    // The weight of an input pixel at this distance; 0 outside the filter.
    double (*weight)(double distance);
    // Replaces the distances by their weights. Room for a multiple of kernels::weights_together of them is overwritten.
    void (*weigh)(double *distances, size_t count);
};

// The filter of a mode, ScaleTriangle (1) to ScaleCubic (7); nil for another number.
const ScaleKernel *scale_kernel(int32_t mode);

} // namespace kzb
