// What kzb prints about the module's methods.
#pragma once

#include "cli/catalogue.h"

namespace kzb::cli::guide {

// Declarations, arguments, result and what a chain supplies. Throws a Failure of Exit::usage for an unknown name.
std::string help_text(const std::string &name, const Catalogue &catalogue);

} // namespace kzb::cli::guide
