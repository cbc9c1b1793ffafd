#include "kernels/resample_whole.h"

#include "kernels/avx512.h"

#include <algorithm>

namespace kzb::kernels {

namespace {

void sum_picks_plainly(uint16_t *sums, const uint8_t *row, const Picks *entries, const PickPlaces *places,
                       size_t entry_count, size_t picks) {
    for (; entry_count != 0; --entry_count, ++entries, places += picks)
        for (size_t i = 0; i < entries->count; ++i) {
            unsigned sum = 0;
            for (size_t p = 0; p < picks; ++p) sum += row[entries->start + places[p][i]];
            sums[entries->target + i] = static_cast<uint16_t>(sum);
        }
}

void average_sums_loop(uint8_t *bytes, const uint16_t *const *rows, size_t row_count, unsigned shift, size_t count) {
    constexpr size_t tile = 512;
    for (size_t done = 0; done < count; done += tile) {
        const size_t length = std::min(tile, count - done);
        uint16_t sums[tile];
        const uint16_t *first = rows[0] + done, *second = rows[row_count - 1] + done;
        if (row_count == 1) {
            for (size_t i = 0; i < length; ++i) bytes[done + i] = static_cast<uint8_t>(first[i] >> shift);
            continue;
        }
        for (size_t i = 0; i < length; ++i) sums[i] = static_cast<uint16_t>(first[i] + second[i]);
        for (size_t k = 1; k + 1 < row_count; ++k) {
            const uint16_t *row = rows[k] + done;
            for (size_t i = 0; i < length; ++i) sums[i] = static_cast<uint16_t>(sums[i] + row[i]);
        }
        for (size_t i = 0; i < length; ++i) bytes[done + i] = static_cast<uint8_t>(sums[i] >> shift);
    }
}

#ifdef KZB_X86

// Byte permutes pick 64 bytes at once from a window of two registers.
KZB_TARGET_AVX512VBMI void sum_picks_avx512vbmi(uint16_t *sums, const uint8_t *row, const Picks *entries,
                                                const PickPlaces *places, size_t entry_count, size_t picks) {
    for (; entry_count != 0; --entry_count, ++entries) {
        const uint8_t *window = row + entries->start;
        const size_t readable = entries->readable;
        // Pages that the processor would not look ahead to by itself: twice as fast from memory.
        const auto ahead = reinterpret_cast<uintptr_t>(window) + 8192;
        _mm_prefetch(reinterpret_cast<const char *>(ahead), _MM_HINT_T0);
        _mm_prefetch(reinterpret_cast<const char *>(ahead + 64), _MM_HINT_T0);
        const __mmask64 low = ~__mmask64{0} >> (readable < 64 ? 64 - readable : 0);
        const __mmask64 high = readable <= 64 ? 0 : ~__mmask64{0} >> (pick_window - readable);
        const __m512i first = _mm512_maskz_loadu_epi8(low, window);
        const __m512i second = _mm512_maskz_loadu_epi8(high, window + (readable <= 64 ? 0 : 64));
        __m512i lower = _mm512_setzero_si512(), upper = lower;
        for (size_t p = 0; p < picks; ++p, ++places) {
            const __m512i picked = _mm512_permutex2var_epi8(first, _mm512_loadu_si512(places->data()), second);
            lower = _mm512_add_epi16(lower, _mm512_cvtepu8_epi16(_mm512_castsi512_si256(picked)));
            upper = _mm512_add_epi16(upper, _mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(picked, 1)));
        }
        _mm512_storeu_si512(sums + entries->target, lower);
        _mm512_storeu_si512(sums + entries->target + 32, upper);
    }
}

#endif

} // namespace

#ifdef KZB_X86
decltype(sum_picks) sum_picks = compiled<sum_picks_plainly, Compiled<sum_picks_plainly>::avx2,
                                         Compiled<sum_picks_plainly>::avx512, sum_picks_avx512vbmi>();
#else
decltype(sum_picks) sum_picks = compiled<sum_picks_plainly>();
#endif
decltype(average_sums) average_sums = compiled<average_sums_loop>();

} // namespace kzb::kernels
