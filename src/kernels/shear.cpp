#include "kernels/shear.h"

namespace kzb::kernels {

void take_parts(uint8_t *__restrict parts, const uint8_t *__restrict source, double fraction, size_t count) {
    for (size_t i = 0; i < count; ++i) parts[i] = part_of(source[i], fraction);
}

void take_parts(uint8_t *__restrict parts, const uint8_t *__restrict source, const double *__restrict fractions,
                size_t count) {
    for (size_t i = 0; i < count; ++i) parts[i] = part_of(source[i], fractions[i]);
}

void hand_on(uint8_t *__restrict target, const uint8_t *__restrict source, const uint8_t *__restrict given,
             const uint8_t *__restrict received, size_t count) {
    for (size_t i = 0; i < count; ++i) target[i] = static_cast<uint8_t>(source[i] - given[i] + received[i]);
}

} // namespace kzb::kernels
