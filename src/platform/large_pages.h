// Large pages for large memory.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace kzb {

// Asks the system to back the memory with large pages, which then costs a fraction of the time to come by when it is
// first written. Below a few of them, and where the system has none to give, nothing changes.
inline void prefer_large_pages(void *memory, int64_t bytes) {
#if defined(MADV_HUGEPAGE)
    constexpr uintptr_t page = 4096;
    constexpr int64_t worth_asking = 4 << 20;
    if (bytes < worth_asking) return;
    const auto start = (reinterpret_cast<uintptr_t>(memory) + page - 1) & ~(page - 1);
    const auto end = (reinterpret_cast<uintptr_t>(memory) + static_cast<uintptr_t>(bytes)) & ~(page - 1);
    static_cast<void>(madvise(reinterpret_cast<void *>(start), end - start, MADV_HUGEPAGE));
#else
    static_cast<void>(memory);
    static_cast<void>(bytes);
#endif
}

} // namespace kzb
