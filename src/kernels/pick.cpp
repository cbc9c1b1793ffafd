#include "kernels/pick.h"

#include "kernels/weigh.h"

#include <algorithm>
#include <cstring>

namespace kzb::kernels {

namespace {

template <size_t pixel_size>
void pick_whole(uint8_t *target, const uint8_t *source, const int32_t *places, size_t count) {
    for (size_t i = 0; i < count; ++i, target += pixel_size) std::memcpy(target, source + places[i], pixel_size);
}

int32_t lowest(const Placement &placement, size_t channels) {
    return *std::min_element(placement.offsets.begin(), placement.offsets.begin() + channels);
}

// Copies whole pixels where all their bytes are channels, at the same places in both, and the rows have no bytes in
// common; false, with nothing written, elsewhere.
bool pick_as_whole(uint8_t *target, const uint8_t *source, const int32_t *places, const Conversion &conversion,
                   size_t count) {
    const auto &[to, from, channels, to_gray, last_flip] = conversion;
    const size_t pixel_size = to.step;
    if (to_gray || from.step != pixel_size || channels != pixel_size) return false;
    const int32_t to_first = lowest(to, channels), from_first = lowest(from, channels);
    unsigned found = 0;
    for (size_t i = 0; i < channels; ++i) {
        const int32_t place = to.offsets[i] - to_first;
        if (place != from.offsets[i] - from_first || static_cast<size_t>(place) >= pixel_size) return false;
        found |= 1u << place;
    }
    if (found + 1 != 1u << pixel_size) return false;
    target += to_first;
    source += from_first;
    const auto read = static_cast<size_t>(places[count - 1] - places[0]) + pixel_size;
    if (!disjoint(target, count * pixel_size, source + places[0], read)) return false;
    switch (pixel_size) {
    case 1:
        pick_whole<1>(target, source, places, count);
        break;
    case 2:
        pick_whole<2>(target, source, places, count);
        break;
    case 3:
        pick_whole<3>(target, source, places, count);
        break;
    default:
        pick_whole<4>(target, source, places, count);
    }
    return true;
}

template <size_t channels>
void pick_channels(uint8_t *target, const uint8_t *source, const int32_t *places, Conversion conversion, size_t count) {
    for (size_t i = 0; i < count; ++i, target += conversion.to.step) {
        const uint8_t *pixel = source + places[i];
        for (size_t k = 0; k < channels; ++k) target[conversion.to.offsets[k]] = pixel[conversion.from.offsets[k]];
    }
}

template <bool with_alpha>
void pick_gray(uint8_t *target, const uint8_t *source, const int32_t *places, Conversion conversion, size_t count) {
    const auto [red, green, blue, alpha] = conversion.from.offsets;
    for (size_t i = 0; i < count; ++i, target += conversion.to.step) {
        const uint8_t *pixel = source + places[i];
        target[conversion.to.offsets[0]] = gray_from(pixel[red], pixel[green], pixel[blue]);
        if (with_alpha) target[conversion.to.offsets[1]] = pixel[alpha];
    }
}

} // namespace

void step_places(int32_t *places, int32_t first, double step, int32_t pixel_size, size_t count) {
    for (size_t i = 0; i < count; ++i)
        places[i] = static_cast<int32_t>((first + static_cast<int32_t>(i)) * step) * pixel_size;
}

void pick(uint8_t *target, const uint8_t *source, const int32_t *places, const Conversion &conversion, size_t count) {
    if (count == 0 || pick_as_whole(target, source, places, conversion, count)) return;
    if (conversion.to_gray)
        return conversion.channels == 2 ? pick_gray<true>(target, source, places, conversion, count)
                                        : pick_gray<false>(target, source, places, conversion, count);
    switch (conversion.channels) {
    case 1:
        return pick_channels<1>(target, source, places, conversion, count);
    case 2:
        return pick_channels<2>(target, source, places, conversion, count);
    case 3:
        return pick_channels<3>(target, source, places, conversion, count);
    default:
        return pick_channels<4>(target, source, places, conversion, count);
    }
}

} // namespace kzb::kernels
