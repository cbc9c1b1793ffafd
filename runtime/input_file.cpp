#include "input_file.h"

#include "held_pixels.h"
#include "standard_input.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kzb {

namespace {

constexpr size_t kBufferBytes = 1 << 16;

int open_input(const char *path) {
    if (std::strcmp(path, "-") != 0) return open(path, O_RDONLY | O_CLOEXEC);
    const int standard_input = move_standard_input();
    if (standard_input >= 0) return fcntl(standard_input, F_DUPFD_CLOEXEC, 3);
    errno = EBADF;
    return -1;
}

bool write_all(int descriptor, const uint8_t *bytes, size_t count) {
    while (count > 0) {
        const ssize_t written = write(descriptor, bytes, count);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes += written;
        count -= static_cast<size_t>(written);
    }
    return true;
}

} // namespace

InputFile::InputFile(const char *path) : buffer(new uint8_t[kBufferBytes]), descriptor(open_input(path)) {
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

bool InputFile::take_all(std::vector<uint8_t> &bytes, size_t most) {
    while (fill()) {
        if (available() > most - bytes.size()) {
            failure = EFBIG;
            return false;
        }
        bytes.insert(bytes.end(), next(), next() + available());
        take(available());
    }
    return failure == 0;
}

int InputFile::seekable(const char *folder) {
    if (length != UINT64_MAX) return descriptor;
    const int copy = open_nameless_file(folder);
    if (copy < 0) {
        failure = errno;
        return -1;
    }
    while (fill()) {
        if (!write_all(copy, next(), available())) {
            failure = errno;
            close(copy);
            return -1;
        }
        take(available());
    }
    at_end = false;
    close(descriptor);
    descriptor = copy;
    return failure ? -1 : descriptor;
}

} // namespace kzb
