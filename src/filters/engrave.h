// Relief.
#pragma once

#include "image/record.h"

namespace kzb {

// Every channel, alpha included: the pixel minus its neighbour `level` pixels to the right and below (to the left and
// above for a negative level; at the edges, the edge pixel), plus 128, clamped. Into the image itself, the neighbours
// are read as they then are.
//
// Gives `dest`, which is not compared with the image, or for nil a new image like it; nil when one of the two is not
// usable.
ImageObject engrave_filter(ImageObject image, ImageObject dest, int32_t level);

} // namespace kzb
