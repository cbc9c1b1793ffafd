// What the half turn and the quarter turns into a destination mean.
#pragma once

#include "fixtures/plain_image.h"

#include <algorithm>
#include <utility>

namespace kzb::test {

inline void move_pixel(const PlainImage &source, const PlainImage &destination, int64_t x, int64_t y, int64_t to_x,
                       int64_t to_y) {
    for (Channel channel : source.channels()) destination.set(to_x, to_y, channel, source.get(x, y, channel));
}

// Where a pixel of an image goes.
using Target = std::pair<int64_t, int64_t> (*)(const PlainImage &source, int64_t x, int64_t y);

inline std::pair<int64_t, int64_t> counter_clockwise(const PlainImage &source, int64_t x, int64_t y) {
    return {y, source.width - 1 - x};
}

inline std::pair<int64_t, int64_t> clockwise(const PlainImage &source, int64_t x, int64_t y) {
    return {source.height - 1 - y, x};
}

inline void turn_by_rows(Target target, const PlainImage &source, const PlainImage &destination) {
    for (int64_t y = 0; y < source.height; ++y) {
        for (int64_t x = 0; x < source.width; ++x) {
            const auto [to_x, to_y] = target(source, x, y);
            move_pixel(source, destination, x, y, to_x, to_y);
        }
    }
}

// Only the fixtures' file-backed images have rows of whole pages.
inline int64_t rows_per_block(const PlainImage &image) {
    if (image.row_size % 4096 != 0) return image.height;
    const int64_t block = std::min<int64_t>(4096 * 4096, static_cast<int64_t>(image.storage->size()));
    return std::max<int64_t>(block, 5 * image.row_size) / image.row_size;
}

inline void turn_by_tiles(Target target, const PlainImage &source, const PlainImage &destination) {
    const int64_t edge = std::min(rows_per_block(source), rows_per_block(destination)) - 2;
    if (edge < 1) return turn_by_rows(target, source, destination);
    for (int64_t top = 0; top < source.height; top += edge) {
        for (int64_t left = 0; left < source.width; left += edge) {
            for (int64_t y = top; y < std::min<int64_t>(top + edge, source.height); ++y) {
                for (int64_t x = left; x < std::min<int64_t>(left + edge, source.width); ++x) {
                    const auto [to_x, to_y] = target(source, x, y);
                    move_pixel(source, destination, x, y, to_x, to_y);
                }
            }
        }
    }
}

// From the right end of each row leftwards.
inline void turn_half(const PlainImage &source, const PlainImage &destination) {
    for (int64_t y = 0; y < source.height; ++y)
        for (int64_t x = source.width - 1; x >= 0; --x)
            move_pixel(source, destination, x, y, source.width - 1 - x, source.height - 1 - y);
}

} // namespace kzb::test
