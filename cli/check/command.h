// `kzb check`: looks at a module from all sides.
#pragma once

#include "../failure.h"

#include <string>
#include <vector>

namespace kzb::cli::check {

// Whether a command line's words are one of `kzb check`, and not a chain that begins with a file of this name.
bool is_check(const std::vector<std::string> &words);

// Does what the words, of which the first is "check", ask for, and prints to stdout. Exit::done when nothing failed,
// Exit::operation otherwise. Throws a Failure of Exit::usage, and of Exit::module for a file that is no library.
Exit run_check(const std::vector<std::string> &words);

} // namespace kzb::cli::check
