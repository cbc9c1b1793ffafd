#include "argument_text.h"

#include "colour_names.h"
#include "runtime/names.h"

#include <algorithm>
#include <charconv>

namespace kzb::cli {

namespace {

template <class Number, class... Base> std::optional<Number> whole_text(std::string_view text, Base... base) {
    Number number = {};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base...);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

Value value_of(kzb_kind kind, int64_t integer) {
    kzb_value value = {};
    value.kind = kind;
    value.integer = integer;
    return Value(value);
}

bool has_prefix(std::string_view text, std::string_view prefix) {
    return same_name(text.substr(0, prefix.size()), prefix);
}

// The library takes no plus sign.
std::string_view without_plus(std::string_view text) {
    return text.starts_with('+') && !text.starts_with("+-") ? text.substr(1) : text;
}

// A decimal number or, as in the host's language, the 32 bits of a hexadecimal one.
std::optional<int64_t> read_integer(std::string_view text) {
    if (has_prefix(text, "&h")) {
        const auto bits = whole_text<uint32_t>(text.substr(2), 16);
        if (!bits) return std::nullopt;
        return static_cast<int32_t>(*bits);
    }
    return whole_text<int64_t>(without_plus(text));
}

std::optional<Value> read_double(std::string_view text) {
    // The library also knows "inf" and "nan", which are no numbers here.
    if (text.find_first_not_of("+-.0123456789eE") != text.npos) return std::nullopt;
    const auto number = whole_text<double>(without_plus(text));
    if (!number) return std::nullopt;
    kzb_value value = {};
    value.kind = KZB_DOUBLE;
    value.number = *number;
    return Value(value);
}

std::optional<Value> read_color(std::string_view text) {
    if (const ColourName *named = colour_named(text)) return value_of(KZB_COLOR, named->colour);
    if (text.size() != 7 || text[0] != '#') return std::nullopt;
    const auto color = whole_text<uint32_t>(text.substr(1), 16);
    if (!color) return std::nullopt;
    return value_of(KZB_COLOR, *color);
}

std::string_view trimmed(std::string_view text) {
    while (text.starts_with(' ')) text.remove_prefix(1);
    while (text.ends_with(' ')) text.remove_suffix(1);
    return text;
}

Value read_array(std::string_view text) {
    const std::string whole(text);
    if (!text.ends_with(']')) fail(Exit::usage, "the array " + whole + " lacks its ']'");
    text = trimmed(text.substr(1, text.size() - 2));
    std::vector<int32_t> numbers;
    while (!text.empty()) {
        const size_t comma = text.find(',');
        const std::string_view item = trimmed(text.substr(0, comma));
        const auto number = read_integer(item);
        if (!number || *number < INT32_MIN || *number > INT32_MAX)
            fail(Exit::usage, "the array " + whole + " has '" + std::string(item) +
                                  "' where a whole number is expected; write it as [1,2,3]");
        numbers.push_back(static_cast<int32_t>(*number));
        if (comma == text.npos) break;
        text.remove_prefix(comma + 1);
        if (text.empty()) fail(Exit::usage, "the array " + whole + " ends with a comma; write it as [1,2,3]");
    }
    kzb_value value = {};
    value.kind = KZB_ARRAY;
    value.array = kzb_array_new(numbers.data(), numbers.size());
    if (value.array == nullptr) throw std::bad_alloc();
    return Value(value);
}

[[noreturn]] void tell_no_value(const std::string &text, const Catalogue &catalogue) {
    if (is_name(text)) {
        Suggestion suggestion(text);
        for (const Constant &constant : catalogue.constants()) suggestion.consider(constant.name.c_str());
        for (const ColourName &colour : colour_names()) suggestion.consider(colour.name);
        fail(Exit::usage, "'" + text + "' is neither a number nor a constant nor a colour" + suggestion.hint());
    }
    if (text.starts_with(":") || text.ends_with(":"))
        fail(Exit::usage, "'" + text + "' is no value; a ':' that begins a step stands alone, between spaces");
    fail(Exit::usage, "'" + text +
                          "' is no value; write a number, true, false, nil, a colour (#RRGGBB), an array ([1,2,3]), "
                          "@name or the name of a constant");
}

Value read_value(const std::string &text, const Catalogue &catalogue) {
    if (same_name(text, "nil")) return Value();
    if (same_name(text, "true") || same_name(text, "false")) return value_of(KZB_BOOLEAN, same_name(text, "true"));
    if (text.starts_with('[')) return read_array(text);
    if (auto color = read_color(text)) return *color;
    if (auto integer = read_integer(text)) return value_of(KZB_INTEGER, *integer);
    if (auto number = read_double(text)) return *number;
    if (const Constant *constant = catalogue.constant(text)) return value_of(KZB_INTEGER, constant->value);
    tell_no_value(text, catalogue);
}

} // namespace

WrittenArgument read_argument(const std::string &word, const Catalogue &catalogue) {
    WrittenArgument argument;
    const size_t sign = word.find('=');
    const bool named = sign != word.npos && is_name(std::string_view(word).substr(0, sign));
    if (named) argument.name = word.substr(0, sign);
    argument.text = named ? word.substr(sign + 1) : word;
    if (named && argument.text.empty())
        fail(Exit::usage, "the argument " + argument.name + " has no value; write " + argument.name + "=value");
    if (argument.text.starts_with('@')) {
        argument.reference = argument.text.substr(1);
        if (!is_name(argument.reference)) argument.problem = "'" + argument.text + "' is no name of a kept picture";
        return argument;
    }
    try {
        argument.value = read_value(argument.text, catalogue);
        if (const Constant *constant = catalogue.constant(argument.text)) argument.constant = constant->name;
    } catch (const Failure &failure) {
        argument.problem = failure.message;
    }
    return argument;
}

std::vector<std::string> join_arrays(const std::vector<std::string> &words) {
    std::vector<std::string> joined;
    bool open = false;
    for (const std::string &word : words) {
        if (open)
            joined.back() += " " + word;
        else
            joined.push_back(word);
        const std::string &last = joined.back();
        open = std::count(last.begin(), last.end(), '[') > std::count(last.begin(), last.end(), ']');
    }
    return joined;
}

bool fits(const kzb_value &value, kzb_type type) {
    const bool integer = value.kind == KZB_INTEGER;
    switch (type) {
    case KZB_TYPE_INTEGER:
        return integer && value.integer >= INT32_MIN && value.integer <= INT32_MAX;
    case KZB_TYPE_INT64:
        return integer;
    case KZB_TYPE_DOUBLE:
        return integer || value.kind == KZB_DOUBLE;
    case KZB_TYPE_BOOLEAN:
        return value.kind == KZB_BOOLEAN || (integer && (value.integer & ~INT64_C(1)) == 0);
    case KZB_TYPE_COLOR:
        return (integer || value.kind == KZB_COLOR) && value.integer >= 0 && value.integer <= 0xFFFFFF;
    case KZB_TYPE_INTEGER_ARRAY:
        return value.kind == KZB_ARRAY || value.kind == KZB_NIL;
    case KZB_TYPE_OBJECT:
        return value.kind == KZB_NIL;
    case KZB_TYPE_STRING:
    case KZB_TYPE_NONE:
        break;
    }
    return false;
}

std::string describe(kzb_type type) {
    switch (type) {
    case KZB_TYPE_INTEGER:
        return "a whole number from -2147483648 to 2147483647";
    case KZB_TYPE_INT64:
        return "a whole number";
    case KZB_TYPE_DOUBLE:
        return "a number";
    case KZB_TYPE_BOOLEAN:
        return "true or false";
    case KZB_TYPE_COLOR:
        return "a colour, #RRGGBB, &hRRGGBB or a name";
    case KZB_TYPE_INTEGER_ARRAY:
        return "an array of whole numbers, [1,2,3]";
    case KZB_TYPE_OBJECT:
        return "nil";
    case KZB_TYPE_STRING:
        return "a text";
    case KZB_TYPE_NONE:
        break;
    }
    return "nothing";
}

} // namespace kzb::cli
