// A module that is started without a look at what it registers, so that checks see also what a host would refuse.
#pragma once

#include "check.h"
#include "host_entries.h"

namespace kzb::cli::check {

struct StartedModule {
    std::vector<std::string> calls;         // of entry points, in order
    std::vector<int32_t> versions;          // announced
    std::vector<ClassDefinition *> classes; // registered, nil ones too
    int32_t result = 0;
    int32_t last_registration = 0; // what the host returned last
};

// Loads the library; nil after a failure, which is told.
void *open_library(const std::string &path);

// Starts the module. Entry points that are missing in host_entries() are missing to it.
StartedModule start_module(const Subject &subject);

} // namespace kzb::cli::check
