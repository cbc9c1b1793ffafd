// Runs operations and tells what is wrong with them.
#pragma once

#include "tour.h"

namespace kzb::cli::check {

struct Judged {
    bool complaints = false;  // operations that cannot be done
    bool balance = false;     // references, objects, strings and arrays that are left or missing afterwards
    bool misuse = false;      // references that are gone and are used
    bool crashes = true;      // a failure; otherwise a warning that the operation was not judged
    bool twice = true;        // a first run, in which a module may set up what it keeps, is not judged
    std::string failing = {}; // the entry point whose first call in each operation fails; empty: none
    std::string prefix = {};  // of every finding
};

// After a crash, the operations that follow are run in a new process; after many, no more are run.
void perform(const Operations &operations, const Judged &judged);

} // namespace kzb::cli::check
