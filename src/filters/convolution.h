// A 5 × 5 matrix of integer weights over every channel, alpha included.
#pragma once

#include "image/record.h"

namespace kzb {

// Each byte becomes (delta + the weighted sum of its neighbourhood) * scale, truncated and clamped; the sum wraps
// around at 32 bits. The weights are row by row, that of the pixel itself at index 12; a weight of 255 or more leaves
// its neighbour out. For a neighbour outside the image, the pixel's own row or column takes the place of the missing
// one.
//
// Gives `dest`, which is not compared with the image, or for nil a new image whose width is the image's height and
// whose height the image's width. The image's rows are written as they are: where a row of the destination is shorter,
// it runs on into the next, as far as the storage goes. Into the image itself, the filter reads what it has written.
// Nil when the array does not hold 25 weights or one of the images is not usable.
ImageObject apply_matrix(ImageObject image, ImageObject dest, IntegerArray matrix);
ImageObject apply_matrix_delta(ImageObject image, ImageObject dest, IntegerArray matrix, int32_t delta);
ImageObject apply_matrix_delta_scale(ImageObject image, ImageObject dest, IntegerArray matrix, int32_t delta,
                                     double scale_factor);

} // namespace kzb
