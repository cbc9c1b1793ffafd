// The mean of a square around each pixel.
#pragma once

#include "filters/tables.h"
#include "host/reference.h"

namespace kzb {

// Each channel, alpha included, becomes the mean of the (2r + 1)² pixels around it, first over columns, then over rows,
// each mean truncated; r is Radius without its fraction, 0 for one that is negative or not finite. The picture goes on
// beyond its edges with its first and last rows and columns. The cost does not depend on the radius.
//
// Writes into `dest`, which is not looked at in size and layout, or for nil into a new image of the image's size and
// layout, and gives it; nil when one of the two is not usable. A layout that is neither gray nor colour leaves the
// destination as it is, and so does a lack of memory. In place, a column's mean takes the rows above as they have
// become, and a mean that this drives out of 0 to 255 is 0.
ImageObject box_blur_filter(ImageObject image, ImageObject dest, double radius);

// The blur repeated: the first pass goes into `dest`, each later one into a new image, of which the last is given.
// Below one iteration gives the image itself. Nil when a pass gives nil.
ImageObject box_blur_filter_repeated(ImageObject image, ImageObject dest, double radius, int32_t iterations);

// At least two and at most `most_unseen_passes` passes into a new image, without images between them; with `tables` the
// result's channels are then sent through these, alpha becoming 0 where it has none. None when user code might see the
// images between, or other things speak against it; nothing has happened then.
inline constexpr int32_t most_unseen_passes = 3;
ImageReference box_blur_unseen(ImageObject image, double radius, int32_t passes, const ChannelTables *tables);

} // namespace kzb
