// The half turn and the quarter turns into a destination: lossless, of channels only. A destination that is passed is
// used as it is, with its own offsets: what lies inside its storage is written. A new one has the source's layout.
// Nil for images that are not usable; a layout that is neither gray nor colour leaves the destination as it is.
#pragma once

#include "image/record.h"

namespace kzb {

ImageObject rotate_180(ImageObject image, ImageObject dest);

// Counter-clockwise: the top edge becomes the left edge. The two forms differ only for images that share storage and
// for destinations that are too small, where the order counts in which pixels move: the slow form goes row by row, the
// other one through square tiles that are two rows smaller than a storage block.
ImageObject rotate_90_slow(ImageObject image, ImageObject dest);
ImageObject rotate_90(ImageObject image, ImageObject dest);

// Clockwise: the top edge becomes the right edge.
ImageObject rotate_270_slow(ImageObject image, ImageObject dest);
ImageObject rotate_270(ImageObject image, ImageObject dest);

} // namespace kzb
