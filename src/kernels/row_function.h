// A row function: one plain loop, compiled for each instruction set, and called through the address of the one in use.
#pragma once

#include "kernels/level.h"

#include <type_traits>

#ifdef KZB_X86
#define KZB_TARGET_AVX2 [[gnu::target("avx2,fma,bmi,bmi2")]]
#define KZB_TARGET_AVX512 [[gnu::target("avx2,fma,bmi,bmi2,avx512f,avx512bw,avx512cd,avx512dq,avx512vl")]]
#define KZB_TARGET_AVX512VBMI                                                                                          \
    [[gnu::target("avx2,fma,bmi,bmi2,avx512f,avx512bw,avx512cd,avx512dq,avx512vl,avx512vbmi")]]
#else
#define KZB_TARGET_AVX2
#define KZB_TARGET_AVX512
#define KZB_TARGET_AVX512VBMI
#endif

namespace kzb::kernels {

template <class Signature> class RowFunction;

// Declared in a header as `extern const RowFunction<void(...)> name;` and called like a function. The choice is made
// when the module is loaded, before the host can call anything.
template <class Result, class... Arguments> class RowFunction<Result(Arguments...)> {
public:
    using Pointer = Result (*)(Arguments...);
    using Levels = std::array<Pointer, level_names.size()>;

    explicit RowFunction(const Levels &levels)
        : chosen_(levels[static_cast<size_t>(level_in_use())]), levels_(levels) {}

    Result operator()(Arguments... arguments) const { return chosen_(arguments...); }

    // The function of one level, which must run here: for tests and measurements.
    Pointer at(Level level) const { return levels_[static_cast<size_t>(level)]; }

private:
    Pointer chosen_;
    Levels levels_;
};

template <auto body> struct Compiled;

template <class Result, class... Arguments, Result (*body)(Arguments...)> struct Compiled<body> {
    [[gnu::flatten]] static Result baseline(Arguments... arguments) { return body(arguments...); }
    KZB_TARGET_AVX2 [[gnu::flatten]] static Result avx2(Arguments... arguments) { return body(arguments...); }
    KZB_TARGET_AVX512 [[gnu::flatten]] static Result avx512(Arguments... arguments) { return body(arguments...); }
    KZB_TARGET_AVX512VBMI [[gnu::flatten]] static Result avx512vbmi(Arguments... arguments) {
        return body(arguments...);
    }
};

// A plain loop in every level. All that it calls must be inline or a template in the same file, or it stays at
// baseline.
template <auto body> RowFunction<std::remove_pointer_t<decltype(body)>> compiled() {
    using In = Compiled<body>;
    return RowFunction<std::remove_pointer_t<decltype(body)>>({In::baseline, In::avx2, In::avx512, In::avx512vbmi});
}

// The same with bodies of their own for the higher levels, written with KZB_TARGET_AVX2, KZB_TARGET_AVX512 and
// KZB_TARGET_AVX512VBMI; the reason and the gain stand beside them.
template <auto body, auto avx2, auto avx512, auto avx512vbmi = avx512>
RowFunction<std::remove_pointer_t<decltype(body)>> compiled() {
    using In = Compiled<body>;
    return RowFunction<std::remove_pointer_t<decltype(body)>>({In::baseline, avx2, avx512, avx512vbmi});
}

} // namespace kzb::kernels
