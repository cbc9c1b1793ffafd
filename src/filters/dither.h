// Ordered dithering.
#pragma once

#include "image/record.h"

namespace kzb {

// Reduces every channel, alpha included, to `levels` evenly spaced values, choosing between the two nearest by the
// threshold matrix of the code `matrix` (DitherMagic2x2Matrix = 1 to DitherCluster8Matrix = 10), tiled over the image.
// A threshold below the value's place between the two selects the lower one: with 2 levels the result is inverted.
//
// Gives `dest`, which is not compared with the image, or for nil a new image like it; nil when one of the two is not
// usable. An unknown code, or levels other than 2 to 256, leave the destination as it is.
ImageObject dither_filter(ImageObject image, ImageObject dest, int32_t matrix, int32_t levels);

} // namespace kzb
