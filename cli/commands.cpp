#include "commands.h"

#include "check/command.h"
#include "gallery/gallery.h"
#include "guide/guide.h"
#include "show/show.h"

#include <algorithm>

namespace kzb::cli {

namespace {

constexpr Command all_commands[] = {
    {"list", "[WORD]", "Names the methods by family, or those that have to do with WORD", false, guide::run_list},
    {"help", "[METHOD]", "Explains one method, or kzb itself", false, guide::run_help},
    {"info", "[--json]", "Shows the module in use: its classes, properties, constants and instruction set", false,
     guide::run_info},
    {"gallery", "INPUT -o DIR", "Makes a page that shows what every method makes of a picture", true, run_gallery},
#ifdef KZB_SHOW
    {"show", "FILE", "Draws a picture in the terminal", false, run_show},
#endif
    {"check", "MODULE.so [CHECK...]", "Looks at a module from all sides", false, check::run_check},
    {"completion", "[SHELL]", "Prints the completion for bash, zsh or fish, or how to install it", false,
     guide::run_completion},
    {"reference", "", "Prints the reference of all classes as Markdown", false, guide::run_reference},
    {"manual", "", "Prints the manual page, for 'man -l -'", false, guide::run_manual},
};

// Where a command's name stands: at the start, or after --module FILE.
size_t place_of_name(const Words &words) {
    if (words.size() > 2 && words[0] == "--module") return 2;
    return words.size() > 1 && words[0].starts_with("--module=") ? 1 : 0;
}

bool is_output(const std::string &word) {
    return word.starts_with("-o") || word.starts_with("--output");
}

} // namespace

std::span<const Command> commands() {
    return all_commands;
}

const Command *command_asked_for(const Words &words) {
    const size_t place = place_of_name(words);
    if (place >= words.size() || std::find(words.begin(), words.end(), ":") != words.end()) return nullptr;
    const bool output = std::any_of(words.begin(), words.end(), is_output);
    for (const Command &command : all_commands)
        if (words[place] == command.name && (!output || command.writes_output)) return &command;
    return nullptr;
}

Exit run_command(const Command &command, Words words) {
    words.erase(words.begin() + static_cast<std::ptrdiff_t>(place_of_name(words)));
    return command.run(words);
}

} // namespace kzb::cli
