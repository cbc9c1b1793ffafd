// Division by a number that is used often, without dividing.
#pragma once

namespace kzb::kernels {

// A number and its reciprocal in two parts.
struct Divisor {
    double value;
    double reciprocal; // 1 / value, rounded
    double rest;       // what that lacks
};

inline Divisor divisor_of(double value) {
    const double reciprocal = 1 / value;
    return {value, reciprocal, __builtin_fma(-value, reciprocal, 1.0) / value};
}

// dividend / divisor.value to the last bit, as long as no step leaves the range of normal numbers. The first estimate
// is one of the two doubles around the quotient, so that its remainder is exact, and one correction with a correctly
// rounded reciprocal gives the correctly rounded quotient. For processors that have a fused multiply-add.
inline double fused_quotient(double dividend, const Divisor &divisor) {
    const double estimate = __builtin_fma(dividend, divisor.reciprocal, dividend * divisor.rest);
    const double remainder = __builtin_fma(-divisor.value, estimate, dividend);
    return __builtin_fma(remainder, divisor.reciprocal, estimate);
}

} // namespace kzb::kernels
