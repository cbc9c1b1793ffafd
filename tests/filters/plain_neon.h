// What NeonFilter means.
#pragma once

#include "fixtures/filter_check.h"

#include <algorithm>
#include <cmath>

namespace kzb::test {

// Two copies of rows, each with 16 bytes of 0 behind it.
inline void neon(const PlainImage &source, const PlainImage &destination) {
    const auto size = static_cast<size_t>(source.row_size);
    const auto copy = [&](int32_t y) {
        Bytes row(size + 16);
        const auto start = source.storage->begin() + source.position(y, 0);
        std::copy(start, start + static_cast<ptrdiff_t>(size), row.begin());
        return row;
    };
    const auto at = [&](const Bytes &row, int32_t x, Channel channel) {
        const auto byte = static_cast<size_t>(x * source.pixel_size + source.offset(channel));
        return byte < row.size() ? row[byte] : 0;
    };
    Bytes row = copy(0);
    for (int32_t y = 0; y < source.height; ++y) {
        const Bytes below = y + 1 < source.height ? copy(y + 1) : Bytes(size + 16);
        for (int32_t x = 0; x < source.width; ++x) {
            for (Channel channel : source.channels()) {
                const int c = at(row, x, channel);
                const int across = c - at(row, x + 1, channel);
                const int down = c - at(below, x, channel);
                const double value = 2 * std::sqrt(static_cast<double>(across * across + down * down));
                destination.set(x, y, channel, value > 255 ? 255 : static_cast<uint8_t>(value));
            }
        }
        row = below;
    }
}

} // namespace kzb::test
