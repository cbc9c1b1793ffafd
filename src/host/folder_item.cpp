#include "host/folder_item.h"

#include "host/entry_points.h"
#include "platform/file_references.h"

namespace kzb {

namespace {

FileLocation location_of_item(FolderItem item) {
    FSRef reference = {};
    if (REALFSRefFromFolderItem(item, &reference, nullptr)) {
        if (auto location = location_of(reference)) return location;
    }
    // The file does not exist yet: its folder and its name.
    HFSUniStr255 name = {};
    reference = {};
    if (REALFSRefFromFolderItem(item, &reference, &name)) {
        if (auto location = location_in(reference, name)) return location;
    }
    FSSpec older_reference = {};
    if (REALFSSpecFromFolderItem(item, &older_reference)) return location_of(older_reference);
    return {};
}

} // namespace

Buffer<char> folder_item_path(FolderItem item) {
    if (item == nullptr) return {};
    return path_of(location_of_item(item));
}

} // namespace kzb
