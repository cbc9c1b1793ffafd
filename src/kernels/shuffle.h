// Permutations of pixels in vector registers.
#pragma once

#include "kernels/avx512.h"
#include "kernels/permute.h"

#include <algorithm>
#include <cstring>

#ifdef KZB_X86

namespace kzb::kernels {

// For each byte of a register of pixels of 1 to 4 bytes: its place in its pixel, 4 where no whole pixel fits; and where
// the pixel starts among pixels of 1 to 4 bytes.
struct PixelPlaces {
    alignas(64) uint8_t place[4][64];
    alignas(64) uint8_t start[4][4][64];
};

constexpr PixelPlaces pixel_places(size_t size) {
    PixelPlaces places = {};
    for (size_t step = 1; step <= 4; ++step) {
        for (size_t i = 0; i < size; ++i) {
            places.place[step - 1][i] = static_cast<uint8_t>(i < size / step * step ? i % step : 4);
            for (size_t from = 1; from <= 4; ++from)
                places.start[step - 1][from - 1][i] = static_cast<uint8_t>(i / step * from);
        }
    }
    return places;
}

inline constexpr PixelPlaces places_of_64 = pixel_places(64);
inline constexpr PixelPlaces places_of_16 = pixel_places(16);

// For each four bytes of a register whose quarters hold 1 to 4 of them: where they lie when the quarters follow each
// other without gaps, in ascending or descending order; and the way back.
struct FoursOfQuarters {
    alignas(64) uint32_t spread[2][4][16];
    alignas(64) uint32_t packed[4][16];
};

inline constexpr FoursOfQuarters fours_of_quarters = [] {
    FoursOfQuarters fours = {};
    for (uint32_t held = 1; held <= 4; ++held)
        for (uint32_t i = 0; i < 16; ++i) {
            const uint32_t place = i % 4 < held ? i % 4 : held - 1;
            fours.spread[0][held - 1][i] = i / 4 * held + place;
            fours.spread[1][held - 1][i] = (3 - i / 4) * held + place;
            fours.packed[held - 1][i] = i < 4 * held ? i / held * 4 + i % held : 0;
        }
    return fours;
}();

inline uint64_t lowest_bits(size_t count) {
    return count < 64 ? (uint64_t{1} << count) - 1 : ~uint64_t{0};
}

KZB_TARGET_AVX2 inline __m128i load(const uint8_t *bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes));
}

KZB_TARGET_AVX2 inline void store(uint8_t *bytes, __m128i value) {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(bytes), value);
}

// The bytes of a permutation for each place, those beyond the pixel as -1 and 0.
KZB_TARGET_AVX2 inline __m128i by_place(const std::array<int8_t, 4> &from) {
    int32_t four;
    std::memcpy(&four, from.data(), sizeof four);
    return _mm_insert_epi32(_mm_set1_epi8(-1), four, 0);
}

KZB_TARGET_AVX2 inline __m128i by_place(const std::array<uint8_t, 4> &flip) {
    int32_t four;
    std::memcpy(&four, flip.data(), sizeof four);
    return _mm_cvtsi32_si128(four);
}

// Stores the marked bytes over 64 that all exist. A masked store to a line that is not in the nearest cache takes three
// times as long as reading and writing it.
KZB_TARGET_AVX512 inline void store_over(uint8_t *bytes, uint64_t mask, __m512i value) {
    const bool all = mask == ~uint64_t{0};
    _mm512_storeu_si512(bytes, all ? value : _mm512_mask_blend_epi8(mask, _mm512_loadu_si512(bytes), value));
}

// What becomes of the pixels that fill 16 bytes; bytes that are not written have an index of 0x80 or more.
struct Shuffle128 {
    __m128i index, flip, written;
    size_t pixels;

    KZB_TARGET_AVX2 explicit Shuffle128(const Permutation &permutation)
        : Shuffle128(permutation, 16 / std::max(permutation.to_step, permutation.from_step)) {}

    KZB_TARGET_AVX2 Shuffle128(const Permutation &permutation, size_t pixels_at_once) : pixels(pixels_at_once) {
        const __m128i place = load(places_of_16.place[permutation.to_step - 1]);
        const __m128i from = _mm_shuffle_epi8(by_place(permutation.from), place);
        __m128i start = load(places_of_16.start[permutation.to_step - 1][permutation.from_step - 1]);
        const auto last = static_cast<char>((pixels - 1) * permutation.from_step);
        // Of more pixels than fit, those that do not.
        const __m128i beyond = _mm_cmpgt_epi8(start, _mm_set1_epi8(last));
        if (permutation.reversed) start = _mm_sub_epi8(_mm_set1_epi8(last), start);
        const __m128i kept = _mm_or_si128(_mm_cmpgt_epi8(_mm_setzero_si128(), from), beyond);
        index = _mm_or_si128(_mm_add_epi8(start, from), kept);
        flip = _mm_shuffle_epi8(by_place(permutation.flip), place);
        written = _mm_andnot_si128(kept, _mm_set1_epi8(-1));
    }

