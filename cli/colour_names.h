// Colours by name.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace kzb::cli {

struct ColourName {
    const char *name;
    uint32_t colour; // 0x00RRGGBB
};

std::span<const ColourName> colour_names();

// Nil: there is no such colour.
const ColourName *colour_named(std::string_view name);

} // namespace kzb::cli
