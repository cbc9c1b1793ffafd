// The command line, taken apart but not yet understood: options, the input, and the words of each step.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kzb::cli {

enum class Command {
    chain,   // send INPUT through the steps
    list,    // name the methods
    help_on, // explain the method named by `subject`
    text     // print `text` and be done
};

struct CommandLine {
    Command command = Command::chain;
    std::string subject; // INPUT or METHOD
    std::vector<std::vector<std::string>> steps;
    std::string text;

    std::string output;
    std::string module; // empty: look in the usual places
    int quality = 0;    // 0: the runtime's own choice
    uint64_t max_pixels = 0;
    bool verbose = false;
    bool quiet = false;
};

// Throws a Failure of Exit::usage for a line that makes no sense.
CommandLine parse_command_line(int argc, const char *const *argv);

// Whether a path ends in one of the endings that the runtime writes.
bool is_writable_kind(const std::string &path);

} // namespace kzb::cli
