// The two classes that the host knows. Start-up fills the records in and registers them; the host writes the
// instance-data offset and the event's second word.
#pragma once

#include "host/values.h"

namespace kzb {

inline constinit ClassDefinition picture_class = {};
inline constinit ClassDefinition picture_factory_class = {};

inline constinit EventDefinition new_picture_event = {
    "NewPictureKZB(Width as integer, Height as integer, ImageFormat as integer) as PictureKZB", 0};

} // namespace kzb
