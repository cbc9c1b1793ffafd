// What methods need to be done, for steps that were not.
#pragma once

#include <string_view>

namespace kzb::cli {

// What follows "it needs"; nil: none is known for the method.
const char *need_of(std::string_view method);

} // namespace kzb::cli
