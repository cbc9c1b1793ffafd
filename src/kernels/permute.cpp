#include "kernels/permute.h"

#include "kernels/shuffle.h"

#include <utility>

namespace kzb::kernels {

namespace {

void permute_plainly(uint8_t *target, const uint8_t *source, const Permutation &permutation, size_t count) {
    const auto [to_step, from_step, from, flip, reversed] = permutation;
    const auto step = reversed ? -static_cast<ptrdiff_t>(from_step) : static_cast<ptrdiff_t>(from_step);
    for (; count != 0; --count, target += to_step, source += step)
        for (size_t k = 0; k < to_step; ++k)
            if (from[k] >= 0) target[k] = static_cast<uint8_t>(source[from[k]] ^ flip[k]);
}

void reverse_plainly(uint8_t *pixels, size_t step, size_t bytes, size_t count) {
    if (count == 0) return;
    uint8_t *last = pixels + (count - 1) * step;
    for (; pixels < last; pixels += step, last -= step)
        for (size_t k = 0; k < bytes; ++k) std::swap(pixels[k], last[k]);
}

#ifdef KZB_X86

// Byte shuffles in registers. A plain loop moves a byte at a time: on four-byte pixels these are 8 (avx2) and 20
// (avx512) times as fast as it.

KZB_TARGET_AVX2 void permute_avx2(uint8_t *target, const uint8_t *source, const Permutation &permutation,
                                  size_t count) {
    const Shuffle128 shuffle(permutation);
    const size_t n = shuffle.pixels, to_step = permutation.to_step, from_step = permutation.from_step;
    const auto step = permutation.reversed ? -static_cast<ptrdiff_t>(from_step) : static_cast<ptrdiff_t>(from_step);
    size_t done = 0;
    if (permutation.reversed) {
        // Registers end at or before the first byte of the first pixel.
        done = std::min(count, 15 / from_step + 1);
        permute_plainly(target, source, permutation, done);
        source -= (n - 1) * from_step;
    }
    // Whole registers lie between the first byte of the first and the first byte of the last pixel.
    for (; count - done > n && (count - 1 - done) * std::min(to_step, from_step) >= 15; done += n) {
        uint8_t *to = target + done * to_step;
        store(to, shuffle(load(to), load(source + static_cast<ptrdiff_t>(done) * step)));
    }
    if (permutation.reversed) source += (n - 1) * from_step;
    permute_plainly(target + done * to_step, source + static_cast<ptrdiff_t>(done) * step, permutation, count - done);
}

template <class Shuffle>
KZB_TARGET_AVX512 inline void permute_512(uint8_t *target, const uint8_t *source, const Permutation &permutation,
                                          size_t count) {
    const Shuffle shuffle(permutation);
    const size_t n = shuffle.pixels, to_step = permutation.to_step, from_step = permutation.from_step;
    const auto step = permutation.reversed ? -static_cast<ptrdiff_t>(from_step) : static_cast<ptrdiff_t>(from_step);
    if (permutation.reversed) source -= (n - 1) * from_step;
    // Where whole pixels are written, what a register holds beyond them is overwritten by the next one.
    const bool gapless = shuffle.written_mask == lowest_bits(n * to_step);
    const uint64_t stored = gapless ? ~uint64_t{0} : shuffle.written_mask;
    for (size_t done = 0; done < count; done += n) {
        const size_t left = count - done;
        const uint8_t *from = source + static_cast<ptrdiff_t>(done) * step;
        uint8_t *to = target + done * to_step;
        // Whether both registers lie between the first bytes of the first and of the last pixel.
        const size_t beside = permutation.reversed ? done + n - 1 : left - 1;
        if (left > n && (left - 1) * to_step >= 63 && beside * from_step >= 63) {
            // Processors foresee less of a row that is read downwards.
            if (permutation.reversed) _mm_prefetch(reinterpret_cast<const char *>(from - 1024), _MM_HINT_T0);
            store_over(to, stored, shuffle(_mm512_loadu_si512(from)));
        } else {
            const size_t pixels = std::min(left, n);
            const uint64_t read =
                permutation.reversed ? ~lowest_bits((n - pixels) * from_step) : lowest_bits(pixels * from_step);
            _mm512_mask_storeu_epi8(to, shuffle.written_mask & lowest_bits(pixels * to_step),
                                    shuffle(_mm512_maskz_loadu_epi8(shuffle.read_mask & read, from)));
        }
    }
}

// Reversed registers of both ends change places; the middle is left to the plain loop.
template <class Shuffle>
KZB_TARGET_AVX512 inline void reverse_512(uint8_t *pixels, size_t step, size_t bytes, size_t count) {
    if (count < 2) return;
    const Shuffle shuffle(leading_bytes(step, step, bytes, true));
    const size_t n = shuffle.pixels;
    uint8_t *end = pixels + count * step;
    // Registers may reach into the last pixels, so that these go first.
    for (size_t first = (64 - n * step) / step + 1; first != 0 && count >= 2; --first, count -= 2, pixels += step) {
        end -= step;
        for (size_t k = 0; k < bytes; ++k) std::swap(pixels[k], end[k]);
    }
    for (; count * step >= 2 * n * step + 64; count -= 2 * n, pixels += n * step) {
        end -= n * step;
        const __m512i front = _mm512_loadu_si512(pixels), back = _mm512_loadu_si512(end);
        store_over(pixels, shuffle.written_mask, shuffle(back));
        store_over(end, shuffle.written_mask, shuffle(front));
    }
    reverse_plainly(pixels, step, bytes, count);
}

KZB_TARGET_AVX2 void reverse_avx2(uint8_t *pixels, size_t step, size_t bytes, size_t count) {
    if (count < 2) return;
    const Shuffle128 shuffle(leading_bytes(step, step, bytes, true));
    const size_t n = shuffle.pixels;
    uint8_t *last = pixels + (count - 1) * step;
    // Registers may reach into the last pixel, so that it goes first.
    for (size_t k = 0; k < bytes; ++k) std::swap(pixels[k], last[k]);
    pixels += step;
    for (count -= 2; count * step >= 2 * n * step + 16; count -= 2 * n, pixels += n * step) {
        last -= n * step;
        const __m128i front = load(pixels), back = load(last);
        store(pixels, shuffle(front, back));
        store(last, shuffle(back, front));
    }
    reverse_plainly(pixels, step, bytes, count);
}

#endif

} // namespace

#ifdef KZB_X86
decltype(permute_pixels) permute_pixels =
    compiled<permute_plainly, permute_avx2, Compiled<permute_512<Shuffle512>>::avx512,
             Compiled<permute_512<Shuffle512Vbmi>>::avx512vbmi>();
decltype(reverse_pixels) reverse_pixels =
    compiled<reverse_plainly, reverse_avx2, Compiled<reverse_512<Shuffle512>>::avx512,
             Compiled<reverse_512<Shuffle512Vbmi>>::avx512vbmi>();
#else
decltype(permute_pixels) permute_pixels = compiled<permute_plainly>();
decltype(reverse_pixels) reverse_pixels = compiled<reverse_plainly>();
#endif

} // namespace kzb::kernels
