// Arguments as they are written on a command line.
#pragma once

#include "catalogue.h"
#include "host.h"

#include <optional>

namespace kzb::cli {

// One argument of a step: a value and, for "Name=value", the name.
struct WrittenArgument {
    std::string name; // empty: by position
    std::string text; // the value as written
    Value value;
};

// Reads one argument. Throws a Failure of Exit::usage, without the step's number, for a text that is no value.
WrittenArgument read_argument(const std::string &word, const Catalogue &catalogue);

// Puts the words of a step together again that a shell has split inside [ and ].
std::vector<std::string> join_arrays(const std::vector<std::string> &words);

// The value as one of the declared type; none when it does not fit.
bool fits(const kzb_value &value, kzb_type type);

// What a type expects: "a whole number", "a colour (#RRGGBB or &hRRGGBB)".
std::string describe(kzb_type type);

} // namespace kzb::cli
