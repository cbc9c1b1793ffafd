// Tables of text: aligned for reading, or Markdown.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kzb::bench {

enum class Style : uint8_t { text, markdown };

// Aligned left where `width` is negative.
struct Column {
    const char *name;
    int width;
};

class Table {
public:
    Table(std::vector<Column> columns, Style style) : columns_(std::move(columns)), style_(style) {}
    std::string heading() const;
    // Cells that are missing at the end stay empty.
    std::string line(std::vector<std::string> cells) const;
    Style style() const { return style_; }

private:
    std::vector<Column> columns_;
    Style style_;
};

// With `digits` places, fewer from 10 on.
std::string number(double value, int digits = 3);

// A line of explanation below a table.
std::string note(const std::string &text, Style style);

} // namespace kzb::bench
