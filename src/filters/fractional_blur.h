// A blur weaker than that of one whole pixel.
#pragma once

#include "image/record.h"

namespace kzb {

// Each channel, alpha included, is drawn toward its neighbours above and below, then toward those left and right:
// trunc((c + (p + q) f) / (2 f + 1)), f being what Radius exceeds the whole number below it by, 0 for a Radius that is
// not finite. The first row and the last column take themselves for both neighbours, the last row and the first column
// for the one that is missing.
//
// Writes into `dest`, which is not looked at in size and layout and may be the image itself, or for nil into a new
// image of the image's size and layout, and gives it; nil when one of the two is not usable. A layout that is neither
// gray nor colour leaves the destination as it is, and so does a lack of memory.
ImageObject box_blur_fractional_filter(ImageObject image, ImageObject dest, double radius);

} // namespace kzb
