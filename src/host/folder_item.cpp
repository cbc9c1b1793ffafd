#include "host/folder_item.h"

#include "host/entry_points.h"
#include "platform/file_references.h"

namespace kzb {

Buffer<char> folder_item_path(FolderItem item) {
    if (item == nullptr) return {};
    FSRef reference = {};
    if (REALFSRefFromFolderItem(item, &reference, nullptr)) {
        if (auto path = path_from_reference(reference)) return path;
    }
    // The file does not exist yet: its folder and its name.
    HFSUniStr255 name = {};
    reference = {};
    if (REALFSRefFromFolderItem(item, &reference, &name)) {
        if (auto path = path_from_parent_and_name(reference, name)) return path;
    }
    FSSpec specification = {};
    if (REALFSSpecFromFolderItem(item, &specification)) return path_from_specification(specification);
    return {};
}

} // namespace kzb
