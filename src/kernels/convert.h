// Pixels from one layout to another, a row at a time. Steps are bytes from pixel to pixel.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// (77 red + 151 green + 28 blue) / 256 without rounding; the weights sum to 256, so that white stays white.
inline uint8_t gray_from(uint8_t red, uint8_t green, uint8_t blue) {
    return static_cast<uint8_t>((77 * red + 151 * green + 28 * blue) >> 8);
}

// target[i] = source[i] ^ flip, for i below count, each walked by its own step.
void copy_channel(uint8_t *target, size_t target_step, const uint8_t *source, size_t source_step, uint8_t flip,
                  size_t count);

// target[i] = gray_from(red[i], green[i], blue[i]); the three walk by source_step.
void gray_channel(uint8_t *target, size_t target_step, const uint8_t *red, const uint8_t *green, const uint8_t *blue,
                  size_t source_step, size_t count);

} // namespace kzb::kernels
