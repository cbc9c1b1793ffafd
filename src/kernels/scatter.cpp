#include "kernels/scatter.h"

#include <algorithm>
#include <cstring>

namespace kzb::kernels {

namespace {

void place_near_plainly(int32_t *numbers, const Remainder &remainder, int32_t own, int32_t step, int32_t level,
                        int32_t limit, size_t count) {
    const Remainder local = remainder;
    const double last = limit - 1.0;
    for (size_t i = 0; i < count; ++i) {
        const double place = own + step * static_cast<int32_t>(i) + local.of(numbers[i]) - level;
        numbers[i] = static_cast<int32_t>(std::min(std::max(place, 0.0), last));
    }
}

template <size_t channels>
void gather(uint8_t *target, const uint8_t *const *rows, const int32_t *places, int32_t first, const int32_t *columns,
            size_t count) {
    for (size_t i = 0; i < count; ++i) {
        uint8_t pixel[channels];
        std::memcpy(pixel, rows[places[i] - first] + static_cast<size_t>(columns[i]) * channels, channels);
        std::memcpy(target + i * channels, pixel, channels);
    }
}

} // namespace

decltype(place_near) place_near = compiled<place_near_plainly>();

void gather_pixels(uint8_t *target, const uint8_t *const *rows, const int32_t *places, int32_t first,
                   const int32_t *columns, size_t channels, size_t count) {
    switch (channels) {
    case 1:
        return gather<1>(target, rows, places, first, columns, count);
    case 2:
        return gather<2>(target, rows, places, first, columns, count);
    case 3:
        return gather<3>(target, rows, places, first, columns, count);
    case 4:
        return gather<4>(target, rows, places, first, columns, count);
    }
}

} // namespace kzb::kernels
