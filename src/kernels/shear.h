// The arithmetic of an anti-aliased shear: each pixel hands a fraction of itself to the next one.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// value × fraction, truncated; a fraction lies in 0..1.
inline uint8_t part_of(uint8_t value, double fraction) {
    return static_cast<uint8_t>(static_cast<int32_t>(value * fraction));
}

// What is left of the background where the last pixel's part covers it.
inline uint8_t blend_with_background(uint8_t background, double fraction, uint8_t part) {
    return static_cast<uint8_t>(static_cast<int32_t>(background - (background * fraction - part)));
}

// parts[i] = part_of(source[i], fraction) for i below count.
void take_parts(uint8_t *parts, const uint8_t *source, double fraction, size_t count);

// The same with a fraction for each byte.
void take_parts(uint8_t *parts, const uint8_t *source, const double *fractions, size_t count);

// target[i] = source[i] - given[i] + received[i], modulo 256, for i below count. The target overlaps no other.
void hand_on(uint8_t *target, const uint8_t *source, const uint8_t *given, const uint8_t *received, size_t count);

} // namespace kzb::kernels
