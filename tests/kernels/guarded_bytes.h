// Bytes beside pages that cannot be touched.
#pragma once

#include <sys/mman.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace kzb::kernels {

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
