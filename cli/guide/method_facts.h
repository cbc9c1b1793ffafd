// All there is to tell about a method, gathered from what the module registers and from the notes.
#pragma once

#include "cli/catalogue.h"
#include "cli/notes/method_notes.h"

namespace kzb::cli::guide {

struct ArgumentFact {
    std::string name;
    std::string text; // the type and what it takes, or who supplies it
    bool operator==(const ArgumentFact &) const = default;
};

// Every list holds a thing once, in the order of the declarations.
struct MethodFacts {
    std::string name;
    const MethodNote *note; // nil: of another module
    std::vector<std::string> declarations;
    std::vector<std::string> steps; // how it is written in a chain; empty: it cannot be a step
    std::string obstacle;           // why it cannot be one
    std::vector<ArgumentFact> arguments;
    std::vector<ArgumentFact> supplied; // by the chain
    std::vector<std::string> results;
    std::vector<std::string> constants; // that the arguments take
};

MethodFacts facts_of(const Method &method, const Catalogue &catalogue);

} // namespace kzb::cli::guide
