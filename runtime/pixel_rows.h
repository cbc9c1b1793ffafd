// Rows of pixels between worlds of any depth and exchange pixels.
//
// Depth 8 is gray, 16 is five bits each of red, green and blue in a native 16-bit word, 24 is red, green, blue bytes,
// 32 is exchange pixels. The caller keeps positions inside the world.
#ifndef KZB_RUNTIME_PIXEL_ROWS_H
#define KZB_RUNTIME_PIXEL_ROWS_H

#include "graphics_world.h"

namespace kzb {

inline uint8_t gray_from_colour(unsigned red, unsigned green, unsigned blue) {
    return static_cast<uint8_t>((77 * red + 151 * green + 28 * blue) >> 8);
}

// `count` pixels from (x, y) on as exchange pixels; byte 0 becomes 0.
void read_pixels(const GWorld &world, int64_t x, int64_t y, size_t count, uint8_t *exchange);

// Exchange pixels to `count` pixels from (x, y) on; byte 0 of a 32-bit pixel becomes 0.
void write_pixels(GWorld &world, int64_t x, int64_t y, size_t count, const uint8_t *exchange);

// The gray levels of `count` exchange pixels.
void grays_from_exchange(const uint8_t *exchange, size_t count, uint8_t *gray);

// The levels of a mask for `count` pixels from (x, y) on of its picture, which may lie beyond the mask: 255, opaque.
void read_mask(const GWorld &mask, int64_t x, int64_t y, size_t count, uint8_t *gray);

} // namespace kzb

#endif
