#include "kernels/convert.h"

#include "kernels/lanes.h"
#include "kernels/weigh.h"

#include <algorithm>
#include <cstring>

namespace kzb::kernels {

namespace {

// The bytes of a row from the lowest channel of its first pixel to the highest of its last.
struct Span {
    int32_t first; // offset of the lowest channel
    size_t width;  // to the highest, with it
    size_t size;

    Span(const Placement &placement, size_t channels, size_t count) {
        const auto [low, high] = std::minmax_element(placement.offsets.begin(), placement.offsets.begin() + channels);
        first = *low;
        width = static_cast<size_t>(*high - *low) + 1;
        size = (count - 1) * placement.step + width;
    }

    // Whether no byte belongs to two pixels, which are of at most four bytes.
    bool within(size_t step) const { return width <= step && step <= 4; }
};

// Rows that have no byte in common, from the lowest channel of their first pixels on.
struct Apart {
    uint8_t *target;
    const uint8_t *source;
    Span written, read;
    bool small; // pixels of at most four bytes that have no byte in common
};

// Copies whole runs of bytes where the channels lie at the same places of both pixels; false, with nothing written,
// elsewhere.
bool convert_as_lanes(const Apart &rows, const Conversion &conversion) {
    const auto &[to, from, channels, to_gray, last_flip] = conversion;
    if (to_gray || to.step != from.step || lane_period % to.step != 0) return false;
    uint32_t copied = 0; // a bit for each byte of a pixel, of which there are at most 16
    const auto place = [&](size_t i) { return static_cast<size_t>(conversion.to.offsets[i] - rows.written.first); };
    for (size_t i = 0; i < channels; ++i) {
        if (place(i) != static_cast<size_t>(from.offsets[i] - rows.read.first) || place(i) >= to.step) return false;
        copied |= 1u << place(i);
    }
    if (last_flip == 0 && copied + 1 == 1u << to.step) {
        std::memcpy(rows.target, rows.source, rows.written.size);
        return true;
    }
    Lanes keep;
    Lanes flip = {};
    keep.fill(0xff);
    for (size_t i = 0; i < channels; ++i)
        for (size_t lane = place(i); lane < lane_period; lane += to.step) {
            keep[lane] = 0;
            flip[lane] = i == channels - 1 ? last_flip : uint8_t{0};
        }
    copy_lanes(rows.target, rows.source, rows.written.size, keep, flip);
    return true;
}

void convert_by_permutation(const Apart &rows, const Conversion &conversion, size_t count) {
    const auto &[to, from, channels, to_gray, last_flip] = conversion;
    Permutation permutation = {to.step, from.step, {-1, -1, -1, -1}, {}, false};
    for (size_t i = 0; i < channels; ++i) {
        const auto place = static_cast<size_t>(to.offsets[i] - rows.written.first);
        permutation.from[place] = static_cast<int8_t>(from.offsets[i] - rows.read.first);
        permutation.flip[place] = i == channels - 1 ? last_flip : uint8_t{0};
    }
    permute_pixels(rows.target, rows.source, permutation, count);
}

void convert_by_weighing(const Apart &rows, const Conversion &conversion, size_t count) {
    const Placement &to = conversion.to, &from = conversion.from;
    const auto read = [&](size_t i) { return static_cast<int8_t>(from.offsets[i] - rows.read.first); };
    const auto written = [&](size_t i) { return static_cast<int8_t>(to.offsets[i] - rows.written.first); };
    const bool alpha = conversion.channels == 2;
    weigh_pixels(rows.target, rows.source,
                 {to.step, from.step, read(0), read(1), read(2), alpha ? read(3) : int8_t{0}, written(0),
                  alpha ? written(1) : int8_t{-1}, conversion.last_flip},
                 count);
}

// For rows that have no byte in common; false, with nothing written, elsewhere.
bool convert_apart(uint8_t *target, const uint8_t *source, const Conversion &conversion, size_t count) {
    const auto &[to, from, channels, to_gray, last_flip] = conversion;
    const Span written(to, channels, count);
    const Span read(from, to_gray ? channels + 2 : channels, count);
    const Apart rows = {target + written.first, source + read.first, written, read,
                        written.within(to.step) && read.within(from.step)};
    if (!disjoint(rows.target, written.size, rows.source, read.size)) return false;
    if (convert_as_lanes(rows, conversion)) return true;
    if (!rows.small) return false;
    if (to_gray)
        convert_by_weighing(rows, conversion, count);
    else
        convert_by_permutation(rows, conversion, count);
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
    if (count == 0 || conversion.channels == 0 || convert_apart(target, source, conversion, count)) return;
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
