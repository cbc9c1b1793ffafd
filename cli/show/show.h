// `kzb show`: a picture in the terminal.
#pragma once

#include "cli/commands.h"

namespace kzb::cli {

// Takes the words after "show". Throws a Failure of Exit::usage, or of Exit::input for a file that cannot be read.
Exit run_show(const Words &words);

} // namespace kzb::cli
