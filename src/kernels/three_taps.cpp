#include "kernels/three_taps.h"

namespace kzb::kernels {

namespace {

void three_taps_plainly(uint8_t *__restrict result, const uint8_t *centre, const uint8_t *before, const uint8_t *after,
                        const ThreeTaps &taps, size_t count) {
    const ThreeTaps local = taps;
    for (size_t i = 0; i < count; ++i) result[i] = local(centre[i], before[i], after[i]);
}

} // namespace

decltype(three_taps) three_taps = compiled<three_taps_plainly>();

} // namespace kzb::kernels
