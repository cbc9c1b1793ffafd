#include "faults/guarded_memory.h"

#include <algorithm>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace kzb::test {

namespace {

constexpr uint8_t pattern = 0xC5;

size_t page_size() {
    static const auto size = static_cast<size_t>(getpagesize());
    return size;
}

bool is_pattern(const uint8_t *start, const uint8_t *end) {
    return std::all_of(start, end, [](uint8_t byte) { return byte == pattern; });
}

} // namespace

uint8_t *GuardedMemory::take(size_t size, size_t alignment) {
    const size_t room = (std::max<size_t>(size, 1) + page_size() - 1) / page_size() * page_size();
    const size_t length = room + 2 * page_size();
    void *mapping = mmap(nullptr, length, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) return nullptr;
    auto *pages = static_cast<uint8_t *>(mapping);
    if (mprotect(pages + page_size(), room, PROT_READ | PROT_WRITE) != 0) {
        munmap(pages, length);
        return nullptr;
    }
    uint8_t *start = pages + page_size() + (room - size) / alignment * alignment;
    std::memset(pages + page_size(), pattern, room);
    std::memset(start, 0, size);
    pieces_[start] = {pages, length, size, false};
    return start;
}

bool GuardedMemory::is_sound(const void *start, const Piece &piece) const {
    const auto *first = static_cast<const uint8_t *>(start);
    return is_pattern(piece.pages + page_size(), first) &&
           is_pattern(first + piece.size, piece.pages + piece.length - page_size());
}

bool GuardedMemory::give_back(void *start) {
    Piece &piece = pieces_.at(start);
    if (piece.given_back) return false;
    const bool sound = is_sound(start, piece);
    mprotect(piece.pages, piece.length, PROT_NONE);
    piece.given_back = true;
    return sound;
}

void GuardedMemory::forget() {
    std::erase_if(pieces_, [](const auto &entry) {
        const Piece &piece = entry.second;
        if (piece.given_back) munmap(piece.pages, piece.length);
        return piece.given_back;
    });
}

bool GuardedMemory::empty() {
    bool sound = true;
    for (const auto &[start, piece] : pieces_) {
        sound = sound && (piece.given_back || is_sound(start, piece));
        munmap(piece.pages, piece.length);
    }
    pieces_.clear();
    return sound;
}

} // namespace kzb::test
