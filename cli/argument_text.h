// Arguments as they are written on a command line.
#pragma once

#include "catalogue.h"
#include "host.h"

#include <optional>

namespace kzb::cli {

// One argument of a step: a value and, for "Name=value", the name.
struct WrittenArgument {
    std::string name;      // empty: by position
    std::string text;      // the value as written
    Value value;           // nil for a reference
    std::string reference; // what "@name" stands for; empty: no reference
    std::string constant;  // the constant's name; empty: none
    std::string problem;   // why the text is no value; empty: it is one
};

// Reads one argument. A text that is no value is kept with its problem, which its argument's name makes clearer; what
// is not even an argument throws a Failure of Exit::usage.
WrittenArgument read_argument(const std::string &word, const Catalogue &catalogue);

// Puts the words of a step together again that a shell has split inside [ and ].
std::vector<std::string> join_arrays(const std::vector<std::string> &words);

// The value as one of the declared type; none when it does not fit.
bool fits(const kzb_value &value, kzb_type type);

// What a type expects: "a whole number", "a colour (#RRGGBB, &hRRGGBB or a name)".
std::string describe(kzb_type type);

} // namespace kzb::cli
