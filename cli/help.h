// What kzb prints about the module's methods.
#pragma once

#include "catalogue.h"

namespace kzb::cli {

// Every registered method in one line, by family.
std::string list_text(const Catalogue &catalogue);

// Declarations, arguments, result and what a chain supplies. Throws a Failure of Exit::usage for an unknown name.
std::string help_text(const std::string &name, const Catalogue &catalogue);

} // namespace kzb::cli
