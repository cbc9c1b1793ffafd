// What ApplyMatrix means.
#pragma once

#include "fixtures/filter_check.h"

namespace kzb::test {

using Weights = std::vector<int32_t>;

inline uint8_t result_of(uint32_t sum, int32_t delta, double scale) {
    const auto value = static_cast<int32_t>(static_cast<uint32_t>(delta) + sum);
    if (scale == 1.0) return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
    const double scaled = value * scale;
    return scaled >= 255 ? 255 : scaled > 0 ? static_cast<uint8_t>(scaled) : 0;
}

// Rows, then pixels; of each pixel all channels are summed before any is written.
inline Reference convolution(Weights weights, int32_t delta, double scale) {
    return [=](const PlainImage &source, const PlainImage &destination) {
        const auto channels = source.channels();
        for (int32_t y = 0; y < source.height; ++y) {
            for (int32_t x = 0; x < source.width; ++x) {
                std::vector<uint32_t> sums(channels.size());
                for (int32_t dy = -2; dy <= 2; ++dy) {
                    for (int32_t dx = -2; dx <= 2; ++dx) {
                        const int32_t row = y + dy >= 0 && y + dy < source.height ? y + dy : y;
                        const int32_t column = x + dx >= 0 && x + dx < source.width ? x + dx : x;
                        const int32_t weight = weights[static_cast<size_t>((dy + 2) * 5 + dx + 2)];
                        if (weight >= 255) continue;
                        for (size_t i = 0; i < channels.size(); ++i)
                            sums[i] += static_cast<uint32_t>(weight) * source.get(column, row, channels[i]);
                    }
                }
                for (size_t i = 0; i < channels.size(); ++i)
                    destination.set(x, y, channels[i], result_of(sums[i], delta, scale));
            }
        }
    };
}

} // namespace kzb::test
