#include "exif.h"

#include <cstring>

namespace kzb {

namespace {

// Numbers in a block's own byte order; what lies outside is 0.
class Block {
public:
    Block(const uint8_t *bytes, size_t count) : bytes_(bytes), count_(count), big_(count > 0 && bytes[0] == 'M') {}

    uint32_t number(size_t at, size_t size) const {
        if (at > count_ || size > count_ - at) return 0;
        uint32_t value = 0;
        for (size_t i = 0; i < size; ++i) value = value << 8 | bytes_[at + (big_ ? i : size - 1 - i)];
        return value;
    }
    bool holds(size_t at, size_t size) const { return at <= count_ && size <= count_ - at; }

private:
    const uint8_t *bytes_;
    size_t count_;
    bool big_;
};

} // namespace

int exif_orientation(const uint8_t *bytes, size_t count) {
    constexpr size_t mark = 6, entry_bytes = 12;
    constexpr uint32_t orientation_tag = 0x112, short_type = 3;
    if (count >= mark && std::memcmp(bytes, "Exif\0\0", mark) == 0) {
        bytes += mark;
        count -= mark;
    }
    if (count < 8 || (std::memcmp(bytes, "II", 2) != 0 && std::memcmp(bytes, "MM", 2) != 0)) return 1;
    const Block block(bytes, count);
    const size_t directory = block.number(4, 4);
    const size_t entries = block.number(directory, 2);
    for (size_t i = 0; i < entries; ++i) {
        const size_t entry = directory + 2 + i * entry_bytes;
        if (!block.holds(entry, entry_bytes)) break;
        if (block.number(entry, 2) != orientation_tag || block.number(entry + 2, 2) != short_type) continue;
        const uint32_t value = block.number(entry + 8, 2);
        return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
    }
    return 1;
}

} // namespace kzb
