// The frame shared by the operations that read one image and write another.
#pragma once

#include "host/reference.h"
#include "image/paced_image.h"

#include <optional>

namespace kzb {

// The destination convention: a passed image with a reference added, else a new one from the factories of `asking`.
ImageReference take_destination(const ImageRecord &asking, ImageObject passed, int32_t width, int32_t height,
                                int32_t image_format);

// A usable source and a usable destination, both paced once.
struct Passage {
    ImageRecord &source;
    ImageRecord &destination;
    ImageReference result; // the destination's reference, for the caller of the operation
};

// Opens the frame: tests and paces the source, takes the destination (a new one has the source's layout and the size
// given here), tests and paces it. None, with nothing left behind, when a test fails: the operation then gives nil.
std::optional<Passage> open_passage(ImageObject source, ImageObject passed, int32_t width, int32_t height);

// The same with the source's own size.
std::optional<Passage> open_passage(ImageObject source, ImageObject passed);

} // namespace kzb
