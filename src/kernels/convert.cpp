#include "kernels/convert.h"

#include "kernels/lanes.h"

#include <algorithm>
#include <cstring>

namespace kzb::kernels {

namespace {

// The bytes of a row from the lowest channel of its first pixel to the highest of its last.
struct Span {
    int32_t first; // offset of the lowest channel
    size_t size;

    Span(const Placement &placement, size_t channels, size_t count) {
        const auto [low, high] = std::minmax_element(placement.offsets.begin(), placement.offsets.begin() + channels);
        first = *low;
        size = (count - 1) * placement.step + static_cast<size_t>(*high - *low) + 1;
    }
};

// Copies whole runs of bytes where the channels lie at the same places of both pixels and the rows have no bytes in
// common; false, with nothing written, elsewhere.
bool convert_as_lanes(uint8_t *target, const uint8_t *source, const Conversion &conversion, size_t count) {
    const auto &[to, from, channels, to_gray, last_flip] = conversion;
    if (to_gray || to.step != from.step || lane_period % to.step != 0) return false;
    const Span written(to, channels, count);
    const Span read(from, channels, count);
    if (!disjoint(target + written.first, written.size, source + read.first, read.size)) return false;
    Lanes keep;
    Lanes flip = {};
    keep.fill(0xff);
    for (size_t i = 0; i < channels; ++i) {
        const auto place = static_cast<size_t>(to.offsets[i] - written.first);
        if (place != static_cast<size_t>(from.offsets[i] - read.first) || place >= to.step) return false;
        for (size_t lane = place; lane < lane_period; lane += to.step) {
            keep[lane] = 0;
            flip[lane] = i == channels - 1 ? last_flip : uint8_t{0};
        }
    }
    const bool whole_bytes = last_flip == 0 && std::count(keep.begin(), keep.end(), 0) == lane_period;
    if (whole_bytes)
        std::memcpy(target + written.first, source + read.first, written.size);
    else
        copy_lanes(target + written.first, source + read.first, written.size, keep, flip);
    return true;
}

template <size_t channels>
void copy_channels(uint8_t *target, const uint8_t *source, Conversion conversion, size_t count) {
    const auto [to, from, unused, to_gray, last_flip] = conversion;
    for (; count != 0; --count, target += to.step, source += from.step) {
        for (size_t i = 0; i + 1 < channels; ++i) target[to.offsets[i]] = source[from.offsets[i]];
        target[to.offsets[channels - 1]] = static_cast<uint8_t>(source[from.offsets[channels - 1]] ^ last_flip);
    }
}

template <bool with_alpha>
void weigh_channels(uint8_t *target, const uint8_t *source, Conversion conversion, size_t count) {
    const auto [to, from, unused, to_gray, last_flip] = conversion;
    const auto [red, green, blue, alpha] = from.offsets;
    for (; count != 0; --count, target += to.step, source += from.step) {
        target[to.offsets[0]] = gray_from(source[red], source[green], source[blue]);
        if (with_alpha) target[to.offsets[1]] = static_cast<uint8_t>(source[alpha] ^ last_flip);
    }
}

} // namespace

bool disjoint(const uint8_t *a, size_t a_size, const uint8_t *b, size_t b_size) {
    const auto a_start = reinterpret_cast<uintptr_t>(a);
    const auto b_start = reinterpret_cast<uintptr_t>(b);
    return a_start + a_size <= b_start || b_start + b_size <= a_start;
}

void copy_channel(uint8_t *target, size_t target_step, const uint8_t *source, size_t source_step, uint8_t flip,
                  size_t count) {
    for (; count != 0; --count, target += target_step, source += source_step)
        *target = static_cast<uint8_t>(*source ^ flip);
}

void convert(uint8_t *target, const uint8_t *source, const Conversion &conversion, size_t count) {
    if (count == 0 || conversion.channels == 0 || convert_as_lanes(target, source, conversion, count)) return;
    if (conversion.to_gray)
        return conversion.channels == 2 ? weigh_channels<true>(target, source, conversion, count)
                                        : weigh_channels<false>(target, source, conversion, count);
    switch (conversion.channels) {
    case 1:
        return copy_channels<1>(target, source, conversion, count);
    case 2:
        return copy_channels<2>(target, source, conversion, count);
    case 3:
        return copy_channels<3>(target, source, conversion, count);
    default:
        return copy_channels<4>(target, source, conversion, count);
    }
}

} // namespace kzb::kernels
