// The steps of a chain, understood: each method's form chosen and every argument in its place before work begins.
#pragma once

#include "argument_text.h"

namespace kzb::cli {

// What a step passes for one declared argument.
struct PlannedArgument {
    std::string name;
    Giver giver;
    Value value; // the user's; arguments that the chain gives have none yet
};

struct PlannedStep {
    size_t number; // from 1
    std::string written;
    const Form *form;
    std::vector<PlannedArgument> arguments; // without those left to their defaults

    // The value of an Integer argument; none when the step has no argument of that name.
    std::optional<int64_t> integer(std::string_view name) const;
};

// Throws a Failure of Exit::usage that names the step for the first mistake. The plan refers to the catalogue.
std::vector<PlannedStep> plan_chain(const std::vector<std::vector<std::string>> &steps, const Catalogue &catalogue);

} // namespace kzb::cli
