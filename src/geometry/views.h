// Views of an image, and copies of it.
//
// A view is a new image that owns no pixels: it reads and writes the storage of the image it was made from, which it
// holds as its Parent. A view of a file-backed image maps blocks of its own. Once the parent is closed the view is not
// usable. All give a new reference, or nil when the host makes no object.
#pragma once

#include "image/record.h"

namespace kzb {

// One channel as a gray image; nil for a layout without it.
ImageObject red_channel(ImageObject image);
ImageObject green_channel(ImageObject image);
ImageObject blue_channel(ImageObject image);
ImageObject gray_channel(ImageObject image);
ImageObject alpha_channel(ImageObject image);

// Red, green and blue without alpha; nil for a layout without colours. The view's HasRed, HasGreen and HasBlue are not
// set.
ImageObject rgb_channels(ImageObject image);

// A rectangle, cut to the image by clip() of geometry/rectangle.h; what lies beyond the right or lower edge gives a
// view of width or height 0.
ImageObject clip_image(ImageObject image, int32_t x, int32_t y, int32_t width, int32_t height);

// An image with a copy of the pixels in memory of its own, at the same row offset; nil for a file-backed image, one
// without storage, and without memory.
ImageObject clone(ImageObject image);

} // namespace kzb
