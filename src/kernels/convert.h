// Pixels from one layout to another, a row at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// target[i] = source[i] ^ flip, for i below count, each walked by its own step.
void copy_channel(uint8_t *target, size_t target_step, const uint8_t *source, size_t source_step, uint8_t flip,
                  size_t count);

// Whether two runs of bytes have none in common.
bool disjoint(const uint8_t *a, size_t a_size, const uint8_t *b, size_t b_size);

// Where the channels of a row's pixels lie: bytes from pixel to pixel, and from the pixel's start to each channel.
struct Placement {
    size_t step;
    std::array<int32_t, 4> offsets;
};

// Which bytes of a source pixel become which of a target pixel.
struct Conversion {
    Placement to;
    Placement from;
    size_t channels; // of the target, at most 4; 0: nothing is written
    // Off: each of the target's channels is the source's of the same place. On: the target's first is the gray of the
    // source's first three, its second, if any, the source's fourth.
    bool to_gray;
    uint8_t last_flip; // the bits of the target's last channel that are inverted
};

// Converts `count` pixels. The rows may share bytes in any way: pixels are taken in ascending order, in each the
// channels in theirs, and each byte is read after the earlier ones were written.
void convert(uint8_t *target, const uint8_t *source, const Conversion &conversion, size_t count);

} // namespace kzb::kernels
