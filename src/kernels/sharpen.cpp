#include "kernels/sharpen.h"

#include "kernels/avx512.h"

#include <algorithm>
#include <cmath>

namespace kzb::kernels {

namespace {

// A number from -255 to 510 within 0 to 255.
constexpr auto clamped = [] {
    std::array<uint8_t, 766> table = {};
    for (int32_t i = 0; i < 766; ++i) table[static_cast<size_t>(i)] = static_cast<uint8_t>(std::clamp(i - 255, 0, 255));
    return table;
}();

void sharpen_plainly(uint8_t *values, const uint8_t *references, const SharpeningSteps &steps, size_t count) {
    if (!steps.exact) {
        const Sharpening local = steps.sharpening;
        for (size_t i = 0; i < count; ++i) values[i] = local(values[i], references[i]);
        return;
    }
    const int16_t *step = steps.steps.data() + 255;
    const uint8_t *within = clamped.data() + 255;
    for (size_t i = 0; i < count; ++i) values[i] = within[references[i] + step[values[i] - references[i]]];
}

#ifdef KZB_X86

// Steps as byte permutes: 64 values in 2.5 ns instead of 30.
KZB_TARGET_AVX512VBMI void sharpen_avx512vbmi(uint8_t *values, const uint8_t *references, const SharpeningSteps &steps,
                                              size_t count) {
    if (!steps.exact || !steps.outward) return Compiled<sharpen_plainly>::avx512vbmi(values, references, steps, count);
    __m512i table[2][4];
    for (size_t side = 0; side < 2; ++side)
        for (size_t k = 0; k < 4; ++k) table[side][k] = _mm512_loadu_si512(steps.away[side].data() + 64 * k);
    for (size_t i = 0; i < count; i += 64) {
        const __mmask64 there = count - i < 64 ? ~__mmask64{0} >> (64 - (count - i)) : ~__mmask64{0};
        const __m512i value = _mm512_maskz_loadu_epi8(there, values + i);
        const __m512i reference = _mm512_maskz_loadu_epi8(there, references + i);
        const __m512i above = _mm512_subs_epu8(value, reference);
        const __m512i below = _mm512_subs_epu8(reference, value);
        const __m512i up = _mm512_mask_blend_epi8(_mm512_movepi8_mask(above),
                                                  _mm512_permutex2var_epi8(table[0][0], above, table[0][1]),
                                                  _mm512_permutex2var_epi8(table[0][2], above, table[0][3]));
        const __m512i down = _mm512_mask_blend_epi8(_mm512_movepi8_mask(below),
                                                    _mm512_permutex2var_epi8(table[1][0], below, table[1][1]),
                                                    _mm512_permutex2var_epi8(table[1][2], below, table[1][3]));
        _mm512_mask_storeu_epi8(values + i, there, _mm512_subs_epu8(_mm512_adds_epu8(reference, up), down));
    }
}

#else
constexpr auto sharpen_avx512vbmi = sharpen_plainly;
#endif

} // namespace

SharpeningSteps::SharpeningSteps(const Sharpening &by) : sharpening(by), exact(true), outward(true) {
    // Far more than a sum below 1024 is rounded by.
    constexpr double close = 1.0 / (1 << 30);
    // A factor that is not finite is not exact either: its product with 0 is no number.
    for (int32_t d = -255; d <= 255; ++d) {
        const double product = d * by.factor;
        const double step = std::abs(d) < by.threshold ? d : std::floor(product);
        exact = exact && (std::fabs(product) >= 1024 || product - std::floor(product) <= 1 - close);
        const auto whole = static_cast<int16_t>(step > -255 ? std::min(step, 255.0) : -255);
        steps[static_cast<size_t>(d + 255)] = whole;
        outward = outward && (d < 0 ? whole <= 0 : d == 0 ? whole == 0 : whole >= 0);
        if (d >= 0) away[0][static_cast<size_t>(d)] = static_cast<uint8_t>(std::abs(whole));
        if (d <= 0) away[1][static_cast<size_t>(-d)] = static_cast<uint8_t>(std::abs(whole));
    }
}

decltype(sharpen) sharpen =
    compiled<sharpen_plainly, Compiled<sharpen_plainly>::avx2, Compiled<sharpen_plainly>::avx512, sharpen_avx512vbmi>();

} // namespace kzb::kernels
