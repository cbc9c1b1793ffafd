// Gray from colour, in integers.
#pragma once

#include <cstdint>

namespace kzb::kernels {

// The weights sum to 256: white stays 255.
inline uint8_t gray_from(int32_t red, int32_t green, int32_t blue) {
    return static_cast<uint8_t>((77 * red + 151 * green + 28 * blue) >> 8);
}

} // namespace kzb::kernels
