// What point operations and auto levels mean.
#pragma once

#include "fixtures/filter_check.h"

#include <cmath>

namespace kzb::test {

// What a byte of a channel becomes.
using Rule = std::function<uint8_t(Channel, uint8_t)>;

// A point operation on these channels: in ascending order of rows, pixels and channels.
inline Reference point_operation(bool with_alpha, Rule rule) {
    return [=](const PlainImage &source, const PlainImage &destination) {
        for (int32_t y = 0; y < source.height; ++y)
            for (int32_t x = 0; x < source.width; ++x)
                for (Channel channel : source.channels(with_alpha))
                    destination.set(x, y, channel, rule(channel, source.get(x, y, channel)));
    };
}

inline uint8_t clamped(double value) {
    return value >= 255 ? 255 : value > 0 ? static_cast<uint8_t>(value) : 0;
}

inline uint8_t gamma_of(double gamma, uint8_t v) {
    return clamped(std::pow(v / 255.0, 1.0 / gamma) * 255.0 + 0.5);
}

inline uint8_t gain_of(double gain, double bias, uint8_t v) {
    const double e = std::log(1 - gain) / std::log(0.5);
    const double k = 1 / bias - 2;
    const double x = v / 255.0;
    const double t = x < 0.001   ? 0
                     : x > 0.999 ? 1
                     : x < 0.5   ? 0.5 * std::pow(2 * x, e)
                                 : 1 - 0.5 * std::pow(2 * (1 - x), e);
    return clamped(t / ((1 - t) * k + 1) * 255.0);
}

// Auto levels as stated, on the rectangle [x, x + w) × [y, y + h).
inline void auto_level(const PlainImage &image, int32_t x, int32_t y, int32_t w, int32_t h) {
    int64_t counts[256] = {};
    for (int32_t v = y; v < y + h; ++v)
        for (int32_t u = x; u < x + w; ++u)
            ++counts[static_cast<int>(image.get(u, v, Channel::red) * 0.177 + image.get(u, v, Channel::green) * 0.813 +
                                      image.get(u, v, Channel::blue) * 0.01)];
    const float n = static_cast<float>(static_cast<int64_t>(w) * h);
    int64_t sum = 0;
    int low = 0, high = 0;
    for (int i = 0; i < 256; ++i) {
        sum += counts[i];
        if (sum <= static_cast<int64_t>(n * 0.005f)) low = i;
        if (sum <= static_cast<int64_t>(n * 0.995f)) high = i;
    }
    const double s = 255.0 / (high - low);
    for (int32_t v = y; v < y + h; ++v)
        for (int32_t u = x; u < x + w; ++u)
            for (Channel channel : {Channel::red, Channel::green, Channel::blue}) {
                const int value = image.get(u, v, channel);
                image.set(u, v, channel, value < low ? 0 : value > high ? 255 : clamped((value - low) * s));
            }
}

} // namespace kzb::test
