// Images over host pictures, and host pictures made from images.
//
// A rectangle's negative width or height reaches back from x or y; it is cut to the image, and an empty one gives nil.
// Pictures made here have 32 bits and 0 in each pixel's first byte.
#pragma once

#include "image/record.h"

namespace kzb {

// Constructor(pic, UseAlpha): the image is the picture's own pixels, and holds the picture. Pictures of 32 bits
// (XRGB, with UseAlpha ARGB) and of 24 (RGB); any other leaves the image not Valid.
void construct_on_picture(ImageObject image, Picture picture, Boolean use_alpha);

// The rectangle's colours, or its gray; nil for other layouts, an image that is not usable, or without memory.
Picture copy_picture_rectangle(ImageObject image, int32_t x, int32_t y, int32_t w, int32_t h);
Picture copy_picture(ImageObject image);

// The rectangle's alpha as gray, as it is; nil for layouts without alpha.
Picture copy_mask_rectangle(ImageObject image, int32_t x, int32_t y, int32_t w, int32_t h);
Picture copy_mask(ImageObject image);

// The picture with the mask attached where the layout has alpha.
Picture copy_picture_with_mask_rectangle(ImageObject image, int32_t x, int32_t y, int32_t w, int32_t h);
Picture copy_picture_with_mask(ImageObject image);

// The getter of DebugPicture: at most the top left 512 × 512 pixels with their mask; nil unless DebugPictureEnabled.
Picture debug_picture(ImageObject image, word);

} // namespace kzb
