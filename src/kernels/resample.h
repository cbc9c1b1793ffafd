// Weighted means of pixels, in double precision, a row at a time.
//
// A pixel between the passes is 16 bytes, four native floats: red, green, blue, alpha; gray lies in the second. Rows of
// lanes are doubles, pixel by pixel, 4, 2 or 1 for each: all four floats; gray and alpha; gray.
#pragma once

#include "kernels/divisor.h"

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// The input pixels of an output pixel: a run of them, with a weight for each. Weights of 0 inside the run count for
// nothing, whatever the pixel.
struct ContributionList {
    const double *weights;
    double sum;      // of the weights
    Divisor divisor; // the same
    int32_t first;   // input pixel
    int32_t count;
};

inline constexpr size_t working_pixel_size = 16;

// A sum of weighted values over the sum of the weights, clamped to 0..255; 0 where that is not a number.
inline double weighted_mean(double sum, double weights) {
    const double mean = sum / weights;
    const double positive = mean > 0 ? mean : 0.0;
    return positive < 255 ? positive : 255.0;
}

inline double mixed_gray(uint8_t red, uint8_t green, uint8_t blue) {
    return 0.3 * red + 0.59 * green + 0.11 * blue;
}

// lanes[i * lane_step] = bytes[i * byte_step] for i below count.
void widen(double *lanes, size_t lane_step, const uint8_t *bytes, size_t byte_step, size_t count);

// The same with the gray of the red, green and blue byte.
void widen_gray(double *lanes, size_t lane_step, const uint8_t *red, const uint8_t *green, const uint8_t *blue,
                size_t byte_step, size_t count);

// Makes the `count` working pixels at `target`, each from its list of input pixels in a row of lanes.
void weigh_lanes(uint8_t *target, const double *lanes, size_t lane_count, const ContributionList *lists, size_t count);

// Adds the weighted floats of `count` working pixels to a row of lanes.
void add_weighted(double *sums, size_t lane_count, const uint8_t *pixels, double weight, size_t count);

// bytes[i] = weighted_mean(sums[i], weights), truncated, for i below count.
void finish_means(uint8_t *bytes, const double *sums, double weights, size_t count);

} // namespace kzb::kernels
