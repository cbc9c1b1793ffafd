// Numbers that become bytes.
#pragma once

#include <cstdint>

namespace kzb {

// Clamped to 0..255, then truncated; a value that is not a number gives 0.
inline uint8_t byte_from(double value) {
    if (!(value > 0)) return 0;
    return value < 255 ? static_cast<uint8_t>(value) : uint8_t{255};
}

// Truncated toward zero, clamped to 32 bits; a value that is not a number gives 0.
inline int32_t integer_from(double value) {
    if (value != value) return 0;
    if (value <= -2147483648.0) return INT32_MIN;
    return value >= 2147483647.0 ? INT32_MAX : static_cast<int32_t>(value);
}

} // namespace kzb
