// The table as text, as Markdown and as JSON.
#pragma once

#include "rows.h"

#include <nlohmann/json.hpp>

namespace kzb::bench {

enum class Style : uint8_t { text, markdown };

std::string heading(Style style);
std::string line_of(const Row &row, Style style);
// What the columns mean.
std::string legend(Style style);

nlohmann::json json_of(const Row &row);

} // namespace kzb::bench
