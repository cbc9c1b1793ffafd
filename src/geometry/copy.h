// Rectangles of pixels from one image to another.
#pragma once

#include "image/record.h"

namespace kzb {

// CopyPixels: copies into `image` from `source`, which may share its storage in any way: rows and pixels are taken in
// ascending order, and each byte is read after the earlier ones were written. The rectangle is cut by clip_copy() of
// geometry/rectangle.h. Colour becomes gray as (77 red + 151 green + 28 blue) / 256, gray becomes three equal colours,
// alpha is copied where both have it and else left alone. Nothing happens for a nil source, for images that are not
// usable, and in layouts that are neither gray nor colour.
void copy_pixels_rectangle(ImageObject image, ImageObject source, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                           int32_t dest_height, int32_t source_x, int32_t source_y);
// From the source's top left corner.
void copy_pixels_from_corner(ImageObject image, ImageObject source, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                             int32_t dest_height);
// The whole image.
void copy_pixels(ImageObject image, ImageObject source);

} // namespace kzb
