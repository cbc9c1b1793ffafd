// `kzb gallery`: a page that shows what every method makes of a picture.
#pragma once

#include "cli/commands.h"

namespace kzb::cli {

// Takes the words after "gallery". Throws a Failure: of Exit::input or Exit::output for files, of Exit::operation when
// one of the commands fails.
Exit run_gallery(const Words &words);

} // namespace kzb::cli
