// What the mirrors and the half turn in place mean.
#pragma once

#include "fixtures/plain_image.h"

#include <functional>

namespace kzb::test {

inline void swap_pixels(const PlainImage &image, int64_t x, int64_t y, int64_t other_x, int64_t other_y) {
    for (Channel channel : image.channels()) {
        const uint8_t kept = image.get(x, y, channel);
        image.set(x, y, channel, image.get(other_x, other_y, channel));
        image.set(other_x, other_y, channel, kept);
    }
}

inline void mirror_horizontally(const PlainImage &image) {
    for (int32_t y = 0; y < image.height; ++y)
        for (int32_t x = 0; x < image.width / 2; ++x) swap_pixels(image, x, y, image.width - 1 - x, y);
}

// The channels of a row's pixels, in the order of the pixels.
inline Bytes channels_of_row(const PlainImage &image, int32_t y) {
    Bytes bytes;
    for (int32_t x = 0; x < image.width; ++x)
        for (Channel channel : image.channels()) bytes.push_back(image.get(x, y, channel));
    return bytes;
}

// The upper half's rows change places with the lower half's; pixel x of a row takes pixel from(x) of the other one.
inline void exchange_rows(const PlainImage &image, const std::function<int32_t(int32_t x)> &from) {
    const auto channels = image.channels();
    for (int32_t y = 0; y < image.height / 2; ++y) {
        const int32_t opposite = image.height - 1 - y;
        const Bytes upper = channels_of_row(image, y), lower = channels_of_row(image, opposite);
        for (int32_t x = 0; x < image.width; ++x) {
            for (size_t i = 0; i < channels.size(); ++i) {
                const size_t at = static_cast<size_t>(from(x)) * channels.size() + i;
                image.set(x, y, channels[i], lower[at]);
                image.set(x, opposite, channels[i], upper[at]);
            }
        }
    }
}

inline void mirror_vertically(const PlainImage &image) {
    exchange_rows(image, [](int32_t x) { return x; });
}

inline void turn_around(const PlainImage &image) {
    exchange_rows(image, [&](int32_t x) { return image.width - 1 - x; });
}

} // namespace kzb::test
