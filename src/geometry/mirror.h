// Mirrors and the half turn, in place. They move channels only, no padding, and do nothing to an image that is not
// usable or whose layout is neither gray nor colour.
#pragma once

#include "image/record.h"

namespace kzb {

// Left and right change places.
void h_mirror(ImageObject image);

// Top and bottom change places. Nothing changes when the work memory for two rows cannot be had.
void v_mirror(ImageObject image);

// Both. The middle row of an odd height stays as it is, and so does an image of one row: programs rely on it.
void rotate_180_in_place(ImageObject image);

} // namespace kzb
