// Rectangles of an image set to one value or turned into their complement, in place.
//
// Rectangles are cut to the image by clip() of geometry/rectangle.h. Nothing happens to an image that is not usable,
// for an empty rectangle, and in layouts that lack the channels. Of a channel's value the low 8 bits are taken. The
// image is paced before the first row and after each.
#pragma once

#include "image/record.h"

namespace kzb {

// Every channel becomes 255 - v; of layouts with red, green, blue and alpha only red and blue.
void invert(ImageObject image);
void invert_rectangle(ImageObject image, int32_t x, int32_t y, int32_t w, int32_t h);

// Zero bytes, padding included. Whole rows; or a rectangle's bytes counted from the row's address, which in a view is
// that of the storage's row. What would lie beyond the storage is left out.
void clear(ImageObject image);
void clear_rectangle(ImageObject image, int32_t x, int32_t y, int32_t width, int32_t height);

// Every channel, alpha included. Pixels that consist of their channels alone are filled as one run of RowSize bytes
// from the rectangle's left edge, counted from the row's address: it goes on to the row's end and into the next row, up
// to the end of the storage.
void fill(ImageObject image, int32_t value);
void fill_rectangle(ImageObject image, int32_t x, int32_t y, int32_t width, int32_t height, int32_t value);

// Red, green and blue, and in the forms with alpha also alpha where the layout has it.
void fill_rgb(ImageObject image, int32_t red, int32_t green, int32_t blue);
void fill_rgba(ImageObject image, int32_t red, int32_t green, int32_t blue, int32_t alpha);
void fill_rectangle_rgb(ImageObject image, int32_t x, int32_t y, int32_t width, int32_t height, int32_t red,
                        int32_t green, int32_t blue);
void fill_rectangle_rgba(ImageObject image, int32_t x, int32_t y, int32_t width, int32_t height, int32_t red,
                         int32_t green, int32_t blue, int32_t alpha);
void fill_color(ImageObject image, Color color);
void fill_color_with_alpha(ImageObject image, Color color, int32_t alpha);
void fill_rectangle_color(ImageObject image, int32_t x, int32_t y, int32_t width, int32_t height, Color color);
void fill_rectangle_color_with_alpha(ImageObject image, int32_t x, int32_t y, int32_t width, int32_t height,
                                     Color color, int32_t alpha);

} // namespace kzb
