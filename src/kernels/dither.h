// Bytes reduced to a few levels, each to the one below or above it.
#pragma once

#include "kernels/row_function.h"

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// Levels that lie evenly from 0 to 255, and how a byte is split between two of them.
class DitherScale {
public:
    // 2 to 256 levels and 1 to 256 cells: of the values between two levels, the share that goes to the lower one is
    // counted in cells.
    DitherScale(int32_t levels, int32_t cells)
        : steps_(static_cast<uint16_t>(levels - 1)), cells_(static_cast<uint16_t>(cells + 1)),
          reciprocal_(static_cast<uint16_t>(steps_ == 1 ? 0xffff : 0x10000 / steps_)) {}

    // The level of a byte: the lower one where the threshold is less than v (cells + 1) / 256, else the upper one.
    uint8_t operator()(uint8_t v, uint8_t threshold) const {
        const auto lower = static_cast<uint16_t>(static_cast<uint16_t>(v * steps_) >> 8);
        const auto fraction = static_cast<uint16_t>(static_cast<uint16_t>(v * cells_) >> 8);
        const auto scaled = static_cast<uint16_t>((lower + (threshold < fraction ? 0 : 1)) * 255);
        // Divided by steps: the product with the reciprocal is the quotient or one less.
        const auto quotient = static_cast<uint16_t>(static_cast<uint32_t>(scaled) * reciprocal_ >> 16);
        const auto rest = static_cast<uint16_t>(scaled - quotient * steps_);
        return static_cast<uint8_t>(quotient + (rest >= steps_ ? 1 : 0));
    }

private:
    uint16_t steps_, cells_, reciprocal_;
};

// target[i] = (target[i] & keep[i]) | (scale(source[i], thresholds[i]) & ~keep[i]) for i below count. Target and source
// may be the same bytes.
extern const RowFunction<void(uint8_t *target, const uint8_t *source, const uint8_t *thresholds, const uint8_t *keep,
                              const DitherScale &scale, size_t count)>
    dither;

} // namespace kzb::kernels
