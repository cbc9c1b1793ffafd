// Graphics objects, through which programs and modules draw into a picture.
#ifndef KZB_RUNTIME_GRAPHICS_H
#define KZB_RUNTIME_GRAPHICS_H

#include "object.h"

namespace kzb {

// A graphics object keeps its picture alive.
struct GraphicsPayload {
    KZBPicture picture;
};

extern const ObjectClass graphics_class;

} // namespace kzb

#endif
