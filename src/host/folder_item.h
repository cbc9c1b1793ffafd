// Folder items as file-system paths.
#pragma once

#include "host/values.h"
#include "platform/buffer.h"

namespace kzb {

// The NUL-terminated UTF-8 path of a folder item, whether or not its file exists; none for nil or where the host gives
// no path.
Buffer<char> folder_item_path(FolderItem item);

} // namespace kzb
