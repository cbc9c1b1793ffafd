#include "json_text.h"

#include <cstdio>

namespace kzb::cli {

namespace {

// The bytes of the UTF-8 character that a text begins with; 0: it begins with none.
size_t character_length(std::string_view text) {
    const auto byte = [&](size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u; };
    const unsigned first = byte(0), second = byte(1);
    if (first < 0x80) return 1;
    size_t length = 0;
    unsigned least = 0x80, most = 0xBF; // of the second byte: no long forms, no surrogates, nothing beyond 10FFFF
    if (first >= 0xC2 && first <= 0xDF) length = 2;
    if (first >= 0xE0 && first <= 0xEF) length = 3;
    if (first >= 0xF0 && first <= 0xF4) length = 4;
    if (first == 0xE0) least = 0xA0;
    if (first == 0xED) most = 0x9F;
    if (first == 0xF0) least = 0x90;
    if (first == 0xF4) most = 0x8F;
    if (length == 0 || second < least || second > most) return 0;
    for (size_t i = 2; i < length; ++i)
        if (byte(i) < 0x80 || byte(i) > 0xBF) return 0;
    return length;
}

} // namespace

std::string quoted(std::string_view text) {
    std::string json = "\"";
    while (!text.empty()) {
        const size_t length = character_length(text);
        const char c = text.front();
        if (length == 0) {
            json += "\\ufffd";
        } else if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (static_cast<unsigned char>(c) < ' ' || c == 0x7F) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            json += escape;
        } else {
            json += text.substr(0, length);
        }
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return json + '"';
}

} // namespace kzb::cli
