// The platform's references to files, as paths.
#pragma once

#include "platform/buffer.h"

#include <picturekzb/host_interface.h>

namespace kzb {

// NUL-terminated UTF-8 paths for a reference, for a file named `name` in the folder `parent`, and for a specification;
// none where there is no path. A name that is no text stands for the folder itself.
Buffer<char> path_from_reference(const FSRef &reference);
Buffer<char> path_from_parent_and_name(const FSRef &parent, const HFSUniStr255 &name);
Buffer<char> path_from_specification(const FSSpec &specification);

} // namespace kzb
