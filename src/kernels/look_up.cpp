#include "kernels/look_up.h"

#include "kernels/shuffle.h"

#include <cstring>

namespace kzb::kernels {

PixelTables::PixelTables(size_t step, const std::array<const uint8_t *, 4> &tables) : step_(step), tables_(tables) {
    for (size_t k = 0; k < step; ++k) {
        if (tables[k] == nullptr) continue;
        size_t found = 0;
        while (found < count_ && std::memcmp(distinct_[found], tables[k], 256) != 0) ++found;
        if (found == count_) distinct_[count_++] = tables[k];
        for (size_t lane = k; lane < lanes_[found].size(); lane += step) lanes_[found][lane] = 0xff;
    }
}

namespace {

void look_up_plainly(uint8_t *target, size_t target_step, const uint8_t *source, size_t source_step,
                     const uint8_t *table, size_t count) {
    for (; count != 0; --count, target += target_step, source += source_step) *target = table[*source];
}

void look_up_pixels_plainly(uint8_t *target, const uint8_t *source, const PixelTables &tables, size_t count) {
    const size_t step = tables.step();
    for (size_t k = 0; k < step; ++k)
        if (tables[k] != nullptr) look_up_plainly(target + k, step, source + k, step, tables[k], count);
}

#ifdef KZB_X86

// Look-ups by byte permutes of the tables: all bytes of a register at once.

// One table in sixteen registers of sixteen entries: the low four bits choose in each, the high four among them. With
// one table 2.5 times as fast as the plain loop; with more the plain loop is the faster one.
struct SplitTable {
    __m256i parts[16];
};

KZB_TARGET_AVX2 inline SplitTable split(const uint8_t *table) {
    SplitTable result;
    for (size_t i = 0; i < 16; ++i)
        result.parts[i] =
            _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i *>(table + 16 * i)));
    return result;
}

KZB_TARGET_AVX2 inline __m256i looked_up(const SplitTable &table, __m256i bytes) {
    const __m256i low = _mm256_and_si256(bytes, _mm256_set1_epi8(15));
    __m256i found[16];
    for (size_t i = 0; i < 16; ++i) found[i] = _mm256_shuffle_epi8(table.parts[i], low);
    // Bit 4, 5, 6 and 7 of each byte in the place of its sign.
    __m256i sign = _mm256_slli_epi16(bytes, 3);
    for (size_t left = 8; left != 0; left /= 2) {
        for (size_t i = 0; i < left; ++i) found[i] = _mm256_blendv_epi8(found[2 * i], found[2 * i + 1], sign);
        sign = left == 8 ? _mm256_slli_epi16(bytes, 2) : left == 4 ? _mm256_slli_epi16(bytes, 1) : bytes;
    }
    return found[0];
}

KZB_TARGET_AVX2 void look_up_pixels_avx2(uint8_t *target, const uint8_t *source, const PixelTables &tables,
                                         size_t count) {
    const size_t step = tables.step();
    const size_t first_byte_of_last = count == 0 ? 0 : (count - 1) * step;
    size_t at = 0;
    if (tables.count() == 1) {
        const SplitTable table = split(tables.table(0));
        for (size_t phase = 0; at + 32 <= first_byte_of_last; at += 32, phase = phase == 2 ? 0 : phase + 1) {
            const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(source + at));
            const auto *marked = reinterpret_cast<const __m256i *>(tables.lanes(0) + 32 * phase);
            auto *to = reinterpret_cast<__m256i *>(target + at);
            _mm256_storeu_si256(
                to, _mm256_blendv_epi8(_mm256_loadu_si256(to), looked_up(table, bytes), _mm256_loadu_si256(marked)));
        }
        // The pixel that the last register ended in, and the rest.
        for (; at % step != 0; ++at)
            if (const uint8_t *of = tables[at % step]) target[at] = of[source[at]];
    }
    look_up_pixels_plainly(target + at, source + at, tables, count - at / step);
}

// A table of 128 pairs of entries in four registers.
struct PairTable {
    __m512i parts[4];

