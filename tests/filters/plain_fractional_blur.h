// What BoxBlurFractionalFilter means.
#pragma once

#include "fixtures/plain_image.h"

#include <cmath>

namespace kzb::test {

// Both passes as stated: rows are copied before they are written, a row below is read as it stands.
inline void fractional_blur(const PlainImage &source, const PlainImage &destination, double radius) {
    const double f = std::isfinite(radius) ? radius - std::floor(radius) : 0;
    const double w = 1 / (2 * f + 1);
    const auto blurred = [&](int c, int p, int q) { return static_cast<uint8_t>((c + (p + q) * f) * w); };
    const auto copy_of = [](const PlainImage &image, int64_t y) {
        Bytes copy(static_cast<size_t>(image.row_size) + 20);
        for (int64_t b = 0; b < image.row_size; ++b)
            if (const int64_t at = image.position(y, b); image.inside(at))
                copy[static_cast<size_t>(b)] = (*image.storage)[static_cast<size_t>(at)];
        return copy;
    };
    const auto at = [](const Bytes &copy, const PlainImage &image, int64_t x, Channel channel) {
        const auto byte = static_cast<size_t>(x * image.pixel_size + image.offset(channel));
        return byte < copy.size() ? copy[byte] : uint8_t{0};
    };
    Bytes above, row;
    for (int64_t y = 0; y < source.height; ++y) {
        above = row;
        row = copy_of(source, y);
        for (int64_t x = 0; x < source.width; ++x)
            for (Channel channel : source.channels()) {
                const int c = at(row, source, x, channel);
                if (y == 0)
                    destination.set(x, y, channel, blurred(c, c, c));
                else if (y < source.height - 1)
                    destination.set(x, y, channel,
                                    blurred(c, at(above, source, x, channel), source.get(x, y + 1, channel)));
                else
                    destination.set(x, y, channel, blurred(c, c, at(above, source, x, channel)));
            }
    }
    const int64_t last = source.width - 1;
    for (int64_t y = 0; y < source.height; ++y) {
        row = copy_of(destination, y);
        for (int64_t x = 0; x < source.width; ++x)
            for (Channel channel : source.channels()) {
                const int c = at(row, destination, x, channel);
                if (x == last)
                    destination.set(x, y, channel, blurred(c, c, c));
                else if (x == 0)
                    destination.set(x, y, channel, blurred(c, c, at(row, destination, 1, channel)));
                else
                    destination.set(
                        x, y, channel,
                        blurred(c, at(row, destination, x - 1, channel), at(row, destination, x + 1, channel)));
            }
    }
}

} // namespace kzb::test
