#include "output_file.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace kzb {

namespace {

// A new file in the folder of `path`; its name is short, because the final one may have the longest possible name.
int create_beside(const std::string &path, std::string &temporary) {
    static unsigned count = 0;
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    int descriptor;
    do {
        temporary = folder + ".kzb-" + std::to_string(getpid()) + "-" + std::to_string(++count) + ".tmp";
        descriptor = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (descriptor < 0 && (errno == EEXIST || errno == EINTR));
    return descriptor;
}

} // namespace

OutputFile::OutputFile(const char *path) : name(path) {
    const int descriptor = create_beside(name, temporary);
    if (descriptor < 0) {
        failure = errno;
        temporary.clear();
        return;
    }
    file = fdopen(descriptor, "wb");
    if (!file) {
        fail();
        close(descriptor);
    }
}

OutputFile::~OutputFile() {
    if (file) std::fclose(file);
    if (!temporary.empty()) unlink(temporary.c_str());
}

bool OutputFile::fail() {
    if (!failure) failure = errno ? errno : EIO;
    return false;
}

bool OutputFile::write(const void *bytes, size_t count) {
    if (!file || failure) return false;
    return std::fwrite(bytes, 1, count, file) == count || fail();
}

bool OutputFile::commit() {
    if (!file || failure) return false;
    std::FILE *closing = file;
    file = nullptr;
    if (std::fclose(closing) != 0) return fail();
    if (std::rename(temporary.c_str(), name.c_str()) != 0) return fail();
    temporary.clear();
    return true;
}

} // namespace kzb
