// What the registration tables do not tell about a method: the one place that the list, the help, completion and the
// reference take it from.
#pragma once

#include <span>
#include <string_view>

namespace kzb::cli {

// What an argument takes: its unit, its range, and what the ends of the range do.
struct ArgumentNote {
    const char *name = nullptr;
    const char *takes = nullptr;
};

struct MethodNote {
    const char *name;
    const char *sentence;            // one line
    const char *also = "";           // further words under which the list finds it
    const char *remark = nullptr;    // what a user should know besides
    const char *example = nullptr;   // a command line that runs as it stands beside photo.jpg
    const char *program = nullptr;   // besides, for a method that is above all for programs: statements in C
    ArgumentNote arguments[10] = {}; // those of which the name alone does not tell; see note_on_argument
};

struct Family {
    const char *title;
    const char *page; // the name of its page in docs/
    std::span<const MethodNote> methods;
};

// In the order in which they are listed.
std::span<const Family> families();

// Nil: the method is in no family.
const MethodNote *note_on(std::string_view method);

// What a method's argument takes, by its own note or by what all arguments of this name take; nil: no note tells.
const char *note_on_argument(std::string_view method, std::string_view argument);

// The start of the names of the constants that an Integer argument takes, such as "Scale"; nil: it takes none.
const char *constants_for(std::string_view method, std::string_view argument);

} // namespace kzb::cli
