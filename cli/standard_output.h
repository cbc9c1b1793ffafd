// What kzb prints for people and programs that asked for it.
#pragma once

#include <string>

namespace kzb::cli {

// Throws a Failure of Exit::output when standard output cannot be written.
void print(const std::string &text);

} // namespace kzb::cli
