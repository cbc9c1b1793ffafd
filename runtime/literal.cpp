#include "declaration.h"

#include "host_string.h"
#include "names.h"
#include <charconv>
#include <new>

namespace kzb {

namespace {

bool starts_with(std::string_view text, std::string_view prefix) noexcept {
    return text.size() >= prefix.size() && same_name(text.substr(0, prefix.size()), prefix);
}

bool parse_hexadecimal(std::string_view digits, int64_t &number) noexcept {
    uint64_t bits = 0;
    auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), bits, 16);
    if (error != std::errc() || end != digits.data() + digits.size()) return false;
    number = digits.size() <= 8 ? static_cast<int32_t>(static_cast<uint32_t>(bits)) : static_cast<int64_t>(bits);
    return true;
}

template <class Number> bool parse_whole(std::string_view text, Number &number) noexcept {
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

bool parse_number(std::string_view text, kzb_value &value) noexcept {
    // The library also knows "inf" and "nan", which the language does not.
    if (text.find_first_not_of("+-.0123456789eE") != std::string_view::npos) return false;
    if (starts_with(text, "+")) text.remove_prefix(1);
    value.kind = KZB_INTEGER;
    if (parse_whole(text, value.integer)) return true;
    value.kind = KZB_DOUBLE;
    return parse_whole(text, value.number);
}

// The text between quotes, in which a quote is written twice.
bool parse_quoted(std::string_view text, kzb_value &value) noexcept {
    try {
        std::string content;
        for (size_t i = 1; i < text.size(); ++i) {
            if (text[i] == '"' && i + 1 == text.size()) {
                value.kind = KZB_STRING;
                value.string = string_new(content.data(), content.size(), KZB_ENCODING_UTF8);
                return value.string;
            }
            if (text[i] == '"' && text[++i] != '"') return false;
            content += text[i];
        }
    } catch (const std::bad_alloc &) {
    }
    return false;
}

std::string_view trimmed(std::string_view text) noexcept {
    while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
    return text;
}

} // namespace

bool parse_literal(std::string_view text, kzb_value &value) noexcept {
    value = {};
    text = trimmed(text);
    if (text.empty()) return false;
    if (same_name(text, "nil")) return true;
    if (same_name(text, "true") || same_name(text, "false")) {
        value.kind = KZB_BOOLEAN;
        value.integer = same_name(text, "true");
        return true;
    }
    if (text.front() == '"') return parse_quoted(text, value);
    if (starts_with(text, "&h")) {
        value.kind = KZB_INTEGER;
        return parse_hexadecimal(text.substr(2), value.integer);
    }
    if (starts_with(text, "&c")) {
        value.kind = KZB_COLOR;
        return text.size() == 8 && parse_hexadecimal(text.substr(2), value.integer);
    }
    return parse_number(text, value);
}

bool parse_constant(std::string_view text, std::string &name, int64_t &value) {
    size_t sign = text.find('=');
    if (sign == std::string_view::npos) return false;
    std::string_view left = trimmed(text.substr(0, sign));
    kzb_value literal;
    if (!is_name(left) || !parse_literal(text.substr(sign + 1), literal)) return false;
    bool integer = literal.kind == KZB_INTEGER;
    value = literal.integer;
    kzb_release(&literal);
    name = left;
    return integer;
}

} // namespace kzb
