// One input on its way through the chain into its output.
#pragma once

#include "command_line.h"
#include "outputs.h"
#include "plan.h"

#include <functional>

namespace kzb::cli {

// What all inputs have in common.
struct JobSettings {
    const CommandLine &line;
    const Catalogue &catalogue;
    const std::vector<PlannedStep> &plan;
};

// How far a job is: 0 to 1, what it is doing, and whether it may be silent for a while from now on.
using JobProgress = std::function<void(double part, const std::string &doing, bool long_step)>;

// Lines to be told besides the result: notes and, with --verbose, what each step did and how long it took.
struct JobReport {
    std::vector<std::string> lines;
};

// Throws a Failure, a CallFailure, or std::bad_alloc; `report` then holds what was told before.
void run_job(const Work &work, const JobSettings &settings, const JobProgress &progress, JobReport &report);

} // namespace kzb::cli
