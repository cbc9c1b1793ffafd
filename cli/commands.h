// kzb's commands beside the chain: the words that a command line may begin with instead of a picture.
#pragma once

#include "failure.h"

#include <span>
#include <vector>

namespace kzb::cli {

using Words = std::vector<std::string>;

struct Command {
    const char *name;
    const char *usage;               // what follows the name: "[WORD]"
    const char *sentence;            // what it does, for the help
    bool writes_output;              // takes -o
    Exit (*run)(const Words &words); // the words after the name
};

// In the order in which the help shows them.
std::span<const Command> commands();

// The command that a command line asks for; nil: it is a chain, or asks for the help of kzb itself. A line with a ':'
// or, except for commands that write files, with -o is a chain whose picture has a command's name.
const Command *command_asked_for(const Words &words);

// Runs a command with the words of its command line, its name among them.
Exit run_command(const Command &command, Words words);

} // namespace kzb::cli
