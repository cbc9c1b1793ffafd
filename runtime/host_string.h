// Counted strings. Their record is public; nil is the empty string.
#ifndef KZB_RUNTIME_HOST_STRING_H
#define KZB_RUNTIME_HOST_STRING_H

#include <cstddef>
#include <cstdint>
#include <picturekzb/host_interface.h>
#include <string_view>

namespace kzb {

// A new string holding a copy of the bytes, with one reference; nil when out of memory.
KZBString string_new(const void *bytes, size_t count, uint32_t encoding) noexcept;

void string_retain(KZBString string, const char *caller) noexcept;
void string_release(KZBString string, const char *caller) noexcept;

// A new string with the same text in another encoding; nil when its bytes are not text of its own encoding, when the
// other encoding cannot hold the text or is not known here, or when out of memory. Raw bytes stay as they are, both
// ways. UTF-16 and UTF-32 are in native byte order unless a byte order mark, which is dropped, says otherwise.
KZBString string_convert(KZBString string, uint32_t encoding) noexcept;

// Writes the text as UTF-8 to `buffer`, cut at a character when longer than size - 1 bytes, and ends it with a NUL.
// Text that cannot be converted is copied with '?' for every byte beyond ASCII.
void string_to_utf8(KZBString string, char *buffer, size_t size) noexcept;

inline std::string_view string_bytes(KZBString string) noexcept {
    return string ? std::string_view(string->text, static_cast<size_t>(string->length)) : std::string_view();
}

} // namespace kzb

#endif
