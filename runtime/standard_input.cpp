#include "standard_input.h"

#include <cerrno>
#include <fcntl.h>
#include <picturekzb/runtime.h>
#include <unistd.h>

namespace kzb {

namespace {

bool moved = false;
int standard_input = -1;

// Beyond what programs usually hand out by number.
constexpr int first_high_descriptor = 64;

int duplicate_0() noexcept {
    int high = fcntl(0, F_DUPFD_CLOEXEC, first_high_descriptor);
    return high < 0 && errno != EBADF ? fcntl(0, F_DUPFD_CLOEXEC, 3) : high;
}

// Makes descriptor 0 the null device, which child processes inherit. Opened read-only, it cannot be truncated.
void put_null_device() noexcept {
    int null_device = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (null_device < 0) return;
    if (null_device == 0) {
        fcntl(0, F_SETFD, 0);
        return;
    }
    dup2(null_device, 0);
    close(null_device);
}

} // namespace

int move_standard_input() noexcept {
    if (moved) return standard_input;
    moved = true;
    standard_input = duplicate_0();
    put_null_device();
    return standard_input;
}

void guard_descriptor_0() noexcept {
    if (moved && fcntl(0, F_GETFD) < 0 && errno == EBADF) put_null_device();
}

} // namespace kzb

int kzb_standard_input(void) {
    return kzb::move_standard_input();
}
