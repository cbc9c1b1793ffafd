#include "faults/system_faults.h"

#include "faults/guarded_memory.h"

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kzb::test {

namespace {

constexpr size_t call_count = static_cast<size_t>(System::count);

struct Armed {
    uint64_t first = 0; // 0: none fails
    bool all_later = false;
    Manner manner = Manner::error;
    int error = 0;
    uint64_t counted = 0;
    bool reached = false;
};

constinit std::array<uint64_t, call_count> calls = {};
constinit std::array<Armed, call_count> armed = {}; // by the call that fails

constinit bool guarding = false;
GuardedMemory &guarded() {
    static auto &memory = *new GuardedMemory;
    return memory;
}
// Pieces and their sizes; never destroyed, as the module is used until the process ends.
std::map<void *, size_t> &pieces() {
    static auto &all = *new std::map<void *, size_t>;
    return all;
}
std::vector<std::string> &misuse() {
    static auto &lines = *new std::vector<std::string>;
    return lines;
}

Armed &armed_for(System call) {
    return armed[static_cast<size_t>(call)];
}

// Counts a call and tells whether it is to fail.
bool fails(System call) {
    ++calls[static_cast<size_t>(call)];
    Armed &fault = armed_for(call);
    if (fault.first == 0) return false;
    ++fault.counted;
    const bool now = fault.all_later ? fault.counted >= fault.first : fault.counted == fault.first;
    fault.reached = fault.reached || now;
    if (now) errno = fault.error;
    return now;
}

void *take(size_t size) {
    void *piece = guarding ? guarded().take(size, alignof(max_align_t)) : std::calloc(size == 0 ? 1 : size, 1);
    if (piece != nullptr) pieces()[piece] = size;
    return piece;
}

void give_back(void *piece) {
    if (piece == nullptr) return;
    const auto found = pieces().find(piece);
    if (found == pieces().end()) {
        if (guarded().owns(piece))
            misuse().push_back("memory was given back twice");
        else
            std::free(piece); // taken before the wrappers came in
        return;
    }
    pieces().erase(found);
    if (!guarded().owns(piece))
        std::free(piece);
    else if (!guarded().give_back(piece))
        misuse().push_back("bytes around a piece of memory were written to");
}

int default_error(System call) {
    switch (call) {
    case System::allocation:
        return ENOMEM;
    case System::open:
        return EACCES;
    case System::fcntl:
        return EMFILE;
    case System::flock:
        return EWOULDBLOCK;
    case System::fallocate:
    case System::write:
        return ENOSPC;
    case System::mmap:
        return ENOMEM;
    default:
        return EIO;
    }
}

constinit uint32_t now = 1000;
constinit uint32_t step = 0;

} // namespace

const char *name_of(System call) {
    constexpr const char *names[] = {"allocation", "open",  "fcntl", "fstat", "flock",  "fchmod", "ftruncate",
                                     "fallocate",  "lseek", "write", "mmap",  "munmap", "close",  "unlink"};
    static_assert(std::size(names) == call_count);
    return names[static_cast<size_t>(call)];
}

SystemFault::SystemFault(System call, uint64_t first, bool all_later, Manner manner, int error) : call_(call) {
    armed_for(call) = {first, all_later, manner, error != 0 ? error : default_error(call), 0, false};
    if (manner == Manner::other && (call == System::fallocate || call == System::flock))
        armed_for(call).error = EOPNOTSUPP;
}

SystemFault::~SystemFault() {
    armed_for(call_) = {};
}

bool SystemFault::reached() const {
    return armed_for(call_).reached;
}

uint64_t calls_of(System call) {
    return calls[static_cast<size_t>(call)];
}

size_t pieces_of_module_memory() {
    return pieces().size();
}

void guard_module_memory(bool on) {
    guarding = on;
}

std::vector<std::string> memory_misuse() {
    guarded().forget();
    return std::exchange(misuse(), {});
}

void let_time_pass(uint32_t ticks_per_reading) {
    step = ticks_per_reading;
}

} // namespace kzb::test

// What the module calls. Some are published under a second name for 64-bit file sizes.
#define KZB_WRAPPER extern "C" [[gnu::visibility("default")]]
#define KZB_SECOND_NAME(name) __attribute__((visibility("default"), alias(name)))

using namespace kzb::test;

