// Filtered scaling: an image resampled in two passes with one of seven reconstruction filters.
#pragma once

#include "image/record.h"

namespace kzb {

// Scale: writes the source, scaled to width × height, to the top left of this image. `temp` is the intermediate image
// of layout ImageFormatScaling, at least `width` × the source's Height; nil: one is made. False, with nothing written
// to this image, for nil or unusable images, a size below 1, an unknown mode, layouts that do not go together, and an
// image or intermediate image that is too small. False too when user code closes one of them meanwhile.
Boolean scale(ImageObject image, ImageObject source, ImageObject temp, int32_t mode, int32_t width, int32_t height);

} // namespace kzb
