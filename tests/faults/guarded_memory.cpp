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

uint8_t *GuardedMemory::pages_of(size_t length) {
    if (const auto found = free_pages_.find(length); found != free_pages_.end()) {
        uint8_t *pages = found->second;
        free_pages_.erase(found);
        return pages;
    }
    void *mapping = mmap(nullptr, length, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return mapping == MAP_FAILED ? nullptr : static_cast<uint8_t *>(mapping);
}

uint8_t *GuardedMemory::take(size_t size, size_t alignment) {
    const size_t room = (std::max<size_t>(size, 1) + page_size() - 1) / page_size() * page_size();
    const size_t length = room + 2 * page_size();
    uint8_t *pages = pages_of(length);
    if (pages == nullptr || mprotect(pages + page_size(), room, PROT_READ | PROT_WRITE) != 0) return nullptr;
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
    std::erase_if(pieces_, [this](const auto &entry) {
        const Piece &piece = entry.second;
        if (piece.given_back) free_pages_.emplace(piece.length, piece.pages);
        return piece.given_back;
    });
}

bool GuardedMemory::empty() {
    bool sound = true;
    for (const auto &[start, piece] : pieces_)
        if (!piece.given_back) sound = give_back(start) && sound;
    forget();
    return sound;
}

} // namespace kzb::test
