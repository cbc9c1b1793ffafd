// Sums of up to 255 bytes in a window that moves by one, kept in 16 bits, and their means.
#pragma once

#include "kernels/row_function.h"

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

inline constexpr int32_t largest_narrow_box_radius = 127;

// Division of sums of `divisor` bytes by an odd divisor from 3 to 255, as two multiplications: with k = log2(divisor)
// rounded down, (sum + addend) * factor / 2^16 * scale / 2^16, each quotient rounded down, scale being 2^(16 - k). The
// factor is 2^(16 + k) / divisor rounded up, or where that is too much, rounded down with an addend of 1; one of the
// two is exact for all 16-bit sums.
struct NarrowMean {
    uint16_t factor;
    uint16_t addend;
    uint16_t scale;

    explicit NarrowMean(int32_t divisor) {
        uint32_t k = 0;
        while (2 << k <= divisor) ++k;
        const auto d = static_cast<uint32_t>(divisor);
        const uint32_t up = ((uint32_t{1} << (16 + k)) + d - 1) / d;
        const bool exact = up * d - (uint32_t{1} << (16 + k)) <= uint32_t{1} << k;
        factor = static_cast<uint16_t>(exact ? up : up - 1);
        addend = exact ? 0 : 1;
        scale = static_cast<uint16_t>(65536 >> k);
    }
};

// sums[i] += weight * row[i].
extern const RowFunction<void(uint16_t *sums, const uint8_t *row, int32_t weight, size_t count)> accumulate_narrow;

// sums[i] += entering[i] - leaving[i], then means[i] = mean(sums[i]). The means overlap nothing else.
extern const RowFunction<void(uint8_t *means, uint16_t *sums, const uint8_t *entering, const uint8_t *leaving,
                              const NarrowMean &mean, size_t count)>
    slide_narrow;

// sums[i] = row[i] + sums[i - channels], modulo 2^16, for i below count; there is nothing before the first ones.
// Channels are 1 to 4.
extern const RowFunction<void(uint16_t *sums, const uint8_t *row, size_t channels, size_t count)> sum_up;

// means[i] = mean(after[i] - before[i]), the difference taken modulo 2^16. The means overlap nothing else.
extern const RowFunction<void(uint8_t *means, const uint16_t *after, const uint16_t *before, const NarrowMean &mean,
                              size_t count)>
    average_differences;

} // namespace kzb::kernels
