// Rectangles as user code passes them, cut as the rules say, one step after the other.
#pragma once

#include "fixtures/plain_image.h"

namespace kzb::test {

struct PlainRectangle {
    int32_t x, y, w, h;
};

// Values that wrap at 32 bits.
inline int32_t plus(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
inline int32_t minus(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

// The clipping up to the test for an empty result.
inline PlainRectangle clipped(const PlainImage &image, PlainRectangle r) {
    if (r.w < 0) {
        r.x = plus(r.x, r.w);
        r.w = minus(0, r.w);
    }
    if (r.h < 0) {
        r.y = plus(r.y, r.h);
        r.h = minus(0, r.h);
    }
    if (r.x < 0) {
        r.w = plus(r.w, r.x);
        r.x = 0;
    }
    if (r.y < 0) {
        r.h = plus(r.h, r.y);
        r.y = 0;
    }
    const auto width = static_cast<uint32_t>(image.width);
    const auto height = static_cast<uint32_t>(image.height);
    const auto x = static_cast<uint32_t>(r.x);
    const auto y = static_cast<uint32_t>(r.y);
    auto w = width > x ? static_cast<uint32_t>(r.w) : 0u;
    auto h = height > y ? static_cast<uint32_t>(r.h) : 0u;
    if (x + w > width) w = width - x;
    if (y + h > height) h = height - y;
    return {r.x, r.y, static_cast<int32_t>(w), static_cast<int32_t>(h)};
}

inline bool empty(const PlainRectangle &r) { return r.w < 1 || r.h < 1; }

// Rectangles of every kind for an image of this size: inside, at the edges, reaching back, beyond each side, and at the
// ends of the integers.
inline std::vector<PlainRectangle> rectangles(int32_t width, int32_t height) {
    const std::vector<PlainRectangle> fixed = {
        {0, 0, width, height},
        {1, 1, width - 2, height - 2},
        {2, 1, 3, 2},
        {5, 5, -3, -3},
        {width, height, -2, -1},
        {-2, -3, 5, 5},
        {width - 1, height - 1, 10, 10},
        {1, 2, 0, 3},
        {1, 2, 3, 0},
        {-10, 0, 5, 4},
        {0, -10, 2, 5},
        {-10, -10, 5, 5},
        {width, 0, 4, 4},
        {width + 5, 0, 4, 4},
        {0, height, 4, 4},
        {0, height + 7, 4, 4},
        {3, 3, -20, -20},
    };
    std::vector<PlainRectangle> all = fixed;
    const int32_t extremes[] = {INT32_MIN, INT32_MIN + 1, -1, 1, INT32_MAX};
    for (int32_t start : extremes)
        for (int32_t length : extremes) {
            all.push_back({start, 1, length, 1});
            all.push_back({1, start, 1, length});
        }
    return all;
}

} // namespace kzb::test