    // The pairs of the bytes that lie in the high seven bits of words; `high` marks those from 128.
    KZB_TARGET_AVX512 __m512i pairs(__m512i words, __mmask32 high) const {
        return _mm512_mask_blend_epi16(high, _mm512_permutex2var_epi16(parts[0], words, parts[1]),
                                       _mm512_permutex2var_epi16(parts[2], words, parts[3]));
    }
    KZB_TARGET_AVX512 __m512i operator()(__m512i bytes) const {
        const __m512i even_words = _mm512_srli_epi16(bytes, 1), odd_words = _mm512_srli_epi16(bytes, 9);
        const __m512i even = pairs(even_words, _mm512_movepi16_mask(_mm512_slli_epi16(bytes, 8)));
        const __m512i odd = pairs(odd_words, _mm512_movepi16_mask(bytes));
        // Where the entry's place in its pair is that of the byte in its word, and where it is the other one.
        constexpr __mmask64 odd_bytes = 0xaaaaaaaaaaaaaaaa;
        const __m512i in_place = _mm512_mask_blend_epi8(odd_bytes, even, odd);
        const __m512i crossed = _mm512_or_si512(_mm512_srli_epi16(even, 8), _mm512_slli_epi16(odd, 8));
        const __mmask64 second = _mm512_movepi8_mask(_mm512_slli_epi16(bytes, 7));
        return _mm512_mask_blend_epi8(second ^ odd_bytes, in_place, crossed);
    }
};

struct LongTable {
    __m512i parts[4];

    KZB_TARGET_AVX512VBMI __m512i operator()(__m512i bytes) const {
        const __m512i low = _mm512_permutex2var_epi8(parts[0], bytes, parts[1]);
        const __m512i high = _mm512_permutex2var_epi8(parts[2], bytes, parts[3]);
        return _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes), low, high);
    }
};

// The tables of a row, each for the bytes that are marked in three registers.
template <class Table, size_t count> struct MarkedTables {
    Table tables[count];
    uint64_t marked[count][3];
    uint64_t all[3] = {};

    KZB_TARGET_AVX512 explicit MarkedTables(const PixelTables &of) {
        for (size_t t = 0; t < count; ++t) {
            for (size_t i = 0; i < 4; ++i) tables[t].parts[i] = _mm512_loadu_si512(of.table(t) + 64 * i);
            for (size_t phase = 0; phase < 3; ++phase) {
                marked[t][phase] = _mm512_movepi8_mask(_mm512_loadu_si512(of.lanes(t) + 64 * phase));
                all[phase] |= marked[t][phase];
            }
        }
    }

    KZB_TARGET_AVX512 __m512i operator()(__m512i bytes, size_t phase) const {
        __m512i result = tables[0](bytes);
        for (size_t t = 1; t < count; ++t) result = _mm512_mask_blend_epi8(marked[t][phase], result, tables[t](bytes));
        return result;
    }
};

template <class Table, size_t table_count>
KZB_TARGET_AVX512 inline void look_up_marked(uint8_t *target, const uint8_t *source, const PixelTables &of,
                                             size_t bytes) {
    const MarkedTables<Table, table_count> tables(of);
    // Up to the first byte of the last pixel.
    const size_t inside = bytes < of.step() ? 0 : bytes - of.step() + 1;
    size_t at = 0, phase = 0;
    for (; at + 64 <= inside; at += 64, phase = phase == 2 ? 0 : phase + 1)
        store_over(target + at, tables.all[phase], tables(_mm512_loadu_si512(source + at), phase));
    for (; at < bytes; at += 64, phase = phase == 2 ? 0 : phase + 1) {
        const uint64_t written = tables.all[phase] & lowest_bits(bytes - at);
        _mm512_mask_storeu_epi8(target + at, written, tables(_mm512_maskz_loadu_epi8(written, source + at), phase));
    }
}

template <class Table>
KZB_TARGET_AVX512 inline void look_up_pixels_512(uint8_t *target, const uint8_t *source, const PixelTables &tables,
                                                 size_t count) {
    const size_t bytes = count * tables.step();
    switch (tables.count()) {
    case 1:
        return look_up_marked<Table, 1>(target, source, tables, bytes);
    case 2:
        return look_up_marked<Table, 2>(target, source, tables, bytes);
    case 3:
        return look_up_marked<Table, 3>(target, source, tables, bytes);
    case 4:
        return look_up_marked<Table, 4>(target, source, tables, bytes);
    default:
        return;
    }
}

#endif

} // namespace

decltype(look_up) look_up = compiled<look_up_plainly>();
#ifdef KZB_X86
decltype(look_up_pixels) look_up_pixels =
    compiled<look_up_pixels_plainly, look_up_pixels_avx2, Compiled<look_up_pixels_512<PairTable>>::avx512,
             Compiled<look_up_pixels_512<LongTable>>::avx512vbmi>();
#else
decltype(look_up_pixels) look_up_pixels = compiled<look_up_pixels_plainly>();
#endif

} // namespace kzb::kernels
