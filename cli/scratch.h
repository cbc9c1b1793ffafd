// Pictures in files, for chains on pictures larger than memory.
#pragma once

#include <string>

namespace kzb::cli {

// From now on the module's new pictures are kept in nameless files in the folder. Throws a Failure of Exit::usage when
// no files can be made there.
void keep_pictures_in(const std::string &folder);

// The folder; empty: pictures are in memory.
const std::string &scratch_folder();

// Why the last new picture could not be kept there, for the end of a sentence, and forgets it; empty: it could.
std::string scratch_hint();

} // namespace kzb::cli
