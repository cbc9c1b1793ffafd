#include "names.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace kzb {

namespace {

char lower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr size_t longest_compared = 64;

// How many letters must be inserted, deleted or changed to make one name of the other.
size_t edit_distance(std::string_view a, std::string_view b) noexcept {
    std::array<size_t, longest_compared + 1> row;
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i + 1;
        for (size_t j = 0; j < b.size(); ++j) {
            size_t change = diagonal + (lower(a[i]) != lower(b[j]));
            diagonal = row[j + 1];
            row[j + 1] = std::min({change, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row[b.size()];
}

} // namespace

bool is_name(std::string_view text) noexcept {
    auto is_letter = [](char c) { return (lower(c) >= 'a' && lower(c) <= 'z') || c == '_'; };
    return !text.empty() && is_letter(text.front()) &&
           std::all_of(text.begin(), text.end(), [&](char c) { return is_letter(c) || (c >= '0' && c <= '9'); });
}

bool same_name(std::string_view a, std::string_view b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

uint32_t name_key(std::string_view name) noexcept {
    constexpr uint32_t start = 2166136261, factor = 16777619;
    return std::accumulate(name.begin(), name.end(), start,
                           [](uint32_t key, char c) { return (key ^ static_cast<unsigned char>(lower(c))) * factor; });
}

bool same_declaration(std::string_view a, std::string_view b) noexcept {
    size_t i = 0, j = 0;
    for (;;) {
        while (i < a.size() && is_space(a[i])) ++i;
        while (j < b.size() && is_space(b[j])) ++j;
        if (i == a.size() || j == b.size()) return i == a.size() && j == b.size();
        if (lower(a[i++]) != lower(b[j++])) return false;
    }
}

std::string Suggestion::hint() const {
    return nearest ? "; did you mean " + std::string(nearest) + "?" : "";
}

void Suggestion::consider(const char *candidate) noexcept {
    std::string_view name(candidate);
    if (name.size() > longest_compared || wanted.size() > longest_compared) return;
    size_t distance = edit_distance(wanted, name);
    if (distance * 3 > name.size() || (nearest && distance >= least)) return;
    nearest = candidate;
    least = distance;
}

} // namespace kzb
