// A host for the module's pieces that meet the system: folder items and pictures, with every call noted.
#pragma once

#include "platform/simulation.h"

#include "host/entry_points.h"

namespace kzb::test::simulated {

// What the host knows of the one folder item that there is.
struct Item {
    bool exists = false;            // REALFSRefFromFolderItem gives `reference` for the item itself
    bool has_parent = false;        // ... and `parent` with `name`
    bool has_older_reference = false; // REALFSSpecFromFolderItem gives `older_reference`
    FSRef reference = {}, parent = {};
    HFSUniStr255 name = {};
    FSSpec older_reference = {};
};
inline Item item;
FolderItem the_item();
HFSUniStr255 name_of(const std::u16string &text);

// The one picture that there is: its description, and how many references and locked descriptions are left.
struct HostPicture {
    PictureDescription description = {};
    int references = 0, locked = 0;
    GWorldPtr taken_over = nullptr; // by REALBuildPictureFromGWorld
    bool building_fails = false;
};
inline HostPicture host_picture;
Picture the_picture();

inline int yields = 0;

// Makes this the host, and forgets everything.
void start();

} // namespace kzb::test::simulated
