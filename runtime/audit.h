// Which references are alive, and what happens when one is used that is not.
//
// A released record is kept for a while, filled with a pattern, so that its address is not given out again at once: a
// module that still uses the reference is then told from one that uses a newer object at the same place, and one that
// writes there is found out when the record is let go.
#ifndef KZB_RUNTIME_AUDIT_H
#define KZB_RUNTIME_AUDIT_H

#include <cstddef>
#include <cstdint>

namespace kzb {

struct ObjectClass;

enum class Tracked : uint8_t { object, string };

// Notes a new record; false when out of memory.
bool audit_add(void *record, Tracked kind) noexcept;

// Whether the record is alive.
bool audit_is_alive(const void *record, Tracked kind) noexcept;

// The same; if it is not, reports that `caller` uses it.
bool audit_check(const void *record, Tracked kind, const char *caller) noexcept;

// Takes over a record of `size` bytes, got from malloc or aligned_alloc, which is gone from now on.
void audit_bury(void *record, size_t size, const char *class_name) noexcept;

// Reports records that were written to after their release.
void audit_graves() noexcept;

// How many objects of a class are alive.
size_t live_objects(const ObjectClass &type) noexcept;

// Keeps count of the references in all.
void audit_references(ptrdiff_t change) noexcept;

// Reports a misuse as one line: to the handler if there is one, otherwise to stderr, and then aborts.
[[gnu::format(printf, 1, 2)]] void misuse(const char *format, ...) noexcept;

} // namespace kzb

#endif
