// Channels of one row's pixels to another row's.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// Where a pixel's channels lie: bytes from pixel to pixel, and from the pixel's start to each channel.
struct Placement {
    size_t step;
    std::array<int32_t, 4> offsets;
};

// For `count` pixels copies the first `channels` (at most 4) of the placements' channels. The rows may share bytes in
// any way: pixels are taken in ascending order, in each the channels in their order, and each byte is read after the
// earlier ones were written.
void copy_channels(uint8_t *target, const Placement &to, const uint8_t *source, const Placement &from, size_t channels,
                   size_t count);

// The same with the target's first channel the gray of the source's first three, red, green and blue, and with
// `with_alpha` the target's second the source's fourth.
void copy_as_gray(uint8_t *target, const Placement &to, const uint8_t *source, const Placement &from, bool with_alpha,
                  size_t count);

} // namespace kzb::kernels
