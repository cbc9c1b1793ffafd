// The command line, taken apart but not yet understood: options, the input, and the words of each step.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kzb::cli {

struct CommandLine {
    std::string subject; // INPUT
    std::vector<std::vector<std::string>> steps;
    std::string text; // not empty: to be printed, and nothing else

    std::string output;
    std::string module; // empty: look in the usual places
    int quality = 0;    // 0: the runtime's own choice
    uint64_t max_pixels = 0;
    bool verbose = false;
    bool quiet = false;
};

// Throws a Failure of Exit::usage for a line that makes no sense.
CommandLine parse_command_line(int argc, const char *const *argv);

// An option of the chain, for texts about it.
struct OptionFact {
    std::vector<std::string> names; // with their dashes, the short one first
    std::string type;               // of its value; empty: it takes none
    std::string sentence;
};
std::vector<OptionFact> option_facts();

// The ways to call kzb, a line each; what kzb is, in a sentence; and what its help says below the options.
std::string usage_text();
const char *description();
const char *notes();

// Whether a path ends in one of the endings that the runtime writes.
bool is_writable_kind(const std::string &path);

} // namespace kzb::cli
