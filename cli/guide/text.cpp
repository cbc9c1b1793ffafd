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

std::string wrapped(std::string_view text, size_t indent) {
    std::string lines;
    std::string line(indent, ' ');
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        if (line.size() > indent && line.size() + 1 + word.size() > line_width) {
            lines += line + "\n";
            line.assign(indent, ' ');
        }
        if (line.size() > indent) line += ' ';
        line += word;
        text.remove_prefix(std::min(text.size(), word.size() + 1));
    }
    return lines + line + "\n";
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
