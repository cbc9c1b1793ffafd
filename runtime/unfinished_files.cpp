#include "unfinished_files.h"

#include <picturekzb/runtime.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace kzb {

namespace {

// A signal handler reads them: no memory is allocated, and a name is complete before `used` says so.
struct Note {
    std::atomic<bool> used;
    char name[4096];
};
static_assert(std::atomic<bool>::is_always_lock_free);

constexpr size_t most_notes = 16;
Note notes[most_notes];

} // namespace

void UnfinishedFile::note(const std::string &name) noexcept {
    for (size_t i = 0; i < most_notes && place_ == 0; ++i) {
        if (notes[i].used || name.size() >= sizeof notes[i].name) continue;
        std::memcpy(notes[i].name, name.c_str(), name.size() + 1);
        notes[i].used = true;
        place_ = i + 1;
    }
}

void UnfinishedFile::forget() noexcept {
    if (place_ > 0) notes[place_ - 1].used = false;
    place_ = 0;
}

} // namespace kzb

void kzb_remove_unfinished_files(void) {
    const int error = errno;
    for (kzb::Note &note : kzb::notes)
        if (note.used) unlink(note.name);
    errno = error;
}
