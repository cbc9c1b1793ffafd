#include "output_file.h"

#include "held_pixels.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kzb {

namespace {

// A new file in the folder of `path`; its name is short, because the final one may have the longest possible name.
int create_beside(const std::string &path, std::string &temporary, UnfinishedFile &unfinished) {
    static unsigned count = 0;
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    int descriptor;
    do {
        temporary = folder + ".kzb-" + std::to_string(getpid()) + "-" + std::to_string(++count) + ".tmp";
        // Noted first: a signal may come right after the file is made.
        unfinished.note(temporary);
        descriptor = open(temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor < 0) unfinished.forget();
    } while (descriptor < 0 && (errno == EEXIST || errno == EINTR));
    return descriptor;
}

// Where a link leads; a path that is no link, or leads nowhere, as it is.
std::string target_of(const std::string &path) {
    struct stat status;
    if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
    char *resolved = realpath(path.c_str(), nullptr);
    if (!resolved) return path;
    std::string target = resolved;
    std::free(resolved);
    return target;
}

const char *temporary_folder() {
    const char *folder = std::getenv("TMPDIR");
    return folder && *folder ? folder : "/tmp";
}

} // namespace

OutputFile::OutputFile(const std::string &path, bool seeks) : name(path.empty() ? path : target_of(path)) {
    struct stat status;
    if (name.empty()) {
        stream = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    } else if (stat(name.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) {
        stream = open(name.c_str(), O_WRONLY | O_CLOEXEC);
    } else {
        open_beside();
        return;
    }
    if (stream < 0) {
        fail();
    } else {
        open_stream(seeks);
    }
}

void OutputFile::open_stream(bool seeks) {
    const int descriptor = seeks ? open_nameless_file(temporary_folder()) : stream;
    if (!seeks) stream = -1;
    if (descriptor >= 0) file = fdopen(descriptor, seeks ? "w+b" : "wb");
    if (file) return;
    fail();
    if (descriptor >= 0) close(descriptor);
}

void OutputFile::open_beside() {
    const int descriptor = create_beside(name, temporary, unfinished);
    if (descriptor < 0) {
        fail();
        temporary.clear();
        return;
    }
    file = fdopen(descriptor, "w+b");
    if (!file) {
        fail();
        close(descriptor);
    }
}

OutputFile::~OutputFile() {
    if (file) std::fclose(file);
    if (stream >= 0) close(stream);
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

int64_t OutputFile::seek(int64_t offset, int whence) {
    if (!file || failure) return -1;
    if (fseeko(file, offset, whence) != 0) {
        fail();
        return -1;
    }
    return ftello(file);
}

size_t OutputFile::read(void *bytes, size_t count) {
    // Between writing and reading a stream wants its place set.
    if (seek(0, SEEK_CUR) < 0) return 0;
    const size_t got = std::fread(bytes, 1, count, file);
    return seek(0, SEEK_CUR) < 0 ? 0 : got;
}

bool OutputFile::copy_to_stream() {
    if (std::fseek(file, 0, SEEK_SET) != 0) return fail();
    char buffer[1 << 16];
    while (const size_t got = std::fread(buffer, 1, sizeof buffer, file)) {
        for (size_t done = 0; done < got;) {
            const ssize_t written = ::write(stream, buffer + done, got - done);
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) return fail();
            done += static_cast<size_t>(written);
        }
    }
    return std::ferror(file) == 0 || fail();
}

bool OutputFile::commit() {
    if (!file || failure) return false;
    if (stream >= 0 && !copy_to_stream()) return false;
    std::FILE *closing = file;
    file = nullptr;
    if (std::fclose(closing) != 0) return fail();
    if (temporary.empty()) return true;
    if (std::rename(temporary.c_str(), name.c_str()) != 0) return fail();
    unfinished.forget();
    temporary.clear();
    return true;
}

} // namespace kzb
