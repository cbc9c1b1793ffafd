// What UnsharpFilter means.
#pragma once

#include "fixtures/plain_image.h"

#include <cmath>
#include <cstdlib>

namespace kzb::test {

inline uint8_t sharpened(int a, int b, double amount, int32_t threshold) {
    const int d = a - b;
    if (std::abs(d) < threshold) return static_cast<uint8_t>(a);
    const double v = d * (amount * 4.0 + 1.0) + b;
    if (std::isnan(v) || v < 0) return 0;
    return v > 255 ? 255 : static_cast<uint8_t>(v);
}

inline void unsharp(const PlainImage &image, const PlainImage &reference, double amount, int32_t threshold) {
    for (int32_t y = 0; y < image.height; ++y)
        for (int32_t x = 0; x < image.width; ++x)
            for (Channel channel : image.channels())
                image.set(x, y, channel,
                          sharpened(image.get(x, y, channel), reference.get(x, y, channel), amount, threshold));
}

} // namespace kzb::test
