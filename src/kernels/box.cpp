#include "kernels/box.h"

#include <algorithm>

namespace kzb::kernels {

namespace {

template <class Sum> void accumulate_all(Sum *__restrict sums, const uint8_t *row, Sum weight, size_t count) {
    for (size_t i = 0; i < count; ++i) sums[i] += weight * row[i];
}

template <class Sum>
void slide_all(Sum *__restrict sums, const uint8_t *entering, const uint8_t *leaving, size_t count) {
    for (size_t i = 0; i < count; ++i) sums[i] += entering[i] - leaving[i];
}

// Moves a window along one channel: stores the sum of each place, then lets a pixel enter and one leave.
template <class Sum>
Sum run(Sum *__restrict sums, Sum sum, const uint8_t *entering, size_t entering_step, const uint8_t *leaving,
        size_t leaving_step, size_t step, size_t count) {
    for (; count != 0; --count, sums += step, entering += entering_step, leaving += leaving_step) {
        *sums = sum;
        sum += *entering - *leaving;
    }
    return sum;
}

template <class Sum>
void channel_window_sums(Sum *sums, const uint8_t *row, size_t step, size_t count, int64_t radius) {
    Sum sum = 0;
    for_first_window(radius, static_cast<int64_t>(count), [&](int64_t place, int64_t times) {
        sum += static_cast<Sum>(times) * row[static_cast<size_t>(place) * step];
    });
    const uint8_t *last = row + (count - 1) * step;
    // Before `inner` the first pixel leaves, from `outer` on the last one enters.
    const auto reach = static_cast<size_t>(std::min(radius, static_cast<int64_t>(count)));
    const size_t inner = reach;
    const size_t outer = reach < count ? count - 1 - reach : 0;
    const size_t turn = std::min(inner, outer);
    sum = run(sums, sum, row + std::min(reach + 1, count - 1) * step, step, row, 0, step, turn);
    if (inner < outer)
        sum = run(sums + turn * step, sum, row + (turn + reach + 1) * step, step, row, step, step, outer - inner);
    else
        sum = run(sums + turn * step, sum, last, 0, row, 0, step, inner - outer);
    const size_t rest = std::max(inner, outer);
    run(sums + rest * step, sum, last, 0, row + (rest - reach) * step, step, step, count - rest);
}

template <class Sum>
void all_window_sums(Sum *sums, const uint8_t *row, size_t channels, size_t count, int64_t radius) {
    for (size_t c = 0; c < channels; ++c) channel_window_sums(sums + c, row + c, channels, count, radius);
}

} // namespace

void accumulate(int32_t *sums, const uint8_t *row, int64_t weight, size_t count) {
    accumulate_all(sums, row, static_cast<int32_t>(weight), count);
}

void accumulate(int64_t *sums, const uint8_t *row, int64_t weight, size_t count) {
    accumulate_all(sums, row, weight, count);
}

void slide(int32_t *sums, const uint8_t *entering, const uint8_t *leaving, size_t count) {
    slide_all(sums, entering, leaving, count);
}

void slide(int64_t *sums, const uint8_t *entering, const uint8_t *leaving, size_t count) {
    slide_all(sums, entering, leaving, count);
}

// Exact: the half keeps the quotient 1 / (2 divisor) >= 2^-14 away from whole numbers, and the rounded reciprocal and
// product shift one below 256 by no more than 2^-15.
void average(uint8_t *averages, const int32_t *__restrict sums, int64_t divisor, size_t count) {
    const auto limit = static_cast<uint32_t>(256 * divisor);
    const float reciprocal = 1.0f / static_cast<float>(divisor);
    for (size_t i = 0; i < count; ++i) {
        const int32_t sum = static_cast<uint32_t>(sums[i]) < limit ? sums[i] : 0;
        averages[i] = static_cast<uint8_t>(static_cast<int32_t>((static_cast<float>(sum) + 0.5f) * reciprocal));
    }
}

// Exact: a quotient that is not whole lies 1 / divisor >= 2^-45 below the next whole number, and one below 256 is
// rounded by no more than 2^-46.
void average(uint8_t *averages, const int64_t *__restrict sums, int64_t divisor, size_t count) {
    const auto limit = static_cast<uint64_t>(256 * divisor);
    const auto divided_by = static_cast<double>(divisor);
    for (size_t i = 0; i < count; ++i) {
        const int64_t sum = static_cast<uint64_t>(sums[i]) < limit ? sums[i] : 0;
        averages[i] = static_cast<uint8_t>(static_cast<int32_t>(static_cast<double>(sum) / divided_by));
    }
}

void window_sums(int32_t *sums, const uint8_t *row, size_t channels, size_t count, int64_t radius) {
    all_window_sums(sums, row, channels, count, radius);
}

void window_sums(int64_t *sums, const uint8_t *row, size_t channels, size_t count, int64_t radius) {
    all_window_sums(sums, row, channels, count, radius);
}

} // namespace kzb::kernels
