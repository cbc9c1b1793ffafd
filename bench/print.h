// The table of operations beside peers, as text, Markdown and JSON.
#pragma once

#include "rows.h"
#include "table.h"

#include <nlohmann/json.hpp>

namespace kzb::bench {

Table row_table(Style style);
std::string line_of(const Row &row, const Table &table);
// What the columns mean.
std::string legend(Style style);

nlohmann::json json_of(const Row &row);

} // namespace kzb::bench
