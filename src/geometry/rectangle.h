// Rectangles that user code passes, cut to an image: the rules of the methods that fill, clear, invert, crop and copy.
#pragma once

#include "geometry/extent.h"
#include "image/record.h"

namespace kzb {

// Columns and rows of an image.
struct Rectangle {
    Extent columns;
    Extent rows;
    bool empty() const { return columns.length < 1 || rows.length < 1; }
};

// One side of a rectangle, compared without signs. A negative length reaches back from the start. What ends before 0
// therefore takes the whole side; what starts beyond the limit is empty.
Extent clip(int32_t limit, int32_t start, int32_t length);

// The same for both sides of the image's rectangle. A rectangle that is not empty lies inside the image.
Rectangle clip(const ImageRecord &image, int32_t x, int32_t y, int32_t w, int32_t h);

// One side of a copy from one rectangle to another of the same size.
struct CopyExtent {
    int32_t to;
    int32_t from;
    int32_t length; // below 1: empty
};

// Cuts a copy to both sides' limits. A negative `from` moves `to` back by as much as it shortens the length; a negative
// `to` moves `from` on. What is not empty lies inside both sides, whatever the arguments.
CopyExtent clip_copy(int32_t limit, int32_t from_limit, int32_t to, int32_t length, int32_t from);

} // namespace kzb
