#include "kernels/dither.h"

#include <cstring>

namespace kzb::kernels {

namespace {

// Bytes that are taken before any is written, so that the compiler need not care whether the target is the source.
constexpr size_t strip = 64;

void dither_strip(uint8_t *target, const uint8_t *source, const uint8_t *thresholds, const uint8_t *keep,
                  DitherScale scale, size_t count) {
    uint8_t result[strip];
    for (size_t i = 0; i < count; ++i)
        result[i] = static_cast<uint8_t>((target[i] & keep[i]) | (scale(source[i], thresholds[i]) & ~keep[i]));
    std::memcpy(target, result, count);
}

void dither_plainly(uint8_t *target, const uint8_t *source, const uint8_t *thresholds, const uint8_t *keep,
                    const DitherScale &scale, size_t count) {
    for (; count >= strip; count -= strip) {
        dither_strip(target, source, thresholds, keep, scale, strip);
        target += strip;
        source += strip;
        thresholds += strip;
        keep += strip;
    }
    if (count != 0) dither_strip(target, source, thresholds, keep, scale, count);
}

} // namespace

decltype(dither) dither = compiled<dither_plainly>();

} // namespace kzb::kernels
