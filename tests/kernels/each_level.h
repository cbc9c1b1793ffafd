// Row functions of every instruction set that runs here, beside plain loops over guarded bytes.
#pragma once

#include "kernels/level.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstring>
#include <random>
#include <vector>

namespace kzb::kernels {

// Calls check(level) for the levels that run here.
template <class Check> void for_each_level(Check check) {
    for (Level level : {Level::baseline, Level::avx2, Level::avx512}) {
        if (!runs(level)) continue;
        SCOPED_TRACE(name_of(level));
        check(level);
    }
}

inline std::vector<uint8_t> random_bytes(size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> bytes(count);
    for (uint8_t &byte : bytes) byte = static_cast<uint8_t>(random());
    return bytes;
}

// A copy of bytes with pages beside it that cannot be touched, on the side that is asked for.
class GuardedBytes {
public:
    enum class Guard { before, after };

    GuardedBytes(const std::vector<uint8_t> &bytes, Guard guard) : size_(bytes.size()) {
        pages_ =
            static_cast<uint8_t *>(mmap(nullptr, 3 * room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (pages_ == MAP_FAILED || size_ > room || mprotect(pages_, room, PROT_NONE) != 0 ||
            mprotect(pages_ + 2 * room, room, PROT_NONE) != 0)
            throw std::runtime_error("no guarded pages");
        start_ = pages_ + room + (guard == Guard::after ? room - size_ : 0);
        if (size_ != 0) std::memcpy(start_, bytes.data(), size_);
    }
    ~GuardedBytes() { munmap(pages_, 3 * room); }
    GuardedBytes(const GuardedBytes &) = delete;
    GuardedBytes &operator=(const GuardedBytes &) = delete;

    uint8_t *data() { return start_; }
    std::vector<uint8_t> bytes() const { return {start_, start_ + size_}; }

private:
    static constexpr size_t room = 8192;
    size_t size_;
    uint8_t *pages_;
    uint8_t *start_;
};

} // namespace kzb::kernels
