#include "kernels/resample_groups_avx512.h"

#include "kernels/avx512.h"
#include "kernels/resample_groups_loops.h"

#ifdef KZB_X86

namespace kzb::kernels {

namespace {

struct Quotient {
    __m512d value, reciprocal, rest;
};

KZB_TARGET_AVX512 inline Quotient quotient_by(const Divisor &divisor) {
    return {_mm512_set1_pd(divisor.value), _mm512_set1_pd(divisor.reciprocal), _mm512_set1_pd(divisor.rest)};
}

// fused_quotient of eight.
KZB_TARGET_AVX512 inline __m512d divide(__m512d dividend, const Quotient &by) {
    const __m512d estimate = _mm512_fmadd_pd(dividend, by.reciprocal, _mm512_mul_pd(dividend, by.rest));
    const __m512d remainder = _mm512_fnmadd_pd(by.value, estimate, dividend);
    return _mm512_fmadd_pd(remainder, by.reciprocal, estimate);
}

// The bytes of 64 / pixel_size pixels (48 / 3 of three bytes), in which unit j is the eight rows' byte j.
constexpr size_t bytes_at_once(size_t pixel_size) {
    return pixel_size == 3 ? 48 : 64;
}

// Register k's 16-byte quarter q then holds the units 16 q + 2 k and 16 q + 2 k + 1.
KZB_TARGET_AVX512 inline void interleave(__m512i *units, const RowGroup &group, size_t start, __mmask64 present) {
    __m512i rows[rows_together], pairs[rows_together], quads[rows_together];
    for (size_t r = 0; r < rows_together; ++r) {
        rows[r] = _mm512_maskz_loadu_epi8(present, group.rows[r] + start);
        const uintptr_t next = reinterpret_cast<uintptr_t>(group.rows[r]) + start + static_cast<uintptr_t>(group.ahead);
        _mm_prefetch(reinterpret_cast<const char *>(next), _MM_HINT_T0);
    }
    for (size_t r = 0; r < 4; ++r) {
        pairs[r] = _mm512_unpacklo_epi8(rows[2 * r], rows[2 * r + 1]);
        pairs[r + 4] = _mm512_unpackhi_epi8(rows[2 * r], rows[2 * r + 1]);
    }
    for (size_t h = 0; h < 2; ++h)
        for (size_t r = 0; r < 2; ++r) {
            quads[4 * h + r] = _mm512_unpacklo_epi16(pairs[4 * h + 2 * r], pairs[4 * h + 2 * r + 1]);
            quads[4 * h + r + 2] = _mm512_unpackhi_epi16(pairs[4 * h + 2 * r], pairs[4 * h + 2 * r + 1]);
        }
    for (size_t h = 0; h < 4; ++h) {
        units[2 * h] = _mm512_unpacklo_epi32(quads[2 * h], quads[2 * h + 1]);
        units[2 * h + 1] = _mm512_unpackhi_epi32(quads[2 * h], quads[2 * h + 1]);
    }
}

// The eight bytes of a unit of a register as doubles.

// From memory, where a load spreads them by the way.
struct LoadedUnit {
    KZB_TARGET_AVX512 static __m512d widened(const __m512i &units, size_t unit) {
        const auto *bytes = reinterpret_cast<const uint8_t *>(&units) + 8 * unit;
        return _mm512_cvtepi64_pd(_mm512_cvtepu8_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(bytes))));
    }
};

struct PermutedUnit {
    // The indices that spread a unit over eight quadwords.
    KZB_TARGET_AVX512 static __m512i spread_of(size_t unit) {
        const __m512i lanes = _mm512_set_epi64(7, 6, 5, 4, 3, 2, 1, 0);
        return _mm512_add_epi64(lanes, _mm512_set1_epi64(static_cast<int64_t>(unit * 8)));
    }
    KZB_TARGET_AVX512VBMI static __m512d widened(__m512i units, size_t unit) {
        constexpr __mmask64 lowest_of_quadwords = 0x0101010101010101;
        return _mm512_cvtepi64_pd(_mm512_maskz_permutexvar_epi8(lowest_of_quadwords, spread_of(unit), units));
    }
};

template <size_t channels>
KZB_TARGET_AVX512 inline void weigh_columns_of_avx512(float *means, size_t group_size, const double *columns,
                                                      int32_t first, const ContributionList *lists, size_t count) {
    constexpr size_t lanes = lanes_for(channels);
    for (; count != 0; --count, ++lists, means += channels * rows_together) {
        const double *column = columns + static_cast<size_t>(lists->first - first) * (lanes * rows_together);
        const double *weight = lists->weights;
        __m512d sums[lanes];
        for (__m512d &sum : sums) sum = _mm512_setzero_pd();
        for (const double *end = weight + lists->count; weight != end; ++weight, column += lanes * rows_together) {
            const __m512d factor = _mm512_set1_pd(*weight);
            for (size_t lane = 0; lane < lanes; ++lane)
                sums[lane] =
                    _mm512_add_pd(sums[lane], _mm512_mul_pd(factor, _mm512_loadu_pd(column + lane * rows_together)));
        }
        const Quotient by = quotient_by(lists->divisor);
        for (size_t lane = 0; lane < lanes; ++lane)
            _mm256_storeu_ps(means + lane / channels * group_size + lane % channels * rows_together,
                             _mm512_cvtpd_ps(divide(sums[lane], by)));
    }
}

