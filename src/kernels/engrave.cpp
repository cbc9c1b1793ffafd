#include "kernels/engrave.h"

#include <algorithm>

namespace kzb::kernels {

namespace {

void engrave_plainly(uint8_t *target, const uint8_t *row, const uint8_t *neighbours, size_t count) {
    for (size_t i = 0; i < count; ++i)
        target[i] = static_cast<uint8_t>(std::clamp(row[i] - neighbours[i] + 128, 0, 255));
}

} // namespace

decltype(engrave) engrave = compiled<engrave_plainly>();

void engrave_against(uint8_t *target, const uint8_t *row, const uint8_t *neighbour, size_t channels, size_t count) {
    for (; count != 0; --count, target += channels, row += channels) engrave(target, row, neighbour, channels);
}

} // namespace kzb::kernels
