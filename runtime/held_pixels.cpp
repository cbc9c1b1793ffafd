#include "held_pixels.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace kzb {

int open_nameless_file(const std::string &folder) {
    const int descriptor = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor >= 0 || (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL)) return descriptor;
    // The file system knows no such files.
    std::string name = folder + "/.kzb-XXXXXX";
    const int named = mkostemp(name.data(), O_CLOEXEC);
    if (named >= 0) unlink(name.c_str());
    return named;
}

HeldPixels::~HeldPixels() {
    if (bytes_) munmap(bytes_, count_);
}

bool HeldPixels::hold(size_t count, const std::string &folder) {
    int descriptor = -1, flags = MAP_PRIVATE | MAP_ANONYMOUS;
    if (!folder.empty()) {
        descriptor = open_nameless_file(folder);
        if (descriptor < 0) return false;
        // Space is reserved so that a full disk is found here and not when a page is written.
        if (ftruncate(descriptor, static_cast<off_t>(count)) != 0 ||
            (fallocate(descriptor, 0, 0, static_cast<off_t>(count)) != 0 && errno != EOPNOTSUPP)) {
            const int error = errno;
            close(descriptor);
            errno = error;
            return false;
        }
        flags = MAP_SHARED;
    }
    void *mapped = mmap(nullptr, count, PROT_READ | PROT_WRITE, flags, descriptor, 0);
    if (descriptor >= 0) close(descriptor);
    if (mapped == MAP_FAILED) return false;
    bytes_ = static_cast<uint8_t *>(mapped);
    count_ = count;
    return true;
}

} // namespace kzb
