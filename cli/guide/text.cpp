#include "text.h"

#include <algorithm>

namespace kzb::cli::guide {

namespace {

constexpr size_t line_width = 100;

} // namespace

std::string padded(std::string text, size_t width) {
    text.resize(std::max(width, text.size() + 1), ' ');
    return text;
}

std::string wrapped(std::string_view text, size_t first, size_t rest) {
    std::string lines;
    std::string line(first, ' ');
    size_t begin = first; // of the line's own text
    while (!text.empty()) {
        const size_t blanks = std::min(text.find_first_not_of(' '), text.size());
        const size_t end = std::min(text.find(' ', blanks), text.size());
        if (line.size() > begin && line.size() + end > line_width) {
            lines += line + "\n";
            begin = rest;
            line.assign(rest, ' ');
            text.remove_prefix(blanks);
            continue;
        }
        line += text.substr(0, end);
        text.remove_prefix(end);
    }
    return lines + line + "\n";
}

std::string wrapped(std::string_view text, size_t indent) {
    return wrapped(text, indent, indent);
}

char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string lower(std::string_view text) {
    std::string result;
    for (const char letter : text) result += lower(letter);
    return result;
}

bool can_be_step(const Method &method) {
    return std::any_of(method.forms.begin(), method.forms.end(),
                       [](const Form &form) { return form.obstacle().empty(); });
}

} // namespace kzb::cli::guide
