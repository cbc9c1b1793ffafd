// The threshold matrices of ordered dithering.
#pragma once

#include <cstdint>
#include <span>

namespace kzb {

// size × size thresholds, row by row.
struct DitherMatrix {
    int32_t size;
    std::span<const uint8_t> thresholds;
};

// The matrix of a code (DitherMagic2x2Matrix = 1 to DitherCluster8Matrix = 10); of size 0 for any other code.
DitherMatrix dither_matrix(int32_t code);

} // namespace kzb
