// What OilFilter means.
#pragma once

#include "fixtures/filter_check.h"

#include <algorithm>

namespace kzb::test {

// The mean of the fullest bin of values; of several, the lowest.
inline uint8_t fullest_mean(const std::vector<uint8_t> &values, int32_t levels) {
    std::vector<int64_t> counts(static_cast<size_t>(levels)), sums(counts.size());
    for (uint8_t value : values) {
        const auto bin = static_cast<size_t>(levels * value / 256);
        ++counts[bin];
        sums[bin] += value;
    }
    size_t best = 0;
    for (size_t bin = 1; bin < counts.size(); ++bin)
        if (counts[bin] > counts[best]) best = bin;
    return static_cast<uint8_t>(sums[best] / counts[best]);
}

// Of each pixel all channels are looked at before any is written.
inline Reference oil(int32_t levels, int64_t range) {
    return [=](const PlainImage &source, const PlainImage &destination) {
        const auto channels = source.channels();
        for (int64_t y = 0; y < source.height; ++y) {
            for (int64_t x = 0; x < source.width; ++x) {
                std::vector<uint8_t> results;
                for (Channel channel : channels) {
                    std::vector<uint8_t> values;
                    for (int64_t v = std::max<int64_t>(y - range, 0);
                         v <= std::min(y + range, int64_t{source.height} - 1); ++v)
                        for (int64_t u = std::max<int64_t>(x - range, 0);
                             u <= std::min(x + range, int64_t{source.width} - 1); ++u)
                            values.push_back(source.get(u, v, channel));
                    results.push_back(fullest_mean(values, std::min(levels, 256)));
                }
                for (size_t i = 0; i < channels.size(); ++i) destination.set(x, y, channels[i], results[i]);
            }
        }
    };
}

} // namespace kzb::test
