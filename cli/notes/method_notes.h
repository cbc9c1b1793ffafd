// What the registration tables do not tell about a method.
#pragma once

#include <span>
#include <string_view>

namespace kzb::cli {

struct MethodNote {
    const char *name;
    const char *sentence;  // one line, for the list
    const char *remark;    // what a user of a chain should know besides; nil: nothing
    const char *also = ""; // further words under which the list finds it
};

struct Family {
    const char *title;
    std::span<const MethodNote> methods;
};

// In the order in which they are listed.
std::span<const Family> families();

// Nil: the method is in no family.
const MethodNote *note_on(std::string_view method);

// The start of the names of the constants that an Integer argument takes, such as "Scale"; nil: it takes none.
const char *constants_for(std::string_view method, std::string_view argument);

} // namespace kzb::cli
