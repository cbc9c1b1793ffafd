// Oil paint.
#pragma once

#include "image/record.h"

namespace kzb {

// Every channel, alpha included, by itself: the values at most `range` columns and rows away, as far as the image goes,
// are sorted into `levels` bins (256 for more), and the pixel becomes the truncated mean of the fullest bin, of several
// the lowest. Range 0 copies. Into the image itself, values are counted as they then are.
//
// Gives `dest`, which is not compared with the image, or for nil a new image like it; nil when one of the two is not
// usable. Levels below 1 and a negative range leave the destination as it is.
ImageObject oil_filter(ImageObject image, ImageObject dest, int32_t levels, int32_t range);

} // namespace kzb
