// Memory that shows who touches bytes outside of it, or uses it after it was given back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

namespace kzb::test {

// Each piece ends right before a page that cannot be touched, or up to `alignment` - 1 bytes earlier, and begins after
// one; the rest of its pages is filled with a pattern. A piece that was given back cannot be touched any more, and its
// address is not given out again until forget() or empty() is called.
class GuardedMemory {
public:
    // Zero-filled; nil when there is none.
    uint8_t *take(size_t size, size_t alignment);

    // False when bytes around the piece have been written to. Only for pieces of this memory.
    bool give_back(void *start);
    bool owns(const void *start) const { return pieces_.count(start) != 0; }

    // Gives the system the pages of the pieces that were given back.
    void forget();

    // Gives everything back; false when bytes around a piece have been written to.
    bool empty();

private:
    struct Piece {
        uint8_t *pages;
        size_t length; // of the pages, the two that cannot be touched included
        size_t size;
        bool given_back;
    };
    bool is_sound(const void *start, const Piece &piece) const;
    std::map<const void *, Piece> pieces_;
};

} // namespace kzb::test
