// What the checks found, as lines of text or as JSON.
#pragma once

#include "check.h"
#include "process.h"

namespace kzb::cli::check {

enum class Verdict { ok, warn, fail, skip };

struct Result {
    const Check *check;
    Verdict verdict;
    std::string sentence;              // the first finding, or what went well
    std::vector<std::string> findings; // failures, then warnings
    int64_t milliseconds;
};

// Makes a verdict of how a check's process ended and what it told.
Result judge(const Check &check, const Ending &ending, const std::vector<Finding> &findings, int64_t milliseconds);

// A check that was not run, because the one before it did not end well.
Result skipped(const Check &check);

// "FAIL constants - class Faulty, constant 1: ..."
std::string line_of(const Result &result);

struct Report {
    std::string module;
    uint64_t seed;
    double time_limit;
    std::vector<Result> results;

    size_t count(Verdict verdict) const;
};

// "30 checks: 29 ok, 1 warned, 0 failed, 0 not run; seed 7"
std::string summary_of(const Report &report);
std::string json_of(const Report &report);

// A JSON array of every check's name and description.
std::string json_of(const std::vector<const Check *> &checks);

} // namespace kzb::cli::check
