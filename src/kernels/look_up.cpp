#include "kernels/look_up.h"

namespace kzb::kernels {

namespace {

void look_up_plainly(uint8_t *target, size_t target_step, const uint8_t *source, size_t source_step,
                     const uint8_t *table, size_t count) {
    for (; count != 0; --count, target += target_step, source += source_step) *target = table[*source];
}

void look_up_pairs_plainly(uint8_t *target, size_t target_step, const uint8_t *source, size_t source_step,
                           const uint8_t *table, size_t count) {
    for (; count != 0; --count, target += target_step, source += source_step) *target = table[*target * 256 + *source];
}

} // namespace

decltype(look_up) look_up = compiled<look_up_plainly>();
decltype(look_up_pairs) look_up_pairs = compiled<look_up_pairs_plainly>();

} // namespace kzb::kernels
