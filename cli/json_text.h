// Text in JSON.
#pragma once

#include <string>
#include <string_view>

namespace kzb::cli {

// A JSON string with its quotes. Modules' texts hold anything: bytes that are no UTF-8 become the replacement
// character.
std::string quoted(std::string_view text);

} // namespace kzb::cli