template <class Unit>
KZB_TARGET_AVX512 inline void gather_columns_512(double *columns, size_t lanes, const RowGroup &group, size_t start,
                                                 size_t count) {
    const size_t pixel_size = group.pixel_size;
    if (group.mixes_gray) return gather_columns_loop(columns, lanes, group, start, count);
    const size_t last_byte = *std::max_element(group.offsets.begin(), group.offsets.end());
    const size_t pixels_at_once = bytes_at_once(pixel_size) / pixel_size;
    // Where each byte of the pixels at once goes, in doubles.
    size_t places[64];
    bool used[64] = {};
    for (size_t x = 0; x < pixels_at_once; ++x)
        for (size_t i = 0; i < group.channels; ++i) {
            used[x * pixel_size + group.offsets[i]] = true;
            places[x * pixel_size + group.offsets[i]] = (x * lanes + i) * rows_together;
        }
    for (size_t done = 0; done < count; done += pixels_at_once) {
        const size_t pixels = std::min(pixels_at_once, count - done);
        const size_t bytes = (pixels - 1) * pixel_size + last_byte + 1;
        const __mmask64 present = ~__mmask64{0} >> (64 - bytes);
        __m512i units[8];
        interleave(units, group, (start + done) * pixel_size, present);
        double *target = columns + done * lanes * rows_together;
        if (group.channels == pixel_size && pixels == pixels_at_once) {
            for (size_t q = 0; 16 * q < bytes; ++q)
#pragma GCC unroll 8
                for (size_t k = 0; k < 8; ++k) {
                    _mm512_storeu_pd(target + places[16 * q + 2 * k], Unit::widened(units[k], 2 * q));
                    _mm512_storeu_pd(target + places[16 * q + 2 * k + 1], Unit::widened(units[k], 2 * q + 1));
                }
            continue;
        }
        for (size_t j = 0; j < bytes; ++j)
            if (used[j]) _mm512_storeu_pd(target + places[j], Unit::widened(units[j % 16 / 2], j / 16 * 2 + j % 2));
    }
}

} // namespace

KZB_TARGET_AVX512 [[gnu::flatten]] void gather_columns_avx512(double *columns, size_t lanes, const RowGroup &group,
                                                              size_t start, size_t count) {
    gather_columns_512<LoadedUnit>(columns, lanes, group, start, count);
}

KZB_TARGET_AVX512VBMI [[gnu::flatten]] void
gather_columns_avx512vbmi(double *columns, size_t lanes, const RowGroup &group, size_t start, size_t count) {
    gather_columns_512<PermutedUnit>(columns, lanes, group, start, count);
}

KZB_TARGET_AVX512 void weigh_columns_avx512(float *means, size_t group_size, const double *columns, int32_t first,
                                            size_t channels, const ContributionList *lists, size_t count) {
    if (channels == 1) weigh_columns_of_avx512<1>(means, group_size, columns, first, lists, count);
    if (channels == 2) weigh_columns_of_avx512<2>(means, group_size, columns, first, lists, count);
    if (channels == 3) weigh_columns_of_avx512<3>(means, group_size, columns, first, lists, count);
    if (channels == 4) weigh_columns_of_avx512<4>(means, group_size, columns, first, lists, count);
}

