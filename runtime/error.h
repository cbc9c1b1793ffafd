// How failures are told.
#ifndef KZB_RUNTIME_ERROR_H
#define KZB_RUNTIME_ERROR_H

#include <new>
#include <picturekzb/runtime.h>

namespace kzb {

// Fills in an error (nil: nothing happens) and returns false. The sentence is formatted as by printf, its control
// characters become spaces, and it is cut at a character when it is too long.
[[gnu::format(printf, 3, 4)]] bool fail(kzb_error *error, kzb_status status, const char *format, ...) noexcept;

// Takes the incomplete UTF-8 character off the end of a text that was cut.
void cut_at_character(char *text) noexcept;

// Runs the body of an interface function: lack of memory becomes KZB_ERROR_MEMORY and the result `failed`.
template <class Result, class Body> Result guarded(kzb_error *error, Result failed, Body body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc &) {
        fail(error, KZB_ERROR_MEMORY, "out of memory");
        return failed;
    }
}

} // namespace kzb

#endif
