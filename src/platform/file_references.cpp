#include "platform/file_references.h"

#include <cstring>

namespace kzb {

namespace {

// At most three bytes of UTF-8 for one UTF-16 unit.
constexpr size_t longest_name = 3 * sizeof(HFSUniStr255::unicode) / sizeof(uint16_t);

// Writes one code point as UTF-8 and gives the end of what it wrote.
char *put_utf8(char *at, uint32_t code) {
    if (code < 0x80) {
        *at++ = static_cast<char>(code);
        return at;
    }
    const int continuation = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    *at++ = static_cast<char>((0xFF00 >> (continuation + 1) & 0xFF) | code >> 6 * continuation);
    for (int shift = 6 * (continuation - 1); shift >= 0; shift -= 6)
        *at++ = static_cast<char>(0x80 | (code >> shift & 0x3F));
    return at;
}

// The name as UTF-8 with a NUL; false when it is not well-formed UTF-16.
bool utf8_name(const HFSUniStr255 &name, char (&text)[longest_name + 1]) {
    if (name.length > sizeof name.unicode / sizeof *name.unicode) return false;
    char *at = text;
    for (uint16_t i = 0; i < name.length; ++i) {
        uint32_t code = name.unicode[i];
        if (code >= 0xD800 && code < 0xE000) {
            const uint32_t low = code < 0xDC00 && i + 1 < name.length ? name.unicode[i + 1] : 0;
            if (low < 0xDC00 || low >= 0xE000) return false;
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
            ++i;
        }
        at = put_utf8(at, code);
    }
    *at = '\0';
    return true;
}

Buffer<char> joined_path(const char *folder, size_t longest_folder, const char *name) {
    const size_t folder_length = strnlen(folder, longest_folder);
    if (folder_length == 0) return {};
    Buffer<char> path(static_cast<int64_t>(folder_length + 1 + std::strlen(name) + 1));
    if (!path) return path;
    std::memcpy(path.get(), folder, folder_length);
    char *end = path.get() + folder_length;
    if (*name != '\0' && end[-1] != '/') *end++ = '/';
    std::strcpy(end, name);
    return path;
}

} // namespace

FileLocation location_of(const FSRef &reference) {
    return joined_path(reference.path, sizeof reference.path, "");
}

FileLocation location_in(const FSRef &parent, const HFSUniStr255 &name) {
    char text[longest_name + 1] = "";
    if (!utf8_name(name, text)) text[0] = '\0';
    return joined_path(parent.path, sizeof parent.path, text);
}

FileLocation location_of(const FSSpec &older_reference) {
    return joined_path(older_reference.path, sizeof older_reference.path, "");
}

Buffer<char> path_of(FileLocation location) { return location; }

} // namespace kzb
