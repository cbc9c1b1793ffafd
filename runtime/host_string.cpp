#include "host_string.h"

#include "audit.h"
#include "entries.h"
#include "error.h"
#include <cstdlib>
#include <cstring>
#include <new>
#include <picturekzb/runtime.h>

#include "platform/large_pages.h"

namespace kzb {

KZBString string_new(const void *bytes, size_t count, uint32_t encoding) noexcept {
    if (count > PTRDIFF_MAX - 1 || (!bytes && count > 0)) return nullptr;
    char *text = static_cast<char *>(std::malloc(count + 1));
    void *memory = std::calloc(1, sizeof(KZBStringRecord));
    if (!text || !memory || !audit_add(memory, Tracked::string)) {
        std::free(text);
        std::free(memory);
        return nullptr;
    }
    kzb::prefer_large_pages(text, static_cast<int64_t>(count));
    if (count > 0) std::memcpy(text, bytes, count);
    text[count] = 0;
    audit_references(1);
    return new (memory)
        KZBStringRecord{1, text, static_cast<kzb_word>(count), static_cast<kzb_word>(static_cast<uintptr_t>(encoding))};
}

void string_retain(KZBString string, const char *caller) noexcept {
    if (!string || !audit_check(string, Tracked::string, caller)) return;
    ++string->reference_count;
    audit_references(1);
}

void string_release(KZBString string, const char *caller) noexcept {
    if (!string || !audit_check(string, Tracked::string, caller)) return;
    audit_references(-1);
    if (--string->reference_count > 0) return;
    std::free(const_cast<char *>(string->text));
    audit_bury(string, sizeof(KZBStringRecord), "String");
}

void string_to_utf8(KZBString string, char *buffer, size_t size) noexcept {
    KZBString converted = string_convert(string, KZB_ENCODING_UTF8);
    std::string_view text = string_bytes(converted ? converted : string);
    bool raw = !converted || static_cast<uint32_t>(string->encoding) == KZB_ENCODING_UNKNOWN;
    size_t used = 0;
    for (char c : text) {
        if (used + 1 == size) break;
        buffer[used++] = raw && static_cast<unsigned char>(c) >= 0x80 ? '?' : c;
    }
    buffer[used] = 0;
    if (used < text.size()) cut_at_character(buffer);
    string_release(converted, "string_to_utf8");
}

namespace {

KZBString REALBuildString(const void *bytes, int32_t count) {
    return count < 0 ? nullptr : string_new(bytes, static_cast<size_t>(count), KZB_ENCODING_UNKNOWN);
}

void REALUnlockString(KZBString string) {
    string_release(string, "REALUnlockString");
}

void REALSetStringEncoding(KZBString string, uint32_t encoding) {
    if (string && audit_check(string, Tracked::string, "REALSetStringEncoding"))
        string->encoding = static_cast<kzb_word>(static_cast<uintptr_t>(encoding));
}

KZBString REALConvertString(KZBString string, uint32_t encoding) {
    return string && audit_check(string, Tracked::string, "REALConvertString") ? string_convert(string, encoding)
                                                                               : nullptr;
}

const HostEntry list[] = {KZB_HOST_ENTRY(REALBuildString), KZB_HOST_ENTRY(REALUnlockString),
                          KZB_HOST_ENTRY(REALSetStringEncoding), KZB_HOST_ENTRY(REALConvertString)};
const Contribution contribution(list);

} // namespace

} // namespace kzb

KZBString kzb_string_new(const void *bytes, size_t count, uint32_t encoding) {
    return kzb::string_new(bytes, count, encoding);
}
