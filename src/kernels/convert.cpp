#include "kernels/convert.h"

namespace kzb::kernels {

void copy_channel(uint8_t *target, size_t target_step, const uint8_t *source, size_t source_step, uint8_t flip,
                  size_t count) {
    for (; count != 0; --count, target += target_step, source += source_step)
        *target = static_cast<uint8_t>(*source ^ flip);
}

void gray_channel(uint8_t *target, size_t target_step, const uint8_t *red, const uint8_t *green, const uint8_t *blue,
                  size_t source_step, size_t count) {
    for (; count != 0; --count, target += target_step) {
        *target = gray_from(*red, *green, *blue);
        red += source_step;
        green += source_step;
        blue += source_step;
    }
}

} // namespace kzb::kernels
