#include "entries.h"

#include "names.h"
#include <cstring>

namespace kzb {

namespace {

// Constant-initialised, and so ready before any Contribution is made.
constinit const Contribution *first = nullptr;

} // namespace

Contribution::Contribution(std::span<const HostEntry> host_entries,
                           std::span<const ObjectClass *const> host_classes) noexcept
    : entries(host_entries), classes(host_classes), next(first) {
    first = this;
}

void *host_entry(const char *name) noexcept {
    if (!name) return nullptr;
    for (const Contribution *c = first; c; c = c->next)
        for (const HostEntry &entry : c->entries)
            if (std::strcmp(entry.name, name) == 0) return entry.function;
    return nullptr;
}

const ObjectClass *host_class(const char *name) noexcept {
    if (!name) return nullptr;
    for (const Contribution *c = first; c; c = c->next)
        for (const ObjectClass *type : c->classes)
            if (same_name(type->name, name)) return type;
    return nullptr;
}

} // namespace kzb
