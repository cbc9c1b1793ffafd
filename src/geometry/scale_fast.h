// Fast scaling: an image resampled by picking the nearest pixel at or before each sample.
#pragma once

#include "image/record.h"

namespace kzb {

// ScaleFast: writes the source, scaled to width × height, to the top left of this image; a size beyond the image's own,
// or below 0, is the image's own. False, with nothing written, for nil or unusable images, an empty size, and layouts
// that do not go together. False too when user code closes one of the images meanwhile.
Boolean scale_fast(ImageObject image, ImageObject source, int32_t width, int32_t height);

} // namespace kzb
