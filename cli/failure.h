// How a run of kzb ends when it does not end well.
#pragma once

#include <picturekzb/runtime.h>

#include <string>

namespace kzb::cli {

// The exit codes of the command.
enum class Exit { done = 0, operation = 1, usage = 2, input = 3, output = 4, module = 5 };

// Thrown; main() prints the message as one line on stderr and exits with the code.
struct Failure {
    Exit exit;
    std::string message;
};

[[noreturn]] inline void fail(Exit exit, std::string message) {
    throw Failure{exit, std::move(message)};
}

} // namespace kzb::cli
