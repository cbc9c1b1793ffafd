#include "kernels/pick.h"

#include "kernels/convert.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace kzb::kernels {

namespace {

template <size_t channels>
void pick_each(uint8_t *target, size_t target_step, const int32_t *to_offsets, const uint8_t *source,
               const int32_t *places, const int32_t *from_offsets, size_t count) {
    // Copies of the offsets, which a written byte might otherwise change.
    std::array<int32_t, channels> to, from;
    std::copy_n(to_offsets, channels, to.begin());
    std::copy_n(from_offsets, channels, from.begin());
    for (size_t i = 0; i < count; ++i, target += target_step) {
        const uint8_t *pixel = source + places[i];
        for (size_t k = 0; k < channels; ++k) target[to[k]] = pixel[from[k]];
    }
}

template <size_t pixel_size>
void pick_whole(uint8_t *target, const uint8_t *source, const int32_t *places, size_t count) {
    for (size_t i = 0; i < count; ++i, target += pixel_size) std::memcpy(target, source + places[i], pixel_size);
}

} // namespace

void step_places(int32_t *places, int32_t first, double step, int32_t pixel_size, size_t count) {
    for (size_t i = 0; i < count; ++i)
        places[i] = static_cast<int32_t>((first + static_cast<int32_t>(i)) * step) * pixel_size;
}

void pick_channels(uint8_t *target, size_t target_step, const int32_t *to, const uint8_t *source,
                   const int32_t *places, const int32_t *from, size_t channels, size_t count) {
    switch (channels) {
    case 1: return pick_each<1>(target, target_step, to, source, places, from, count);
    case 2: return pick_each<2>(target, target_step, to, source, places, from, count);
    case 3: return pick_each<3>(target, target_step, to, source, places, from, count);
    case 4: return pick_each<4>(target, target_step, to, source, places, from, count);
    }
}

void pick_gray(uint8_t *target, size_t target_step, const int32_t *to, const uint8_t *source, const int32_t *places,
               const int32_t *from, bool with_alpha, size_t count) {
    const int32_t red = from[0], green = from[1], blue = from[2], gray = to[0];
    const int32_t alpha_from = with_alpha ? from[3] : 0, alpha_to = with_alpha ? to[1] : 0;
    for (size_t i = 0; i < count; ++i, target += target_step) {
        const uint8_t *pixel = source + places[i];
        target[gray] = gray_from(pixel[red], pixel[green], pixel[blue]);
        if (with_alpha) target[alpha_to] = pixel[alpha_from];
    }
}

void pick_pixels(uint8_t *target, const uint8_t *source, const int32_t *places, size_t pixel_size, size_t count) {
    switch (pixel_size) {
    case 1: return pick_whole<1>(target, source, places, count);
    case 2: return pick_whole<2>(target, source, places, count);
    case 3: return pick_whole<3>(target, source, places, count);
    case 4: return pick_whole<4>(target, source, places, count);
    }
}

} // namespace kzb::kernels
