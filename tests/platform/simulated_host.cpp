#include "platform/simulated_host.h"

#include <algorithm>
#include <cstring>

namespace kzb::test::simulated {

namespace {

KZBBoolean reference_from_item(KZBFolderItem, FSRef *reference, HFSUniStr255 *name) {
    if (name == nullptr) {
        *reference = item.reference;
        return item.exists;
    }
    *reference = item.parent;
    *name = item.name;
    return item.has_parent;
}

KZBBoolean older_reference_from_item(KZBFolderItem, FSSpec *older_reference) {
    *older_reference = item.older_reference;
    return item.has_older_reference;
}

void lock_object(KZBObject) {
    ++host_picture.references;
}
void unlock_object(KZBObject) {
    --host_picture.references;
}

KZBBoolean lock_description(KZBPicture, PictureDescription *description) {
    *description = host_picture.description;
    ++host_picture.locked;
    return 1;
}
void unlock_description(KZBPicture, PictureDescription *) {
    --host_picture.locked;
}

KZBPicture build_picture(GWorldPtr world, KZBBoolean take_over) {
    if (host_picture.building_fails || !take_over) return nullptr;
    host_picture.taken_over = world;
    ++host_picture.references;
    return the_picture();
}

void yield() {
    ++yields;
}

void *host_entry(const char *name) {
    const struct {
        const char *name;
        void *address;
    } entries[] = {{"REALFSRefFromFolderItem", reinterpret_cast<void *>(reference_from_item)},
                   {"REALFSSpecFromFolderItem", reinterpret_cast<void *>(older_reference_from_item)},
                   {"REALLockObject", reinterpret_cast<void *>(lock_object)},
                   {"REALUnlockObject", reinterpret_cast<void *>(unlock_object)},
                   {"lockPictureDescription", reinterpret_cast<void *>(lock_description)},
                   {"unlockPictureDescription", reinterpret_cast<void *>(unlock_description)},
                   {"REALBuildPictureFromGWorld", reinterpret_cast<void *>(build_picture)},
                   {"REALYieldToRB", reinterpret_cast<void *>(yield)}};
    for (const auto &entry : entries)
        if (std::strcmp(entry.name, name) == 0) return entry.address;
    return nullptr;
}

} // namespace

FolderItem the_item() {
    return reinterpret_cast<FolderItem>(&item);
}

Picture the_picture() {
    return reinterpret_cast<Picture>(&host_picture);
}

HFSUniStr255 name_of(const std::u16string &text) {
    HFSUniStr255 name = {};
    name.length = static_cast<uint16_t>(text.size());
    std::copy_n(text.begin(), std::min(text.size(), std::size(name.unicode)), name.unicode);
    return name;
}

void start() {
    reset();
    item = {};
    host_picture = {};
    yields = 0;
    ticks = 0;
    set_resolver(host_entry);
}

} // namespace kzb::test::simulated
