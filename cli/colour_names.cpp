#include "colour_names.h"

#include "runtime/names.h"

namespace kzb::cli {

namespace {

// The usual names with their usual values.
constexpr ColourName names[] = {
    {"black", 0x000000},   {"white", 0xFFFFFF},     {"gray", 0x808080},      {"silver", 0xC0C0C0},
    {"red", 0xFF0000},     {"green", 0x008000},     {"blue", 0x0000FF},      {"yellow", 0xFFFF00},
    {"cyan", 0x00FFFF},    {"magenta", 0xFF00FF},   {"lime", 0x00FF00},      {"aqua", 0x00FFFF},
    {"fuchsia", 0xFF00FF}, {"maroon", 0x800000},    {"olive", 0x808000},     {"navy", 0x000080},
    {"purple", 0x800080},  {"teal", 0x008080},      {"orange", 0xFFA500},    {"gold", 0xFFD700},
    {"brown", 0xA52A2A},   {"pink", 0xFFC0CB},      {"coral", 0xFF7F50},     {"salmon", 0xFA8072},
    {"crimson", 0xDC143C}, {"indigo", 0x4B0082},    {"violet", 0xEE82EE},    {"orchid", 0xDA70D6},
    {"khaki", 0xF0E68C},   {"beige", 0xF5F5DC},     {"ivory", 0xFFFFF0},     {"linen", 0xFAF0E6},
    {"tan", 0xD2B48C},     {"sienna", 0xA0522D},    {"chocolate", 0xD2691E}, {"turquoise", 0x40E0D0},
    {"skyblue", 0x87CEEB}, {"steelblue", 0x4682B4}, {"darkblue", 0x00008B},  {"darkgreen", 0x006400},
    {"darkred", 0x8B0000}, {"slategray", 0x708090},
};

} // namespace

std::span<const ColourName> colour_names() {
    return names;
}

const ColourName *colour_named(std::string_view name) {
    for (const ColourName &known : names)
        if (same_name(known.name, name)) return &known;
    return nullptr;
}

} // namespace kzb::cli
