// Glowing edges.
#pragma once

#include "image/record.h"

namespace kzb {

// Every channel, alpha included: twice the length of the gradient to the pixels to the right and below, at most 255.
// Below the last row lies 0; to the right of the last column what follows it in the row: padding, in a view the next
// pixel, and 0 beyond RowSize. All of it is read before it is overwritten.
//
// Gives `dest`, which is not compared with the image, or for nil a new image like it; nil when one of the two is not
// usable. Without memory the destination stays as it is.
ImageObject neon_filter(ImageObject image, ImageObject dest);

} // namespace kzb
