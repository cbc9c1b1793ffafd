// Bytes of pixels to places of their own in other pixels, a row at a time.
#pragma once

#include "kernels/row_function.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// For pixels of 1 to 4 bytes.
struct Permutation {
    size_t to_step, from_step;   // bytes from pixel to pixel
    std::array<int8_t, 4> from;  // for each of the target's bytes the source's, or -1: it is kept
    std::array<uint8_t, 4> flip; // the bits that are inverted on the way
    bool reversed;               // the source is walked downwards
};

// The first `bytes` bytes of each pixel as they are.
inline Permutation leading_bytes(size_t to_step, size_t from_step, size_t bytes, bool reversed) {
    Permutation permutation = {to_step, from_step, {-1, -1, -1, -1}, {}, reversed};
    for (size_t k = 0; k < bytes; ++k) permutation.from[k] = static_cast<int8_t>(k);
    return permutation;
}

// target[i] = the permuted source[i] for i below count, or source[-i]. The two share no byte. Of each pixel a byte that
// lies before or after those that the permutation names need not exist.
extern const RowFunction<void(uint8_t *target, const uint8_t *source, const Permutation &permutation, size_t count)>
    permute_pixels;

// Reverses the first `bytes` bytes of `count` pixels of 1 to 4 bytes in place.
extern const RowFunction<void(uint8_t *pixels, size_t step, size_t bytes, size_t count)> reverse_pixels;

} // namespace kzb::kernels
