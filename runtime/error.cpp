#include "error.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace kzb {

void cut_at_character(char *text) noexcept {
    size_t end = std::strlen(text), start = end;
    auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    while (start > 0 && end - start < 3 && (byte(start - 1) & 0xC0) == 0x80) --start;
    if (start == 0 || byte(start - 1) < 0xC0) return;
    unsigned char lead = byte(--start);
    size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (end - start < length) text[start] = 0;
}

bool fail(kzb_error *error, kzb_status status, const char *format, ...) noexcept {
    if (!error) return false;
    error->status = status;
    error->exception[0] = 0;
    va_list arguments;
    va_start(arguments, format);
    int length = std::vsnprintf(error->message, sizeof error->message, format, arguments);
    va_end(arguments);
    if (length < 0) error->message[0] = 0;
    if (length >= static_cast<int>(sizeof error->message)) cut_at_character(error->message);
    for (char *c = error->message; *c; ++c)
        if (static_cast<unsigned char>(*c) < ' ') *c = ' ';
    return false;
}

} // namespace kzb
