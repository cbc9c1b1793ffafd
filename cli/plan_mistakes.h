// What is wrong with a step's arguments, and how it is right.
#pragma once

#include "plan.h"

#include <map>

namespace kzb::cli {

// What the steps so far have kept, by name: the class of each.
struct NameOrder {
    bool operator()(const std::string &a, const std::string &b) const;
};
using KeptNames = std::map<std::string, std::string, NameOrder>;

// How far the written arguments come with one form, from the worst mistake to none.
enum class Stage { unknown_name, too_many, missing, given_twice, no_fit, fits };

struct Attempt {
    const Form *form = nullptr;
    Stage stage = Stage::unknown_name;
    size_t parameter = 0; // where the mistake is: the place in the declaration, its end for an assigned value,
    size_t argument = 0;  // and among the written arguments
    std::vector<PlannedArgument> arguments{};
    std::string assigned{};
};

// The start of the names of the constants that a parameter takes; nil: any number will do.
const char *constants_wanted(const Method &method, const kzb_parameter &parameter);

// "; write GammaFilter gamma, or ...": the ways in which a method can be a step.
std::string usages(const Method &method);

// That nothing was kept under a name.
std::string unknown_kept(const std::string &name, const KeptNames &kept);

// These throw a Failure of Exit::usage.
[[noreturn]] void tell_mistake(const Method &method, const Attempt &attempt,
                               const std::vector<WrittenArgument> &written, const KeptNames &kept);
[[noreturn]] void tell_no_method(const std::string &name, const Catalogue &catalogue);

} // namespace kzb::cli
