// Rotation by any angle.
#pragma once

#include "image/record.h"

namespace kzb {

// The image turned counter-clockwise by `angle` degrees, in a new image that holds all of it; corners that it leaves
// free get the background, of which the low bytes count. Whole turns give the image itself, quarter and half turns are
// lossless, other angles are made of one of them and three anti-aliased shears. A gray layout takes `gray` and keeps
// the alpha that a new image has. Nil for an image that is not usable, a layout that is neither gray nor colour, an
// angle that is not finite, and where a new image cannot be had.
ImageObject rotate(ImageObject image, double angle, int32_t red, int32_t green, int32_t blue, int32_t alpha,
                   int32_t gray);

} // namespace kzb