KZB_TARGET_AVX512 void deal_means_avx512(const std::array<double *, rows_together> &rows, const float *means,
                                         size_t count) {
    const __m512 zero = _mm512_setzero_ps(), most = _mm512_set1_ps(255);
    // From two registers of two lanes each: rows 0 to 3, or 4 to 7, of all four lanes.
    const __m512i low = _mm512_set_epi32(27, 19, 11, 3, 26, 18, 10, 2, 25, 17, 9, 1, 24, 16, 8, 0);
    const __m512i high = _mm512_add_epi32(low, _mm512_set1_epi32(4));
    const __m512i even = _mm512_set_epi64(11, 10, 3, 2, 9, 8, 1, 0), odd = _mm512_set_epi64(15, 14, 7, 6, 13, 12, 5, 4);
    for (size_t i = 0; i < count; i += 8, means += 8 * rows_together) {
        __m512 lanes[4];
        for (size_t k = 0; k < 4; ++k)
            lanes[k] = _mm512_min_ps(_mm512_max_ps(_mm512_loadu_ps(means + 16 * k), zero), most);
        const __m512i a = _mm512_castps_si512(_mm512_permutex2var_ps(lanes[0], low, lanes[1]));
        const __m512i b = _mm512_castps_si512(_mm512_permutex2var_ps(lanes[2], low, lanes[3]));
        const __m512i c = _mm512_castps_si512(_mm512_permutex2var_ps(lanes[0], high, lanes[1]));
        const __m512i d = _mm512_castps_si512(_mm512_permutex2var_ps(lanes[2], high, lanes[3]));
        const __m512i pairs[4] = {_mm512_permutex2var_epi64(a, even, b), _mm512_permutex2var_epi64(a, odd, b),
                                  _mm512_permutex2var_epi64(c, even, d), _mm512_permutex2var_epi64(c, odd, d)};
        for (size_t k = 0; k < 4; ++k) {
            const __m512 pair = _mm512_castsi512_ps(pairs[k]);
            _mm512_storeu_pd(rows[2 * k] + i, _mm512_cvtps_pd(_mm512_castps512_ps256(pair)));
            _mm512_storeu_pd(rows[2 * k + 1] + i, _mm512_cvtps_pd(_mm512_extractf32x8_ps(pair, 1)));
        }
    }
}

KZB_TARGET_AVX512 void mean_of_rows_avx512(uint8_t *bytes, const double *const *rows, size_t start,
                                           const ContributionList &list, size_t count) {
    const Quotient by = quotient_by(list.divisor);
    const __m256i in_order = _mm256_set_epi32(7, 3, 6, 2, 5, 1, 4, 0);
    for (size_t i = 0; i < count; i += 32) {
        __m512d sums[4] = {_mm512_setzero_pd(), _mm512_setzero_pd(), _mm512_setzero_pd(), _mm512_setzero_pd()};
        for (int32_t k = 0; k < list.count; ++k) {
            const __m512d factor = _mm512_set1_pd(list.weights[k]);
            const double *row = rows[k] + start + i;
            for (size_t j = 0; j < 4; ++j)
                sums[j] = _mm512_add_pd(sums[j], _mm512_mul_pd(factor, _mm512_loadu_pd(row + 8 * j)));
        }
        // Truncated, then clamped on the way to bytes.
        __m256i numbers[4];
        for (size_t j = 0; j < 4; ++j) numbers[j] = _mm512_cvttpd_epi32(divide(sums[j], by));
        const __m256i packed =
            _mm256_packus_epi16(_mm256_packs_epi32(numbers[0], numbers[1]), _mm256_packs_epi32(numbers[2], numbers[3]));
        const __m256i result = _mm256_permutevar8x32_epi32(packed, in_order);
        if (count - i >= 32)
            _mm256_storeu_si256(reinterpret_cast<__m256i *>(bytes + i), result);
        else
            _mm256_mask_storeu_epi8(bytes + i, ~__mmask32{0} >> (32 - (count - i)), result);
    }
}

KZB_TARGET_AVX512 void write_working_pixels_avx512(uint8_t *target, const double *row, size_t channels, size_t count,
                                                   bool passes_by) {
    constexpr __mmask16 slots[] = {0x2222, 0xaaaa, 0x7777, 0xffff};
    constexpr size_t line = 64, pixels_at_once = line / working_pixel_size;
    const auto off = reinterpret_cast<uintptr_t>(target) % line;
    if (!passes_by || off % working_pixel_size != 0)
        return write_working_pixels_loop(target, row, channels, count, false);
    const size_t head = std::min(count, (line - off) % line / working_pixel_size);
    write_working_pixels_loop(target, row, channels, head, false);
    const __mmask8 low = static_cast<__mmask8>(channels == 1 ? 0x0f : 0xff);
    const __mmask8 high = static_cast<__mmask8>(channels == 3 ? 0x0f : channels == 4 ? 0xff : 0);
    size_t done = head;
    for (; count - done >= pixels_at_once; done += pixels_at_once) {
        const double *values = row + done * channels;
        const __m256 first = _mm512_cvtpd_ps(_mm512_maskz_loadu_pd(low, values));
        const __m256 second = _mm512_cvtpd_ps(_mm512_maskz_loadu_pd(high, values + 8));
        const __m512 floats = _mm512_insertf32x8(_mm512_castps256_ps512(first), second, 1);
        _mm512_stream_ps(reinterpret_cast<float *>(target + done * working_pixel_size),
                         _mm512_maskz_expand_ps(slots[channels - 1], floats));
    }
    _mm_sfence();
    write_working_pixels_loop(target + done * working_pixel_size, row + done * channels, channels, count - done, false);
}

} // namespace kzb::kernels

#endif
