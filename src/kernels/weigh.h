// Gray from colours, a row at a time.
#pragma once

#include "kernels/permute.h"

namespace kzb::kernels {

// (77 red + 151 green + 28 blue) / 256 without rounding; the weights sum to 256, so that white stays white.
inline uint8_t gray_from(uint8_t red, uint8_t green, uint8_t blue) {
    return static_cast<uint8_t>((77 * red + 151 * green + 28 * blue) >> 8);
}

// For pixels of 1 to 4 bytes; offsets are bytes from the pixel's start.
struct Weighing {
    size_t to_step, from_step;
    int8_t red, green, blue, alpha; // of the source; alpha only where the target has it
    int8_t to_gray, to_alpha;       // of the target; to_alpha -1: it is left as it is
    uint8_t alpha_flip;
};

// Writes gray, and alpha with some bits inverted, for `count` pixels that share no byte with the source. Of each pixel
// a byte that lies before or after those named here need not exist.
extern const RowFunction<void(uint8_t *target, const uint8_t *source, const Weighing &weighing, size_t count)>
    weigh_pixels;

} // namespace kzb::kernels
