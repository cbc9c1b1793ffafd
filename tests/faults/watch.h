// Holds a stretch of a test to giving back what it took.
#pragma once

#include "faults/child_process.h"
#include "faults/method_table.h"

namespace kzb::test {

// What the process holds: host objects, strings and arrays, their references, the module's memory, descriptors.
class Watch {
public:
    // From here on; the process's own first uses of things have to be over.
    Watch();

    // Where the balance is not back: empty when all is well. Cleans up first, and takes misuse of the host and of
    // memory in as well.
    std::string difference();

private:
    size_t objects_, references_, pieces_, descriptors_;
};

// A row undisturbed: its arguments before the call, and what the call leads to. Cleans up.
struct Undisturbed {
    Observation before;
    Observation right;
};
Undisturbed undisturbed(const Row &row);

// Runs body(row, report) for each row, those of a declaration in one child process. Gives what they counted.
uint64_t for_each_row(const std::function<void(const Row &, Report &)> &body);

} // namespace kzb::test
