#include "pixel_rows.h"

#include <algorithm>
#include <cstring>

namespace kzb {

namespace {

uint8_t widened(unsigned five_bits) {
    return static_cast<uint8_t>(five_bits << 3 | five_bits >> 2);
}

} // namespace

void read_pixels(const GWorld &world, int64_t x, int64_t y, size_t count, uint8_t *exchange) {
    const uint8_t *from = world_row(world, y) + static_cast<size_t>(x) * pixel_bytes(world.depth);
    uint8_t *to = exchange;
    switch (world.depth) {
    case 8:
        for (size_t i = 0; i < count; ++i, to += 4) {
            to[0] = 0;
            to[1] = to[2] = to[3] = from[i];
        }
        break;
    case 16:
        for (size_t i = 0; i < count; ++i, to += 4) {
            uint16_t pixel;
            std::memcpy(&pixel, from + i * 2, 2);
            to[0] = 0;
            to[1] = widened(pixel >> 10 & 31);
            to[2] = widened(pixel >> 5 & 31);
            to[3] = widened(pixel & 31);
        }
        break;
    case 24:
        for (size_t i = 0; i < count; ++i, to += 4, from += 3) {
            to[0] = 0;
            to[1] = from[0];
            to[2] = from[1];
            to[3] = from[2];
        }
        break;
    default:
        std::memcpy(exchange, from, count * 4);
        for (size_t i = 0; i < count; ++i) exchange[i * 4] = 0;
    }
}

void write_pixels(GWorld &world, int64_t x, int64_t y, size_t count, const uint8_t *exchange) {
    uint8_t *to = world_row(world, y) + static_cast<size_t>(x) * pixel_bytes(world.depth);
    const uint8_t *from = exchange;
    switch (world.depth) {
    case 8:
        grays_from_exchange(exchange, count, to);
        break;
    case 16:
        for (size_t i = 0; i < count; ++i, from += 4) {
            const auto pixel = static_cast<uint16_t>(from[1] >> 3 << 10 | from[2] >> 3 << 5 | from[3] >> 3);
            std::memcpy(to + i * 2, &pixel, 2);
        }
        break;
    case 24:
        for (size_t i = 0; i < count; ++i, from += 4, to += 3) {
            to[0] = from[1];
            to[1] = from[2];
            to[2] = from[3];
        }
        break;
    default:
        std::memcpy(to, exchange, count * 4);
        for (size_t i = 0; i < count; ++i) to[i * 4] = 0;
    }
}

void grays_from_exchange(const uint8_t *exchange, size_t count, uint8_t *gray) {
    for (size_t i = 0; i < count; ++i, exchange += 4) gray[i] = gray_from_colour(exchange[1], exchange[2], exchange[3]);
}

void read_mask(const GWorld &mask, int64_t x, int64_t y, size_t count, uint8_t *gray) {
    const int64_t inside = y < mask.height ? std::clamp<int64_t>(mask.width - x, 0, static_cast<int64_t>(count)) : 0;
    uint8_t exchange[256 * 4];
    for (int64_t done = 0; done < inside; done += 256) {
        const auto part = static_cast<size_t>(std::min<int64_t>(256, inside - done));
        read_pixels(mask, x + done, y, part, exchange);
        grays_from_exchange(exchange, part, gray + done);
    }
    std::memset(gray + inside, 255, count - static_cast<size_t>(inside));
}

} // namespace kzb
