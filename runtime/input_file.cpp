#include "input_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kzb {

namespace {

constexpr size_t kBufferBytes = 1 << 16;

} // namespace

InputFile::InputFile(const char *path)
    : buffer(new uint8_t[kBufferBytes]), descriptor(open(path, O_RDONLY | O_CLOEXEC)) {
    struct stat status;
    if (descriptor < 0 || fstat(descriptor, &status) != 0) {
        failure = errno;
    } else if (S_ISREG(status.st_mode)) {
        length = static_cast<uint64_t>(status.st_size);
    }
}

InputFile::~InputFile() {
    if (descriptor >= 0) close(descriptor);
}

size_t InputFile::read_to(uint8_t *bytes, size_t count) {
    if (failure || at_end) return 0;
    ssize_t got;
    do {
        got = read(descriptor, bytes, count);
    } while (got < 0 && errno == EINTR);
    if (got < 0) failure = errno;
    if (got == 0) at_end = true;
    return got > 0 ? static_cast<size_t>(got) : 0;
}

bool InputFile::fill() {
    if (position < end) return true;
    position = 0;
    end = read_to(buffer.get(), kBufferBytes);
    return end > 0;
}

bool InputFile::peek(size_t count) {
    while (available() < count) {
        const size_t got = read_to(buffer.get() + end, kBufferBytes - end);
        if (got == 0) return false;
        end += got;
    }
    return true;
}

} // namespace kzb
