// Sharpening against a blurred copy.
#pragma once

#include "image/record.h"

namespace kzb {

// Moves each byte of the image's channels, alpha included, away from the reference's, in place: a difference d from the
// reference value b becomes b + d (4 Amount + 1), truncated and clamped; one below Threshold leaves the byte as it is.
// False, with nothing changed, unless both images are usable and have the same width, height and layout.
Boolean unsharp_filter(ImageObject image, ImageObject origpixels, double amount, int32_t threshold);

} // namespace kzb
