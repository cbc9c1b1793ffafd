// The module's calls of the C library, which are wrapped: counted, and made to fail where a test says so.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kzb::test {

enum class System : uint8_t {
    allocation, // calloc, malloc, realloc
    open,
    fcntl,
    fstat,
    flock,
    fchmod,
    ftruncate,
    fallocate,
    lseek,
    write,
    mmap,
    munmap,
    close,
    unlink,
    count
};
const char *name_of(System call);

// How a call fails: with an error, or in the second way that some calls have.
enum class Manner : uint8_t {
    error,
    other // write: short; lseek: lands elsewhere; fallocate, flock: not offered by the file system
};

// One call, or all from one on, fail while this lives; one of these at a time for each of the system's calls. Calls are
// counted from 1 on.
class SystemFault {
public:
    SystemFault(System call, uint64_t first, bool all_later = false, Manner manner = Manner::error, int error = 0);
    ~SystemFault();
    SystemFault(const SystemFault &) = delete;
    SystemFault &operator=(const SystemFault &) = delete;

    // Whether it came to that call.
    bool reached() const;

private:
    System call_;
};

// How often the module has made the call so far.
uint64_t calls_of(System call);

// The module's memory: how many pieces it has not given back.
size_t pieces_of_module_memory();

// Whether the module is given guarded memory from now on.
void guard_module_memory(bool on);

// What was done wrong with memory since the last call: bytes around a piece written, a piece given back twice. From
// here on addresses of pieces that were given back may be given out again.
std::vector<std::string> memory_misuse();

// Ticks that go by with each reading of the module's clock.
void let_time_pass(uint32_t ticks_per_reading);

} // namespace kzb::test
