// Random displacement.
#pragma once

#include "image/record.h"

namespace kzb {

// Each pixel becomes a copy, alpha included, of a pixel of the image at most `level` columns and rows away, at the
// edges of an edge pixel. The C library's rand is drawn from twice for each pixel, for its column and then for its row,
// from left to right and top to bottom, so that a seeded run repeats. Into the image itself, pixels are copied as they
// then are.
//
// Gives `dest`, which is not compared with the image, or for nil a new image like it; nil when one of the two is not
// usable. A negative level leaves the destination as it is.
ImageObject diffuse_filter(ImageObject image, ImageObject dest, int32_t level);

} // namespace kzb
