// The command line, taken apart but not yet understood: options, the inputs, and the words of each step.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kzb::cli {

struct CommandLine {
    std::vector<std::string> inputs;
    std::vector<std::vector<std::string>> steps;
    std::string text; // not empty: to be printed, and nothing else

    std::string output; // may have places for the input's name, as in "out/{stem}.png"
    std::string module; // empty: look in the usual places
    int quality = 0;    // 0: the runtime's own choice
    bool lossless = false;
    uint64_t max_pixels = 0; // 0: the usual limit
    int jobs = 1;
    bool keep_going = false;
    std::string scratch; // empty: pictures are in memory
    bool dry_run = false;
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

} // namespace kzb::cli
