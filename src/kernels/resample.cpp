#include "kernels/resample.h"

#include <cstring>

namespace kzb::kernels {

namespace {

// Where the lanes of a pixel lie among its four floats.
template <size_t lane_count> constexpr size_t slot_step = 4 / lane_count;
template <size_t lane_count> constexpr size_t first_slot = lane_count == 4 ? 0 : 1;

template <size_t lane_count>
void weigh(uint8_t *target, const double *lanes, const ContributionList *lists, size_t count) {
    for (; count != 0; --count, ++lists, target += working_pixel_size) {
        double sums[lane_count] = {};
        const double *input = lanes + static_cast<size_t>(lists->first) * lane_count;
        for (int32_t k = 0; k < lists->count; ++k, input += lane_count)
            for (size_t lane = 0; lane < lane_count; ++lane) sums[lane] += lists->weights[k] * input[lane];
        float pixel[4] = {};
        for (size_t lane = 0; lane < lane_count; ++lane)
            pixel[first_slot<lane_count> + lane * slot_step<lane_count>] =
                static_cast<float>(weighted_mean(sums[lane], lists->sum));
        std::memcpy(target, pixel, working_pixel_size);
    }
}

template <size_t lane_count> void add(double *sums, const uint8_t *pixels, double weight, size_t count) {
    const uint8_t *floats = pixels + first_slot<lane_count> * sizeof(float);
    for (size_t i = 0; i < count * lane_count; ++i) {
        float value;
        std::memcpy(&value, floats + i * slot_step<lane_count> * sizeof(float), sizeof(float));
        sums[i] += weight * value;
    }
}

} // namespace

void widen(double *lanes, size_t lane_step, const uint8_t *bytes, size_t byte_step, size_t count) {
    for (; count != 0; --count, lanes += lane_step, bytes += byte_step) *lanes = *bytes;
}

void widen_gray(double *lanes, size_t lane_step, const uint8_t *red, const uint8_t *green, const uint8_t *blue,
                size_t byte_step, size_t count) {
    for (size_t i = 0; i < count; ++i)
        lanes[i * lane_step] = mixed_gray(red[i * byte_step], green[i * byte_step], blue[i * byte_step]);
}

void weigh_lanes(uint8_t *target, const double *lanes, size_t lane_count, const ContributionList *lists, size_t count) {
    if (lane_count == 4) return weigh<4>(target, lanes, lists, count);
    if (lane_count == 2) return weigh<2>(target, lanes, lists, count);
    weigh<1>(target, lanes, lists, count);
}

void add_weighted(double *sums, size_t lane_count, const uint8_t *pixels, double weight, size_t count) {
    if (lane_count == 4) return add<4>(sums, pixels, weight, count);
    if (lane_count == 2) return add<2>(sums, pixels, weight, count);
    add<1>(sums, pixels, weight, count);
}

void finish_means(uint8_t *bytes, const double *sums, double weights, size_t count) {
    for (size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(static_cast<int32_t>(weighted_mean(sums[i], weights)));
}

} // namespace kzb::kernels
