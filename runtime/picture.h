// Pictures: host objects that hold a graphics world and may have another picture as their mask.
#ifndef KZB_RUNTIME_PICTURE_H
#define KZB_RUNTIME_PICTURE_H

#include "graphics_world.h"
#include "object.h"

namespace kzb {

struct PicturePayload {
    GWorldPtr world;
    bool owns_world;
    KZBPicture mask; // one reference to it; nil: opaque
    int64_t locks;   // descriptions that are locked
};

extern const ObjectClass picture_class;

// A new picture that owns the world; nil, and the world gone, for a nil world and when out of memory.
KZBPicture picture_from_world(WorldOwner world) noexcept;

// The payload of a live picture. Nil gives nil; anything else is reported as `caller`'s misuse and gives nil.
PicturePayload *picture_payload(KZBPicture picture, const char *caller) noexcept;

// The world of a picture's mask, or nil.
const GWorld *mask_world(const PicturePayload &picture) noexcept;

} // namespace kzb

#endif
