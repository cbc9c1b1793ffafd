#include "table.h"

#include <algorithm>
#include <cstdio>

namespace kzb::bench {

namespace {

std::string padded(const std::string &text, int width) {
    const size_t wanted = static_cast<size_t>(width < 0 ? -width : width);
    if (text.size() >= wanted) return text;
    const std::string space(wanted - text.size(), ' ');
    return width < 0 ? text + space : space + text;
}

} // namespace

std::string Table::heading() const {
    std::vector<std::string> names;
    for (const Column &column : columns_) names.push_back(column.name);
    std::string text = line(names);
    if (style_ == Style::markdown) {
        text += "\n|";
        for (const Column &column : columns_) text += column.width < 0 ? "---|" : "---:|";
    }
    return text;
}

std::string Table::line(std::vector<std::string> cells) const {
    cells.resize(std::max(cells.size(), columns_.size()));
    std::string text = style_ == Style::markdown ? "|" : "";
    for (size_t i = 0; i < cells.size(); ++i) {
        if (style_ == Style::markdown)
            text += " " + cells[i] + " |";
        else
            text += (i == 0 ? "" : "  ") + padded(cells[i], i < columns_.size() ? columns_[i].width : 0);
    }
    while (text.ends_with(' ')) text.pop_back();
    return text;
}

std::string number(double value, int digits) {
    char text[400];
    std::snprintf(text, sizeof text, "%.*f", value >= 100 ? 1 : value >= 10 ? std::min(digits, 2) : digits, value);
    return text;
}

std::string note(const std::string &text, Style style) {
    return (style == Style::markdown ? "- " : "  ") + text + "\n";
}

} // namespace kzb::bench
