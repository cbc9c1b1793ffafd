#include "standard_output.h"

#include "failure.h"

#include <cstdio>

namespace kzb::cli {

void print(const std::string &text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        fail(Exit::output, "standard output cannot be written");
}

} // namespace kzb::cli
