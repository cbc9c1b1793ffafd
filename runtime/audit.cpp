#include "audit.h"

#include "names.h"
#include "object.h"
#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <picturekzb/runtime.h>
#include <unordered_map>

namespace kzb {

namespace {

using Living = std::unordered_map<const void *, Tracked>;

// Never destroyed: modules may release objects while the process ends.
Living &living() {
    static Living &all = *new Living;
    return all;
}

struct Grave {
    unsigned char *record;
    size_t size;
    char class_name[40];
};

constexpr unsigned char pattern = 0xDD;
constexpr size_t most_graves = 4096;
constexpr size_t most_buried_bytes = size_t{8} << 20;

std::array<Grave, most_graves> graves; // a ring: `count` of them, the oldest at `oldest`
size_t oldest = 0, count = 0, buried_bytes = 0;

ptrdiff_t references = 0;

kzb_misuse_handler *handler = nullptr;
void *handler_context = nullptr;

Grave &grave(size_t age) {
    return graves[(oldest + age) % most_graves];
}

void inspect(Grave &g) noexcept {
    if (std::all_of(g.record, g.record + g.size, [](unsigned char byte) { return byte == pattern; })) return;
    std::memset(g.record, pattern, g.size);
    misuse("a released %s was written to", g.class_name);
}

void open_oldest_grave() noexcept {
    Grave g = grave(0);
    oldest = (oldest + 1) % most_graves;
    --count;
    buried_bytes -= g.size;
    inspect(g);
    std::free(g.record);
}

} // namespace

bool audit_add(void *record, Tracked kind) noexcept {
    try {
        living().emplace(record, kind);
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

bool audit_is_alive(const void *record, Tracked kind) noexcept {
    auto found = living().find(record);
    return found != living().end() && found->second == kind;
}

bool audit_check(const void *record, Tracked kind, const char *caller) noexcept {
    auto found = living().find(record);
    if (found != living().end() && found->second == kind) return true;
    if (found != living().end()) {
        misuse(kind == Tracked::object ? "%s was given a string, but needs an object"
                                       : "%s was given an object, but needs a string",
               caller);
        return false;
    }
    for (size_t age = count; age-- > 0;)
        if (grave(age).record == record) {
            misuse("%s was given a released %s", caller, grave(age).class_name);
            return false;
        }
    misuse("%s was given %p, which is no %s", caller, record, kind == Tracked::object ? "object" : "string");
    return false;
}

void audit_bury(void *record, size_t size, const char *class_name) noexcept {
    living().erase(record);
    std::memset(record, pattern, size);
    while (count > 0 && (count == most_graves || buried_bytes + size > most_buried_bytes)) open_oldest_grave();
    Grave &g = grave(count);
    g.record = static_cast<unsigned char *>(record);
    g.size = size;
    std::snprintf(g.class_name, sizeof g.class_name, "%s", class_name);
    ++count;
    buried_bytes += size;
}

void audit_graves() noexcept {
    for (size_t age = 0; age < count; ++age) inspect(grave(age));
}

size_t live_objects(const ObjectClass &type) noexcept {
    return static_cast<size_t>(std::count_if(living().begin(), living().end(), [&](const Living::value_type &entry) {
        return entry.second == Tracked::object && static_cast<const KZBObjectRecord *>(entry.first)->type == &type;
    }));
}

void audit_references(ptrdiff_t change) noexcept {
    references += change;
}

void misuse(const char *format, ...) noexcept {
    char line[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    if (handler) {
        handler(line, handler_context);
        return;
    }
    std::fprintf(stderr, "kzbruntime: %s\n", line);
    std::abort();
}

} // namespace kzb

using namespace kzb;

size_t kzb_live_count(const char *class_name) {
    if (!class_name) return living().size();
    bool strings = same_name(class_name, "String");
    return static_cast<size_t>(std::count_if(living().begin(), living().end(), [&](const Living::value_type &entry) {
        if (entry.second == Tracked::string) return strings;
        return same_name(static_cast<const KZBObjectRecord *>(entry.first)->type->name, class_name);
    }));
}

size_t kzb_live_references(void) {
    return static_cast<size_t>(references);
}

void kzb_on_misuse(kzb_misuse_handler *new_handler, void *context) {
    handler = new_handler;
    handler_context = context;
}
