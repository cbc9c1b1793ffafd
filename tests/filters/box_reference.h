// What one pass of the box blur means, byte for byte.
#pragma once

#include "fixtures/plain_image.h"

#include <algorithm>
#include <cmath>

namespace kzb::test {

// How far the sums went: below 0, and up to 256 times the divisor or beyond.
struct SumsSeen {
    bool below = false;
    bool beyond = false;
};

// The radius that counts: whole, and no larger than what 64 bits can sum.
inline int64_t box_radius(double radius) {
    if (!std::isfinite(radius) || radius < 0) return 0;
    return radius < 0x1p50 ? static_cast<int64_t>(std::trunc(radius)) : int64_t{1} << 50;
}

// Sums value(k) for k from -r to r, each k clamped to 0 .. count - 1.
template <class ValueAt> int64_t clamped_sum(int64_t r, int64_t count, ValueAt value) {
    int64_t sum = 0;
    if (r < 4 * count) {
        for (int64_t k = -r; k <= r; ++k) sum += value(std::clamp<int64_t>(k, 0, count - 1));
        return sum;
    }
    for (int64_t k = 0; k < count; ++k) sum += value(k);
    return sum + r * value(0) + (r - (count - 1)) * value(count - 1);
}

inline SumsSeen box_blur(const PlainImage &source, const PlainImage &destination, double radius) {
    SumsSeen seen;
    const int64_t r = box_radius(radius), d = 2 * r + 1;
    const auto divided = [&](int64_t sum) {
        seen.below |= sum < 0;
        seen.beyond |= sum >= 256 * d;
        return sum < 0 || sum >= 256 * d ? uint8_t{0} : static_cast<uint8_t>(sum / d);
    };
    const auto channels = source.channels();
    const int64_t w = source.width, h = source.height;
    if (w == 0) return seen;

    std::vector<std::vector<int64_t>> sums(channels.size(), std::vector<int64_t>(static_cast<size_t>(w)));
    for (size_t x = 0; x < static_cast<size_t>(w); ++x)
        for (size_t i = 0; i < channels.size(); ++i)
            sums[i][x] =
                clamped_sum(r, h, [&](int64_t k) { return source.get(static_cast<int64_t>(x), k, channels[i]); });
    const auto change_sums = [&](int64_t y, int sign) {
        for (size_t x = 0; x < static_cast<size_t>(w); ++x)
            for (size_t i = 0; i < channels.size(); ++i)
                sums[i][x] += sign * source.get(static_cast<int64_t>(x), y, channels[i]);
    };
    for (int64_t y = 0; y < h; ++y) {
        for (size_t x = 0; x < static_cast<size_t>(w); ++x)
            for (size_t i = 0; i < channels.size(); ++i)
                destination.set(static_cast<int64_t>(x), y, channels[i], divided(sums[i][x]));
        change_sums(std::max<int64_t>(y - r, 0), -1);
        change_sums(std::min(y + r + 1, h - 1), 1);
    }

    for (int64_t y = 0; y < h; ++y) {
        Bytes buffer(static_cast<size_t>(destination.row_size) + 20);
        for (int64_t b = 0; b < destination.row_size; ++b)
            if (const int64_t at = destination.position(y, b); destination.inside(at))
                buffer[static_cast<size_t>(b)] = (*destination.storage)[static_cast<size_t>(at)];
        const auto pixel = [&](int64_t x, Channel channel) {
            const auto at = static_cast<size_t>(x * source.pixel_size + destination.offset(channel));
            return at < buffer.size() ? buffer[at] : uint8_t{0};
        };
        std::vector<int64_t> sum;
        for (Channel channel : channels) sum.push_back(clamped_sum(r, w, [&](int64_t k) { return pixel(k, channel); }));
        for (int64_t x = 0; x < w; ++x)
            for (size_t i = 0; i < channels.size(); ++i) {
                destination.set(x, y, channels[i], divided(sum[i]));
                sum[i] +=
                    pixel(std::min(x + r + 1, w - 1), channels[i]) - pixel(std::max<int64_t>(x - r, 0), channels[i]);
            }
    }
    return seen;
}

} // namespace kzb::test
