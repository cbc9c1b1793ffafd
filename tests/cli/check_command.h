// `kzb check` as the tests run it.
#pragma once

#include "cli/command.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace kzb::test {

// A module of tests/cli/modules/broken.c and one of tests/runtime/modules/faulty.c, by the fault.
std::string broken(const std::string &fault);
std::string faulty(const std::string &fault);

// Runs `kzb check` with these words.
Outcome check(std::vector<std::string> words);

// What `kzb check --json` says; an empty value, and a failed test, when it is no JSON or the exit code is another.
nlohmann::json report(std::vector<std::string> words, int exit);

// The names that `kzb check --list` shows.
std::vector<std::string> names_listed();

} // namespace kzb::test
