// Runs operations and tells what is wrong with them.
#pragma once

#include "tour.h"

namespace kzb::cli::check {

struct Judged {
    bool complaints = false;  // operations that cannot be done
    bool balance = false;     // references, objects, strings and arrays that are left or missing afterwards
    bool misuse = false;      // references that are gone and are used
    bool twice = true;        // each operation runs a first time, where a module may set up what it keeps: not judged
    std::string failing = {}; // the entry point whose first call in each operation fails; empty: none
    std::string prefix = {};  // of every finding
};

void perform(const Operations &operations, const Judged &judged);

} // namespace kzb::cli::check
