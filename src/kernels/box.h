// Sums of bytes in a window that moves by one, and their averages.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// Largest divisor for 32-bit sums, which must stay within 31 bits; 64-bit sums serve divisors up to 2^45.
inline constexpr int64_t largest_narrow_divisor = 8191;

// sums[i] += weight * row[i].
void accumulate(int32_t *sums, const uint8_t *row, int64_t weight, size_t count);
void accumulate(int64_t *sums, const uint8_t *row, int64_t weight, size_t count);

// sums[i] += entering[i] - leaving[i].
void slide(int32_t *sums, const uint8_t *entering, const uint8_t *leaving, size_t count);
void slide(int64_t *sums, const uint8_t *entering, const uint8_t *leaving, size_t count);

// averages[i] = sums[i] / divisor, or 0 for a sum outside 0 to 256 * divisor - 1.
void average(uint8_t *averages, const int32_t *sums, int64_t divisor, size_t count);
void average(uint8_t *averages, const int64_t *sums, int64_t divisor, size_t count);

// The sums of the pixels from x - radius to x + radius for each x below count and each of the channels, which lie side
// by side in both rows; the first and the last pixel stand for those beyond them. Count is not 0.
void window_sums(int32_t *sums, const uint8_t *row, size_t channels, size_t count, int64_t radius);
void window_sums(int64_t *sums, const uint8_t *row, size_t channels, size_t count, int64_t radius);

// How often each of `count` places counts in a window of this radius around the first: calls add(place, times).
template <class Add> void for_first_window(int64_t radius, int64_t count, Add add) {
    const int64_t reached = radius < count ? radius : count - 1;
    add(int64_t{0}, radius + 1);
    for (int64_t place = 1; place <= reached; ++place) add(place, int64_t{1});
    if (radius > reached) add(count - 1, radius - reached);
}

} // namespace kzb::kernels
