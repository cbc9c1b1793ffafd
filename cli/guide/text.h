// Text as the guide lays it out.
#pragma once

#include "cli/catalogue.h"

namespace kzb::cli::guide {

// The text and spaces up to the width, at least one.
std::string padded(std::string text, size_t width);

// Words in lines of a bearable length, each begun with `indent` spaces, or the first and the rest with different ones.
std::string wrapped(std::string_view text, size_t indent);
std::string wrapped(std::string_view text, size_t first, size_t rest);

char lower(char letter);
std::string lower(std::string_view text);

// Whether one of the method's forms can be a step of a chain.
bool can_be_step(const Method &method);

} // namespace kzb::cli::guide
