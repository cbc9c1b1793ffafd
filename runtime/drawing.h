// Drawing from one graphics world into another, of any depths, as the host's DrawPicture does.
//
// A drawing of the same size copies the pixels exactly. Any other size interpolates between the two nearest pixels in
// each direction (bilinear) and takes nothing from outside the source rectangle; a strong reduction therefore leaves
// pixels out. The mask and the picture under it are scaled each by itself, then blended.
#ifndef KZB_RUNTIME_DRAWING_H
#define KZB_RUNTIME_DRAWING_H

#include "graphics_world.h"

namespace kzb {

struct Rectangle {
    int32_t x, y, width, height;
};

// Draws the rectangle `source` of `from` into the rectangle `target` of `to`, cut to both worlds; nothing for sizes
// below 1. With a mask (nil: none) whose top left corner is that of `from`, gray level 255 draws, 0 leaves `to` as it
// was, and levels between blend; beyond the mask's edges everything is drawn. The worlds may be the same one.
// Throws std::bad_alloc.
void draw_world(GWorld &to, Rectangle target, const GWorld &from, const GWorld *mask, Rectangle source);

} // namespace kzb

#endif
