// Where each input's result goes.
#pragma once

#include <string>
#include <vector>

namespace kzb::cli {

struct Work {
    std::string input, output;
};

// Fills the places of the output's name in for each input. Throws a Failure of Exit::usage for an unknown place, an
// ending that tells no kind of file, two inputs with one output, and an output that is another input; of Exit::output
// when an output's folder does not exist.
std::vector<Work> plan_outputs(const std::vector<std::string> &inputs, const std::string &output);

} // namespace kzb::cli
