// Sine, cosine and tangent from plain arithmetic, without branches: the same bits on every machine, one at a time or
// many side by side. The `fused` forms, for processors with a fused multiply-add, give the same as long as no step
// comes near the ends of the numbers' range.
#pragma once

#include "kernels/divisor.h"

namespace kzb::kernels {

// A number held as the sum of two doubles that do not overlap: about 106 bits.
struct Double2 {
    double high, low;
};

inline Double2 sum(double a, double b) {
    const double high = a + b;
    const double part = high - a;
    return {high, (a - (high - part)) + (b - part)};
}

// The same where a is not smaller in magnitude.
inline Double2 ordered_sum(double a, double b) {
    const double high = a + b;
    return {high, b - (high - a)};
}

// The upper 26 bits of a double, so that products of halves are exact.
inline double upper_half(double a) {
    const double scaled = a * 134217729.0;
    return scaled - (scaled - a);
}

template <bool fused = false> inline Double2 product(double a, double b) {
    const double high = a * b;
    // Either way the second part is what the first lacks, exactly.
    if constexpr (fused) return {high, __builtin_fma(a, b, -high)};
    const double a1 = upper_half(a), a2 = a - a1;
    const double b1 = upper_half(b), b2 = b - b1;
    return {high, ((a1 * b1 - high) + a1 * b2 + a2 * b1) + a2 * b2};
}

template <bool fused = false> inline Double2 product(Double2 a, Double2 b) {
    const Double2 upper = product<fused>(a.high, b.high);
    return ordered_sum(upper.high, upper.low + (a.high * b.low + a.low * b.high));
}

template <bool fused = false> inline double ratio(double a, const Divisor &b) {
    return fused ? fused_quotient(a, b) : a / b.value;
}

template <bool fused = false> inline Double2 quotient(Double2 a, const Divisor &b) {
    const double high = ratio<fused>(a.high, b);
    const Double2 back = product<fused>(high, b.value);
    return ordered_sum(high, ratio<fused>((a.high - back.high) - back.low + a.low, b));
}

inline Double2 quotient(Double2 a, Double2 b) {
    const double high = a.high / b.high;
    const Double2 back = product({high, 0.0}, b);
    return ordered_sum(high, ((a.high - back.high) - back.low + a.low) / b.high);
}

inline Double2 one_minus(Double2 a) {
    const Double2 upper = ordered_sum(1.0, -a.high);
    return ordered_sum(upper.high, upper.low - a.low);
}

// k(k + 1) for k = n + step, where n is 1 for the cosine and 2 for the sine.
inline Divisor series_divisor(bool cosine, int step) {
    const Divisor of_cosine = divisor_of((step + 1.0) * (step + 2.0)),
                  of_sine = divisor_of((step + 2.0) * (step + 3.0));
    return {cosine ? of_cosine.value : of_sine.value, cosine ? of_cosine.reciprocal : of_sine.reciprocal,
            cosine ? of_cosine.rest : of_sine.rest};
}

// 1 - s/(n(n+1)) (1 - s/((n+2)(n+3)) (1 - ...)) for s up to (π/4)²: the cosine for n = 1, the sine over its angle for
// n = 2. The far factors matter so little that doubles hold them.
template <bool fused = false> inline Double2 alternating_series(Double2 square, bool cosine) {
    constexpr int exact_factors = 5, factors = 11;
    double tail = 1.0;
    int factor = factors - 1;
#pragma GCC unroll 16
    for (; factor >= exact_factors; --factor)
        tail = 1.0 - ratio<fused>(square.high * tail, series_divisor(cosine, 2 * factor));
    Double2 series = {tail, 0.0};
#pragma GCC unroll 16
    for (; factor >= 0; --factor)
        series = one_minus(quotient<fused>(product<fused>(square, series), series_divisor(cosine, 2 * factor)));
    return series;
}

// The nearest whole number, an even one from the middle, of a number of at most 31 bits.
inline double nearest_whole(double value) {
    constexpr double unit = 0x1.8p+52;
    return (value + unit) - unit;
}

// The sine of an angle and so many quarter turns.
template <bool fused = false> inline Double2 sine_of(double angle, int quarter_turns) {
    // π/2 in three parts; the first two have 40 bits, so that their products with a count of turns are exact.
    constexpr double half_pi[] = {0x1.921fb54442p+0, 0x1.a308d31318p-41, 0x1.8a2e03707344ap-81};
    const double turns = nearest_whole(ratio<fused>(angle, divisor_of(half_pi[0])));
    const Double2 most = sum(angle - turns * half_pi[0], -turns * half_pi[1]);
    const Double2 rest = ordered_sum(most.high, most.low - turns * half_pi[2]);
    const Double2 square = product<fused>(rest, rest);
    const double half_turns = turns + quarter_turns;
    const double quarter = half_turns - 4 * nearest_whole(half_turns / 4 - 0.375); // 0 to 3
    const bool odd = quarter == 1 || quarter == 3;
    const Double2 series = alternating_series<fused>(square, odd);
    const Double2 scaled = product<fused>(rest, series);
    const double sign = quarter < 2 ? 1.0 : -1.0;
    return {sign * (odd ? series.high : scaled.high), sign * (odd ? series.low : scaled.low)};
}

} // namespace kzb::kernels
