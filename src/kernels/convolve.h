// Weighted sums of bytes.
#pragma once

#include "kernels/row_function.h"

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// A run of samples, each of which counts with the same weight.
struct Tap {
    const uint8_t *samples;
    int32_t weight;
};

// What becomes of a sum of weighted samples. Sums wrap around at 32 bits.
struct Rounding {
    int32_t delta; // added first
    double scale;  // 1 leaves the sum an integer; otherwise the product is truncated
};

// delta + sum, scaled and clamped.
uint8_t rounded(uint32_t sum, const Rounding &rounding);

// target[i] = the rounded sum of weight * samples[i] over the taps, for i below count. No tap's samples are the
// target's bytes.
extern const RowFunction<void(uint8_t *target, const Tap *taps, size_t tap_count, const Rounding &rounding,
                              size_t count)>
    convolve;

// Weights of a row's own earlier bytes, as the filter has already left them.
struct Feedback {
    size_t step;           // bytes from a sample to the next of its channel
    int32_t first, second; // weights of target[i - step] and target[i - 2 * step]
};

// The same with the feedback added to each sum, in ascending order. Samples may be target bytes at or after i.
extern const RowFunction<void(uint8_t *target, const Tap *taps, size_t tap_count, const Feedback &feedback,
                              const Rounding &rounding, size_t count)>
    convolve_in_place;

} // namespace kzb::kernels
