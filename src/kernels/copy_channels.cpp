#include "kernels/copy_channels.h"

#include "kernels/gray.h"
#include "kernels/lanes.h"

#include <algorithm>
#include <cstring>

namespace kzb::kernels {

namespace {

// The bytes of a row from the first channel of its first pixel to the last one of its last.
struct Span {
    int32_t first; // offset of the lowest channel
    size_t size;
};

Span span_of(const Placement &placement, size_t channels, size_t count) {
    const auto [low, high] = std::minmax_element(placement.offsets.begin(), placement.offsets.begin() + channels);
    return {*low, (count - 1) * placement.step + static_cast<size_t>(*high - *low) + 1};
}

bool disjoint(const uint8_t *a, size_t a_size, const uint8_t *b, size_t b_size) {
    const auto a_start = reinterpret_cast<uintptr_t>(a);
    const auto b_start = reinterpret_cast<uintptr_t>(b);
    return a_start + a_size <= b_start || b_start + b_size <= a_start;
}

// Whether the channels lie in the same order at the same distances, within one pixel.
bool same_places(const Placement &to, int32_t to_first, const Placement &from, int32_t from_first, size_t channels) {
    if (to.step != from.step || lane_period % to.step != 0) return false;
    for (size_t i = 0; i < channels; ++i) {
        const int32_t place = to.offsets[i] - to_first;
        if (place != from.offsets[i] - from_first || static_cast<size_t>(place) >= to.step) return false;
    }
    return true;
}

// Keeps every byte but the channels'.
Lanes mask_of(const Placement &placement, int32_t first, size_t channels) {
    Lanes keep;
    keep.fill(0xff);
    for (size_t i = 0; i < channels; ++i)
        for (auto lane = static_cast<size_t>(placement.offsets[i] - first); lane < lane_period; lane += placement.step)
            keep[lane] = 0;
    return keep;
}

template <size_t channels>
void copy_in_order(uint8_t *target, const Placement &to, const uint8_t *source, const Placement &from, size_t count) {
    for (; count != 0; --count, target += to.step, source += from.step)
        for (size_t i = 0; i < channels; ++i) target[to.offsets[i]] = source[from.offsets[i]];
}

} // namespace

void copy_channels(uint8_t *target, const Placement &to, const uint8_t *source, const Placement &from, size_t channels,
                   size_t count) {
    if (channels == 0 || count == 0) return;
    const Span written = span_of(to, channels, count);
    const Span read = span_of(from, channels, count);
    if (same_places(to, written.first, from, read.first, channels) &&
        disjoint(target + written.first, written.size, source + read.first, read.size)) {
        const Lanes keep = mask_of(to, written.first, channels);
        if (std::all_of(keep.begin(), keep.end(), [](uint8_t byte) { return byte == 0; }))
            std::memcpy(target + written.first, source + read.first, written.size);
        else
            copy_lanes(target + written.first, source + read.first, written.size, keep);
        return;
    }
    const Placement own_to = to;
    const Placement own_from = from;
    switch (channels) {
    case 1: return copy_in_order<1>(target, own_to, source, own_from, count);
    case 2: return copy_in_order<2>(target, own_to, source, own_from, count);
    case 3: return copy_in_order<3>(target, own_to, source, own_from, count);
    default: return copy_in_order<4>(target, own_to, source, own_from, count);
    }
}

void copy_as_gray(uint8_t *target, const Placement &to, const uint8_t *source, const Placement &from, bool with_alpha,
                  size_t count) {
    const auto [gray, alpha] = std::pair(to.offsets[0], to.offsets[1]);
    const auto [red, green, blue, source_alpha] = from.offsets;
    for (; count != 0; --count, target += to.step, source += from.step) {
        target[gray] = gray_from(source[red], source[green], source[blue]);
        if (with_alpha) target[alpha] = source[source_alpha];
    }
}

} // namespace kzb::kernels
