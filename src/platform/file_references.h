// The platform's references to files, as paths.
#pragma once

#include "platform/buffer.h"

#include <picturekzb/host_interface.h>

#if defined(KZB_CARBON)
#include "platform/carbon/core_reference.h"
#endif

namespace kzb {

// Where a file is, as the platform has it; empty (false) where it is nowhere.
#if defined(KZB_CARBON)
using FileLocation = CoreReference<CFURLRef>;
#else
using FileLocation = Buffer<char>; // a path
#endif

// The locations of a reference, of a file named `name` in the folder `parent`, and of an FSSpec. A name that is
// no text stands for the folder itself.
FileLocation location_of(const FSRef &reference);
FileLocation location_in(const FSRef &parent, const HFSUniStr255 &name);
FileLocation location_of(const FSSpec &older_reference);

// The NUL-terminated UTF-8 path of a location, or none.
Buffer<char> path_of(FileLocation location);

} // namespace kzb
