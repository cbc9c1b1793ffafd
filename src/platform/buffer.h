// Owned work memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace kzb {

// A zero-filled array from calloc, freed at the end of its scope; empty (false) when the memory cannot be had.
template <class T> class Buffer {
public:
    Buffer() = default;
    // An array of `count` elements; a negative count, or one whose bytes do not fit the address space, gives none.
    explicit Buffer(int64_t count) {
        if (count < 0 || static_cast<uint64_t>(count) > SIZE_MAX / sizeof(T)) return;
        data_ = static_cast<T *>(std::calloc(count == 0 ? 1 : static_cast<size_t>(count), sizeof(T)));
    }
    Buffer(Buffer &&other) noexcept : data_(std::exchange(other.data_, nullptr)) {}
    Buffer &operator=(Buffer &&other) noexcept {
        std::swap(data_, other.data_);
        return *this;
    }
    ~Buffer() { std::free(data_); }

    T *get() const { return data_; }
    T &operator[](size_t index) const { return data_[index]; }
    explicit operator bool() const { return data_ != nullptr; }
    // Hands the memory to the caller, who frees it.
    T *release() { return std::exchange(data_, nullptr); }

private:
    T *data_ = nullptr;
};

} // namespace kzb
