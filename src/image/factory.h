// New images: user code may supply them through a factory, per image or for the whole process.
#pragma once

#include "host/reference.h"
#include "image/record.h"

namespace kzb {

// SetFactory: the factory that is asked for images from now on, held with one reference; nil removes it.
void set_factory(FactoryObject factory);

// A valid image, or nil: from the Factory of `asking` (which may be nil), from the process's factory, or an in-memory
// image of its own. What a factory gives is not looked at further: it may have another size and layout. User code may
// run meanwhile.
ImageReference create_image(const ImageRecord *asking, int32_t width, int32_t height, int32_t image_format);

// Whether create_image has a factory to ask, which may keep what it gives. Without one nobody else sees the image.
bool may_ask_program(const ImageRecord &asking);

// The two CreatePictureKZB methods.
ImageObject create_picture(ImageObject image, int32_t width, int32_t height, int32_t image_format);
ImageObject create_picture_shared(int32_t width, int32_t height, int32_t image_format);

} // namespace kzb
