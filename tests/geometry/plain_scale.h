// What the two scalings mean, one pixel at a time.
#pragma once

#include "fixtures/plain_image.h"

namespace kzb::test {

inline constexpr int32_t scaling_format = 14;

// Filtered scaling in its stated order: first the whole intermediate image, then the destination. The three images may
// share storage. False, with nothing written, for layouts that do not go together.
bool plain_scale(const PlainImage &source, const PlainImage &temp, const PlainImage &destination, int32_t mode,
                 int32_t width, int32_t height);

// A float of an intermediate pixel.
float float_of(const PlainImage &temp, int32_t x, int32_t y, int32_t slot);

// Fast scaling in its stated order. False, with nothing written, for layouts that do not go together.
bool plain_scale_fast(const PlainImage &source, const PlainImage &destination, int32_t width, int32_t height);

} // namespace kzb::test