KZB_WRAPPER uint32_t TickCount() {
    return now += step;
}

KZB_WRAPPER void *__wrap_calloc(size_t count, size_t size) {
    size_t bytes = 0;
    if (fails(System::allocation) || __builtin_mul_overflow(count, size, &bytes)) return nullptr;
    return take(bytes);
}

KZB_WRAPPER void *__wrap_malloc(size_t size) {
    return fails(System::allocation) ? nullptr : take(size);
}

KZB_WRAPPER void *__wrap_realloc(void *old, size_t size) {
    if (fails(System::allocation)) return nullptr;
    void *piece = take(size);
    const auto found = pieces().find(old);
    if (piece != nullptr && found != pieces().end()) std::memcpy(piece, old, std::min(size, found->second));
    if (piece != nullptr) give_back(old);
    return piece;
}

KZB_WRAPPER void __wrap_free(void *piece) {
    give_back(piece);
}

KZB_WRAPPER int __wrap_open(const char *path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return fails(System::open) ? -1 : open(path, flags, mode);
}

// As the module calls it: with one number.
KZB_WRAPPER int __wrap_fcntl(int descriptor, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    const int argument = va_arg(arguments, int);
    va_end(arguments);
    return fails(System::fcntl) ? -1 : fcntl(descriptor, command, argument);
}

KZB_WRAPPER int __wrap_fstat(int descriptor, struct stat *status) {
    return fails(System::fstat) ? -1 : fstat(descriptor, status);
}

KZB_WRAPPER int __wrap_flock(int descriptor, int operation) {
    return fails(System::flock) ? -1 : flock(descriptor, operation);
}

KZB_WRAPPER int __wrap_fchmod(int descriptor, mode_t mode) {
    return fails(System::fchmod) ? -1 : fchmod(descriptor, mode);
}

KZB_WRAPPER int __wrap_ftruncate(int descriptor, off_t length) {
    return fails(System::ftruncate) ? -1 : ftruncate(descriptor, length);
}

KZB_WRAPPER int __wrap_fallocate(int descriptor, int mode, off_t offset, off_t length) {
    return fails(System::fallocate) ? -1 : fallocate(descriptor, mode, offset, length);
}

KZB_WRAPPER off_t __wrap_lseek(int descriptor, off_t offset, int whence) {
    if (!fails(System::lseek)) return lseek(descriptor, offset, whence);
    return armed_for(System::lseek).manner == Manner::other ? lseek(descriptor, offset + 1, whence) : -1;
}

KZB_WRAPPER ssize_t __wrap_write(int descriptor, const void *bytes, size_t count) {
    if (!fails(System::write)) return write(descriptor, bytes, count);
    return armed_for(System::write).manner == Manner::other ? write(descriptor, bytes, count / 2) : -1;
}

KZB_WRAPPER void *__wrap_mmap(void *address, size_t length, int protection, int flags, int descriptor, off_t offset) {
    return fails(System::mmap) ? MAP_FAILED : mmap(address, length, protection, flags, descriptor, offset);
}

KZB_WRAPPER int __wrap_munmap(void *address, size_t length) {
    return fails(System::munmap) ? -1 : munmap(address, length);
}

// A descriptor is gone even when closing it reports an error.
KZB_WRAPPER int __wrap_close(int descriptor) {
    const bool failing = fails(System::close);
    const int result = close(descriptor);
    return failing ? -1 : result;
}

KZB_WRAPPER int __wrap_unlink(const char *path) {
    return fails(System::unlink) ? -1 : unlink(path);
}

extern "C" {
KZB_SECOND_NAME("__wrap_open") int __wrap_open64(const char *, int, ...);
KZB_SECOND_NAME("__wrap_fcntl") int __wrap_fcntl64(int, int, ...);
KZB_SECOND_NAME("__wrap_fstat") int __wrap_fstat64(int, struct stat *);
KZB_SECOND_NAME("__wrap_ftruncate") int __wrap_ftruncate64(int, off_t);
KZB_SECOND_NAME("__wrap_fallocate") int __wrap_fallocate64(int, int, off_t, off_t);
KZB_SECOND_NAME("__wrap_lseek") off_t __wrap_lseek64(int, off_t, int);
KZB_SECOND_NAME("__wrap_mmap") void *__wrap_mmap64(void *, size_t, int, int, int, off_t);
}
