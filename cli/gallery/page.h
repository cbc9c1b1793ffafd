// The gallery's page.
#pragma once

#include "cli/notes/method_notes.h"

#include <string>
#include <vector>

namespace kzb::cli {

// One method's place in the gallery: its command line, and the files from which and to which that goes.
struct Exhibit {
    const MethodNote *note;
    std::string from;
    std::string to;
};

struct Room {
    const Family *family;
    std::vector<Exhibit> exhibits;
};

// The page in HTML; `title` is the picture's name.
std::string gallery_page(const std::string &title, const std::vector<Room> &rooms);

} // namespace kzb::cli
