// The host entry points and host classes. Every source file that implements some contributes its own list, as in
//
//     const HostEntry list[] = {KZB_HOST_ENTRY(newPicture), KZB_HOST_ENTRY(REALGetPictureMask)};
//     const ObjectClass *const classes[] = {&picture_class};
//     const Contribution contribution(list, classes);
#ifndef KZB_RUNTIME_ENTRIES_H
#define KZB_RUNTIME_ENTRIES_H

#include "object.h"

namespace kzb {

struct HostEntry {
    const char *name; // as published
    void *function;
};

// Checks the function against the type that the interface header states for the entry point.
#define KZB_HOST_ENTRY(name)                                                                                           \
    ::kzb::HostEntry {                                                                                                 \
#name, reinterpret_cast < void *>(static_cast <name##Function *>(&name))                                       \
    }

// An object of static storage that adds its lists, which must live as long, to what the host offers.
class Contribution {
public:
    explicit Contribution(std::span<const HostEntry> host_entries,
                          std::span<const ObjectClass *const> host_classes = {}) noexcept;
    Contribution(const Contribution &) = delete;
    Contribution &operator=(const Contribution &) = delete;

    const std::span<const HostEntry> entries;
    const std::span<const ObjectClass *const> classes;
    const Contribution *const next;
};

// The address of an entry point, or nil. Published names are exact.
void *host_entry(const char *name) noexcept;

// A host class by name, without regard to case; nil: none.
const ObjectClass *host_class(const char *name) noexcept;

} // namespace kzb

#endif
