// The host's entry points, each behind a function that counts its calls and fails where a test says so. The test
// program gives the module these from the start.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kzb::test {

// All entry points that the interface publishes for a module's calls after start-up.
size_t entry_point_count();
const char *entry_point_name(size_t index);
size_t entry_point_index(const char *name);

// Whether a call can fail without the host being wrong. REALLockObject and unlockPictureDescription give nothing back:
// that one did nothing cannot be known, and the host would later find references dropped that were never added, and
// pictures that go away locked. Their absence, which can be known, is tried.
bool can_fail(size_t index);

// How often the module has called it.
uint64_t calls_of_entry_point(size_t index);

// One call, or all from one on, of an entry point fail while this lives: they give nil, false or 0 (RuntimeUBound -1)
// and do nothing. What the module asked to release in such a call is released at the end, so that the references must
// be where they were; an exception that the host does not raise is the host's to drop.
class EntryPointFault {
public:
    EntryPointFault(size_t index, uint64_t first, bool all_later = false);
    ~EntryPointFault();
    EntryPointFault(const EntryPointFault &) = delete;
    EntryPointFault &operator=(const EntryPointFault &) = delete;

    bool reached() const;
};

// A resolver that hides one entry point from modules that are loaded from now on; nil: hides none.
void hide_entry_point(const char *name);

// How often a module has asked for the hidden one.
uint64_t asked_for_hidden();

} // namespace kzb::test
