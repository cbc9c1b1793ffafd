// What EngraveFilter means.
#pragma once

#include "fixtures/filter_check.h"

#include <algorithm>

namespace kzb::test {

inline Reference engraving(int64_t level) {
    return [=](const PlainImage &source, const PlainImage &destination) {
        for (int64_t y = 0; y < source.height; ++y) {
            for (int64_t x = 0; x < source.width; ++x) {
                const int64_t u = std::clamp<int64_t>(x + level, 0, source.width - 1);
                const int64_t v = std::clamp<int64_t>(y + level, 0, source.height - 1);
                for (Channel channel : source.channels()) {
                    const int value = source.get(x, y, channel) - source.get(u, v, channel) + 128;
                    destination.set(x, y, channel, static_cast<uint8_t>(std::clamp(value, 0, 255)));
                }
            }
        }
    };
}

} // namespace kzb::test
