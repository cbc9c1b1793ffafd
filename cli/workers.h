// Many inputs, worked on by several processes.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kzb::cli {

// What became of one input.
struct WorkResult {
    int exit = 0;                     // an Exit
    std::string message{};            // why it failed
    std::vector<std::string> lines{}; // to be told besides
};

// Does the work of one input, in a worker process.
using WorkFunction = std::function<WorkResult(size_t index)>;

// Told of each result in the parent, and now and then without one; false: no further input is begun.
using ResultFunction = std::function<bool(size_t index, const WorkResult &result)>;
using IdleFunction = std::function<void()>;

// Has inputs 0 to count - 1 worked on by `jobs` copies of this process. A worker that dies fails its input and is
// replaced. Throws a Failure of Exit::operation when processes cannot be made.
void run_workers(size_t count, int jobs, const WorkFunction &work, const ResultFunction &done,
                 const IdleFunction &idle);

} // namespace kzb::cli
