// A picture in two colours, as a stamp prints it.
#pragma once

#include "image/record.h"

namespace kzb {

// Blurs with three passes of Radius / 3 and gives a new image in which each colour channel goes from its part of Black
// to that of White along a smooth step, `softness` wide around `threshold`, both in parts of the range of levels; a
// gray layout takes the greens. Alpha is not written. `dest` receives the first pass of the blur. Nil when an image is
// not usable or cannot be had.
ImageObject stamp_filter(ImageObject image, ImageObject dest, double radius, double threshold, double softness,
                         Color black, Color white);

} // namespace kzb
