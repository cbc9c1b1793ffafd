// The steps of a chain, understood: each method's form chosen and every argument in its place before work begins.
#pragma once

#include "argument_text.h"

namespace kzb::cli {

// Who gives a step's argument in the end.
enum class Source { value, reference, chain_nil, chain_current, chain_new };

// What a step passes for one declared argument.
struct PlannedArgument {
    std::string name;
    Source source;
    Value value;                  // of Source::value
    std::string reference;        // of Source::reference
    bool as_host_picture = false; // the reference is wanted as a picture of the host
};

enum class StepKind {
    call,   // a method
    keep,   // "=name" alone: keeps the current picture
    recall, // "@name" alone: goes back to what was kept
};

struct PlannedStep {
    size_t number = 0; // from 1
    StepKind kind = StepKind::call;
    std::string written{};
    const Form *form = nullptr;
    std::vector<PlannedArgument> arguments{}; // without those left to their defaults
    std::string assigned{};                   // what value=@name names; empty: nothing is assigned
    std::string name{};                       // what the picture or result is kept as, or recalled from; empty: neither

    // The value of an Integer argument; none when the step has no argument of that name.
    std::optional<int64_t> integer(std::string_view name) const;

    // Whether it is called on a new picture, into which it reads the current one.
    bool writes_new_picture() const;

    // Whether it may change the picture that it is called on.
    bool changes_picture() const;
};

// Throws a Failure of Exit::usage that names the step for the first mistake. The plan refers to the catalogue.
std::vector<PlannedStep> plan_chain(const std::vector<std::vector<std::string>> &steps, const Catalogue &catalogue);

} // namespace kzb::cli
