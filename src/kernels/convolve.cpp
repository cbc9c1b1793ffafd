#include "kernels/convolve.h"

#include <algorithm>

namespace kzb::kernels {

namespace {

// Sums that stay in the processor's nearest cache while tap after tap is added.
constexpr size_t tile_size = 512;

// Taps that one pass over the sums adds.
constexpr size_t taps_at_once = 5;

// The weighted sums of a tile's samples in the width of Sum, which wraps around.
template <class Sum> void add_taps(Sum *sums, const Tap *taps, size_t tap_count, size_t start, size_t count) {
    std::fill_n(sums, count, Sum{0});
    for (size_t first = 0; first < tap_count; first += taps_at_once) {
        const uint8_t *samples[taps_at_once];
        Sum weights[taps_at_once];
        for (size_t k = 0; k < taps_at_once; ++k) {
            const bool present = first + k < tap_count;
            samples[k] = taps[present ? first + k : first].samples + start;
            weights[k] = present ? static_cast<Sum>(taps[first + k].weight) : Sum{0};
        }
        for (size_t i = 0; i < count; ++i) {
            auto sum = static_cast<uint32_t>(sums[i]);
            for (size_t k = 0; k < taps_at_once; ++k) sum += static_cast<uint32_t>(weights[k]) * samples[k][i];
            sums[i] = static_cast<Sum>(sum);
        }
    }
}

// Whether no sum leaves 16 bits, in which the additions are twice as fast and the products several times.
bool narrow(const Tap *taps, size_t tap_count) {
    int64_t most = 0;
    for (size_t i = 0; i < tap_count; ++i) most += std::abs(static_cast<int64_t>(taps[i].weight)) * 255;
    return most <= INT16_MAX;
}

uint8_t clamped(int32_t value) {
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

int32_t with_delta(uint32_t sum, const Rounding &rounding) {
    return static_cast<int32_t>(static_cast<uint32_t>(rounding.delta) + sum);
}

// For a tile or less.
void round_sums(uint8_t *target, const uint32_t *sums, const Rounding &rounding, size_t count) {
    if (rounding.scale == 1.0) {
        for (size_t i = 0; i < count; ++i) target[i] = clamped(with_delta(sums[i], rounding));
    } else {
        // In two steps, or the compiler makes branches of the choices.
        double scaled[tile_size];
        for (size_t i = 0; i < count; ++i) {
            const double product = with_delta(sums[i], rounding) * rounding.scale;
            scaled[i] = product > 0 ? product : 0.0;
        }
        for (size_t i = 0; i < count; ++i)
            target[i] = static_cast<uint8_t>(static_cast<int32_t>(scaled[i] < 255 ? scaled[i] : 255.0));
    }
}

// Calls finish(start, sums, count) for tile after tile.
template <class Finish> void for_each_tile(const Tap *taps, size_t tap_count, size_t count, Finish finish) {
    const bool short_sums = narrow(taps, tap_count);
    for (size_t start = 0; start < count; start += tile_size) {
        const size_t length = std::min(tile_size, count - start);
        uint32_t sums[tile_size];
        if (short_sums) {
            uint16_t halves[tile_size];
            add_taps(halves, taps, tap_count, start, length);
            for (size_t i = 0; i < length; ++i) sums[i] = static_cast<uint32_t>(static_cast<int16_t>(halves[i]));
        } else {
            add_taps(sums, taps, tap_count, start, length);
        }
        finish(start, sums, length);
    }
}

void convolve_loop(uint8_t *target, const Tap *taps, size_t tap_count, const Rounding &rounding, size_t count) {
    for_each_tile(taps, tap_count, count, [&](size_t start, const uint32_t *sums, size_t length) {
        round_sums(target + start, sums, rounding, length);
    });
}

void convolve_in_place_loop(uint8_t *target, const Tap *taps, size_t tap_count, const Feedback &feedback,
                            const Rounding &rounding, size_t count) {
    const auto first = static_cast<uint32_t>(feedback.first);
    const auto second = static_cast<uint32_t>(feedback.second);
    for_each_tile(taps, tap_count, count, [&](size_t start, const uint32_t *sums, size_t length) {
        for (size_t i = 0; i < length; ++i) {
            uint8_t *written = target + start + i;
            const uint32_t fed = first * *(written - feedback.step) + second * *(written - 2 * feedback.step);
            *written = rounded(sums[i] + fed, rounding);
        }
    });
}

} // namespace

uint8_t rounded(uint32_t sum, const Rounding &rounding) {
    uint8_t value;
    round_sums(&value, &sum, rounding, 1);
    return value;
}

decltype(convolve) convolve = compiled<convolve_loop>();
decltype(convolve_in_place) convolve_in_place = compiled<convolve_in_place_loop>();

} // namespace kzb::kernels
