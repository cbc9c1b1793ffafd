// Tables that look at the module alone: single calls, picture sizes, files, instruction sets.
#pragma once

#include "case.h"
#include "table.h"

#include <nlohmann/json.hpp>

#include <regex>
#include <string>
#include <vector>

namespace kzb::bench {

// What all sections need. Names of their rows begin with the section's name: calls/Invert.
struct Section {
    const std::vector<Case> &cases;
    const std::regex &filter;
    int rounds;
    Style style;

    bool wants(const std::string &name) const { return std::regex_search(name, filter); }
};

// Each prints its table when the filter wants a row of it, and gives its rows.
nlohmann::json calls_section(const Section &section);
nlohmann::json sizes_section(const Section &section);
nlohmann::json files_section(const Section &section);
nlohmann::json levels_section(const Section &section, const std::string &program, const std::string &filter);

std::vector<std::string> section_names(const std::vector<Case> &cases);

// In a process of its own: the least nanoseconds per pixel at the level that KZB_ISA names, as JSON on standard output.
int time_level(const Section &section);

} // namespace kzb::bench
