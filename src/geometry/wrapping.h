// Coordinates that user code passes, in 32-bit arithmetic that wraps around.
#pragma once

#include <cstdint>

namespace kzb {

inline int32_t wrapping_add(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

inline int32_t wrapping_subtract(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

inline int32_t wrapping_multiply(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

inline int32_t wrapping_negate(int32_t a) { return wrapping_subtract(0, a); }

} // namespace kzb
