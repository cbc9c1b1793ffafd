// `kzb check`: looks at a module from all sides.
#pragma once

#include "../failure.h"

#include <string>
#include <vector>

namespace kzb::cli::check {

// Does what the words, those after "check", ask for, and prints to stdout. Exit::done when nothing failed,
// Exit::operation otherwise. Throws a Failure of Exit::usage, and of Exit::module for a file that is no library.
Exit run_check(const std::vector<std::string> &words);

} // namespace kzb::cli::check
