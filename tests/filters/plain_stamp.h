// What StampFilter means.
#pragma once

#include "filters/box_reference.h"

namespace kzb::test {

struct Stamp {
    double radius, threshold, softness;
    uint32_t black, white;
};

inline uint8_t stamped(const Stamp &stamp, Channel channel, int v) {
    const double lower = (stamp.threshold - stamp.softness * 0.5) * 255.0;
    const double upper = (stamp.threshold + stamp.softness * 0.5) * 255.0;
    double t;
    if (v < lower)
        t = 0;
    else if (v >= upper)
        t = 1;
    else {
        const double u = (v - lower) / (upper - lower);
        t = u * u * (3 - 2 * u);
    }
    const int shift = channel == Channel::red ? 16 : channel == Channel::blue ? 0 : 8;
    const int black = stamp.black >> shift & 255, white = stamp.white >> shift & 255;
    const double value = t * (white - black) + black;
    return value >= 255 ? 255 : value > 0 ? static_cast<uint8_t>(value) : 0;
}

inline PlainImage stamped_model(const PlainImage &first_pass, const Stamp &stamp) {
    const auto made = [&] { return PlainImage::in_memory(first_pass.width, first_pass.height, first_pass.format); };
    const PlainImage second = made(), third = made(), result = made();
    box_blur(first_pass, second, stamp.radius / 3.0);
    box_blur(second, third, stamp.radius / 3.0);
    for (int32_t y = 0; y < result.height; ++y)
        for (int32_t x = 0; x < result.width; ++x)
            for (Channel channel : third.channels(false))
                result.set(x, y, channel, stamped(stamp, channel, third.get(x, y, channel)));
    return result;
}

} // namespace kzb::test