    // The target's bytes, of which those of the permutation come from the source's.
    KZB_TARGET_AVX2 __m128i operator()(__m128i target, __m128i source) const {
        return _mm_blendv_epi8(target, _mm_xor_si128(_mm_shuffle_epi8(source, index), flip), written);
    }
};

// The bytes that a permutation reads of the pixels in 64 bytes.
inline uint64_t bytes_read(const Permutation &permutation, size_t pixels) {
    if (permutation.from_step == 1) return lowest_bits(pixels);
    uint64_t bytes = 0;
    for (size_t k = 0; k < permutation.to_step; ++k)
        if (permutation.from[k] >= 0) bytes |= uint64_t{1} << permutation.from[k];
    constexpr uint64_t pixel_starts[] = {~uint64_t{0}, 0x5555555555555555, 0x9249249249249249, 0x1111111111111111};
    return bytes * pixel_starts[permutation.from_step - 1] & lowest_bits(pixels * permutation.from_step);
}

// Loops over 64 bytes take one of the two classes that follow, with a bit for each byte that is read or written. Where
// a pixel becomes four bytes, shuffled(spread(source)) has those that are not written as 0, and no bit inverted.

// In each quarter of the register the pixels that 16 bytes have room for, in whole numbers of four bytes.
struct Shuffle512 {
    __m512i spreading, index, flip, packing;
    uint64_t read_mask, written_mask;
    size_t pixels;
    bool spreads, packs;

    KZB_TARGET_AVX512 explicit Shuffle512(const Permutation &permutation) {
        const size_t most = std::max(permutation.to_step, permutation.from_step);
        const size_t in_quarter = most == 3 ? 4 : 16 / most;
        const Shuffle128 quarter(permutation, in_quarter);
        pixels = 4 * in_quarter;
        index = _mm512_broadcast_i32x4(quarter.index);
        flip = _mm512_broadcast_i32x4(quarter.flip);
        const size_t from_fours = in_quarter * permutation.from_step / 4,
                     to_fours = in_quarter * permutation.to_step / 4;
        spreading = _mm512_load_si512(fours_of_quarters.spread[permutation.reversed][from_fours - 1]);
        packing = _mm512_load_si512(fours_of_quarters.packed[to_fours - 1]);
        spreads = permutation.reversed || from_fours != 4;
        packs = to_fours != 4;
        read_mask = bytes_read(permutation, pixels);
        written_mask = _mm512_movepi8_mask(packed(_mm512_broadcast_i32x4(quarter.written))) &
                       lowest_bits(pixels * permutation.to_step);
    }

    KZB_TARGET_AVX512 __m512i operator()(__m512i source) const {
        return packed(_mm512_xor_si512(shuffled(spread(source)), flip));
    }
    KZB_TARGET_AVX512 __m512i spread(__m512i source) const {
        return spreads ? _mm512_permutexvar_epi32(spreading, source) : source;
    }
    KZB_TARGET_AVX512 __m512i shuffled(__m512i spread) const { return _mm512_shuffle_epi8(spread, index); }

private:
    KZB_TARGET_AVX512 __m512i packed(__m512i quarters) const {
        return packs ? _mm512_permutexvar_epi32(packing, quarters) : quarters;
    }
};

// By the byte permutes of the whole register.
struct Shuffle512Vbmi {
    __m512i index, flip;
    uint64_t read_mask, written_mask;
    size_t pixels;

    KZB_TARGET_AVX512VBMI explicit Shuffle512Vbmi(const Permutation &permutation)
        : pixels(64 / std::max(permutation.to_step, permutation.from_step)) {
        const __m512i place = _mm512_load_si512(places_of_64.place[permutation.to_step - 1]);
        const __m512i from = _mm512_permutexvar_epi8(place, _mm512_castsi128_si512(by_place(permutation.from)));
        __m512i start = _mm512_load_si512(places_of_64.start[permutation.to_step - 1][permutation.from_step - 1]);
        if (permutation.reversed)
            start = _mm512_sub_epi8(_mm512_set1_epi8(static_cast<char>((pixels - 1) * permutation.from_step)), start);
        index = _mm512_add_epi8(start, from);
        flip = _mm512_permutexvar_epi8(place, _mm512_castsi128_si512(by_place(permutation.flip)));
        written_mask = ~_mm512_movepi8_mask(from) & lowest_bits(pixels * permutation.to_step);
        read_mask = bytes_read(permutation, pixels);
    }

    KZB_TARGET_AVX512VBMI __m512i operator()(__m512i source) const {
        return _mm512_xor_si512(_mm512_permutexvar_epi8(index, source), flip);
    }
    KZB_TARGET_AVX512VBMI __m512i spread(__m512i source) const { return source; }
    KZB_TARGET_AVX512VBMI __m512i shuffled(__m512i spread) const {
        return _mm512_maskz_permutexvar_epi8(written_mask, index, spread);
    }
};

} // namespace kzb::kernels

#endif
