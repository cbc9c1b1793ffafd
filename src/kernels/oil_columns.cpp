#include "kernels/oil_columns.h"

#include "kernels/avx512.h"

#include <bit>
#include <cstring>

namespace kzb::kernels {

namespace {

constexpr size_t most_bins = 256;
constexpr size_t block = 64;
alignas(64) constexpr std::array<uint8_t, most_bins> none = {};

// The counts of one channel, column by column; nothing but zeros beside the strip.
class ChannelCounts {
public:
    ChannelCounts(const OilColumns &columns, size_t channel)
        : counts_(columns.counts + channel * columns.stride), step_(columns.channels * columns.stride),
          columns_(columns.columns) {}
    const uint8_t *operator[](int32_t column) const {
        return column >= 0 && column < columns_ ? counts_ + static_cast<size_t>(column) * step_ : none.data();
    }

private:
    const uint8_t *counts_;
    size_t step_;
    int32_t columns_;
};

// The mean of a bin's values over the neighbourhood of a column.
inline uint8_t mean_of(const OilColumns &columns, int32_t x, size_t channel, int32_t range, size_t bin,
                       uint32_t count) {
    if (columns.sums == nullptr) return static_cast<uint8_t>(bin);
    const int32_t start = x - range < 0 ? 0 : x - range;
    const int32_t end = x + range + 1 < columns.columns ? x + range + 1 : columns.columns;
    const size_t step = columns.channels * columns.stride;
    const uint16_t *sums = columns.sums + static_cast<size_t>(start) * step + channel * columns.stride + bin;
    uint32_t sum = 0;
    for (int32_t column = start; column < end; ++column, sums += step) sum += *sums;
    return static_cast<uint8_t>(sum / count);
}

// Moves a histogram of `stride` bins on by a column and gives its greatest count.
inline uint8_t move_on(uint8_t *__restrict window, const uint8_t *__restrict entering,
                       const uint8_t *__restrict leaving, size_t stride) {
    uint8_t greatest[block] = {};
    for (size_t start = 0; start < stride; start += block) {
        for (size_t i = 0; i < block; ++i) {
            const auto count = static_cast<uint8_t>(window[start + i] + entering[start + i] - leaving[start + i]);
            window[start + i] = count;
            greatest[i] = greatest[i] < count ? count : greatest[i];
        }
    }
    for (size_t half = block / 2; half >= 16; half /= 2)
        for (size_t i = 0; i < half; ++i)
            greatest[i] = greatest[i] < greatest[half + i] ? greatest[half + i] : greatest[i];
    uint8_t best = 0;
    for (size_t i = 0; i < 16; ++i) best = best < greatest[i] ? greatest[i] : best;
    return best;
}

void fullest_means_plainly(uint8_t *target, const OilColumns &columns, int32_t first, int32_t count, int32_t range) {
    for (size_t channel = 0; channel < columns.channels; ++channel) {
        const ChannelCounts counts(columns, channel);
        alignas(block) uint8_t window[most_bins] = {};
        for (int32_t column = first - range; column < first + range; ++column)
            move_on(window, counts[column], none.data(), columns.stride);
        for (int32_t x = first; x < first + count; ++x) {
            const uint8_t *leaving = x == first ? none.data() : counts[x - range - 1];
            const uint8_t best = move_on(window, counts[x + range], leaving, columns.stride);
            const auto *place = static_cast<const uint8_t *>(std::memchr(window, best, columns.stride));
            target[static_cast<size_t>(x - first) * columns.channels + channel] =
                mean_of(columns, x, channel, range, static_cast<size_t>(place - window), best);
        }
    }
}

#ifdef KZB_X86

// The greatest of 64 bytes.
KZB_TARGET_AVX512 inline __m512i greatest_everywhere(__m512i bytes) {
    const __m256i half = _mm256_max_epu8(_mm512_castsi512_si256(bytes), _mm512_extracti64x4_epi64(bytes, 1));
    const __m128i quarter = _mm_max_epu8(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
    const __m128i ones = _mm_set1_epi8(-1);
    const __m128i inverse = _mm_xor_si128(quarter, ones);
    const __m128i least = _mm_minpos_epu16(_mm_min_epu8(inverse, _mm_srli_epi16(inverse, 8)));
    return _mm512_broadcastb_epi8(_mm_xor_si128(least, ones));
}

// One channel after the other with its whole histogram in registers.
template <size_t parts>
KZB_TARGET_AVX512 inline void fullest_means_of(uint8_t *target, const OilColumns &columns, int32_t first, int32_t count,
                                               int32_t range) {
    for (size_t channel = 0; channel < columns.channels; ++channel) {
        const ChannelCounts counts(columns, channel);
        __m512i window[parts];
        for (size_t k = 0; k < parts; ++k) window[k] = _mm512_setzero_si512();
        for (int32_t column = first - range; column < first + range; ++column)
            for (size_t k = 0; k < parts; ++k)
                window[k] = _mm512_add_epi8(window[k], _mm512_loadu_si512(counts[column] + block * k));
        for (int32_t x = first; x < first + count; ++x) {
            const uint8_t *entering = counts[x + range];
            const uint8_t *leaving = x == first ? none.data() : counts[x - range - 1];
            for (size_t k = 0; k < parts; ++k)
                window[k] = _mm512_sub_epi8(_mm512_add_epi8(window[k], _mm512_loadu_si512(entering + block * k)),
                                            _mm512_loadu_si512(leaving + block * k));
            __m512i best = window[0];
            for (size_t k = 1; k < parts; ++k) best = _mm512_max_epu8(best, window[k]);
            best = greatest_everywhere(best);
            size_t bin = 0;
            for (size_t k = parts; k-- > 0;) {
                const uint64_t places = _mm512_cmpeq_epi8_mask(window[k], best);
                bin = places != 0 ? block * k + static_cast<size_t>(std::countr_zero(places)) : bin;
            }
            const auto most = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm512_castsi512_si128(best))) & 0xff;
            target[static_cast<size_t>(x - first) * columns.channels + channel] =
                mean_of(columns, x, channel, range, bin, most);
        }
    }
}

KZB_TARGET_AVX512 void fullest_means_avx512(uint8_t *target, const OilColumns &columns, int32_t first, int32_t count,
                                            int32_t range) {
    switch (columns.stride / block) {
    case 1:
        return fullest_means_of<1>(target, columns, first, count, range);
    case 2:
        return fullest_means_of<2>(target, columns, first, count, range);
    case 3:
        return fullest_means_of<3>(target, columns, first, count, range);
    case 4:
        return fullest_means_of<4>(target, columns, first, count, range);
    }
}

#else
constexpr auto fullest_means_avx512 = fullest_means_plainly;
#endif

} // namespace

decltype(fullest_means) fullest_means =
    compiled<fullest_means_plainly, Compiled<fullest_means_plainly>::avx2, fullest_means_avx512>();

void count_row(const OilColumns &columns, const uint8_t *row, int32_t sign) {
    const size_t count = static_cast<size_t>(columns.columns) * columns.channels;
    for (size_t i = 0; i < count; ++i) {
        const size_t at = i * columns.stride + columns.bins->of[row[i]];
        columns.counts[at] = static_cast<uint8_t>(columns.counts[at] + sign);
        if (columns.sums != nullptr) columns.sums[at] = static_cast<uint16_t>(columns.sums[at] + sign * row[i]);
    }
}

} // namespace kzb::kernels
