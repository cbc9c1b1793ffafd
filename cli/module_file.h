// The module that kzb works with.
#pragma once

#include "catalogue.h"

namespace kzb::cli {

// The module in its usual places: beside kzb, or where an installation puts it. Throws a Failure of Exit::module that
// names the places when it is in none.
std::string find_module();

// The loaded module and what it registers.
struct LoadedModule {
    std::string path;
    const kzb_module *module;
    Catalogue catalogue;
};

// Loads the module at `path`, for an empty one that of find_module(). Throws a Failure of Exit::module.
LoadedModule load_module(const std::string &path);

} // namespace kzb::cli
