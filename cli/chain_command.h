// `kzb INPUT... : STEP ... -o OUTPUT`: everything that is not one of kzb's other commands.
#pragma once

#include "command_line.h"
#include "failure.h"

namespace kzb::cli {

// Throws a Failure for a mistake in the line; failures of inputs are told here.
Exit run_chain(const CommandLine &line);

} // namespace kzb::cli
