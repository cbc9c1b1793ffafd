// Fuzzes the readers of image files. Whatever the bytes, the answer is a picture within the limit or one sentence.

#include "module.h"

#include <fixtures/host.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace kzb::fuzz {

namespace {

constexpr uint64_t most_pixels = 1 << 18;

// A file in memory, rewritten for each input.
class MemoryFile {
public:
    MemoryFile() : descriptor_(memfd_create("fuzzed", MFD_CLOEXEC)) {
        if (descriptor_ < 0) found("no file in memory");
        path_ = "/proc/self/fd/" + std::to_string(descriptor_);
    }
    const char *path() const { return path_.c_str(); }
    void fill(const uint8_t *bytes, size_t count) const {
        if (ftruncate(descriptor_, 0) != 0 || pwrite(descriptor_, bytes, count, 0) != static_cast<ssize_t>(count))
            found("the file in memory cannot be written");
    }

private:
    int descriptor_;
    std::string path_;
};

// Reads each byte of the picture and of its mask.
uint32_t digest(KZBPicture picture) {
    const GWorld *world = kzb_picture_world(picture);
    if (world == nullptr) return 0;
    const auto *row = static_cast<const uint8_t *>(world->base_address);
    uint32_t sum = 0;
    for (kzb_word y = 0; y < world->height; ++y, row += world->row_bytes)
        for (kzb_word x = 0; x < world->width * 4; ++x) sum = sum * 31 + row[x];
    return sum;
}

struct Read {
    bool done;
    kzb_word width, height;
    uint32_t pixels, mask;
    bool operator==(const Read &) const = default;
};

Read read(const char *path) {
    const kzb_read_options options = {most_pixels, nullptr};
    kzb_error error = {};
    KZBPicture read_picture = kzb_picture_read(path, &options, &error);
    if (read_picture == nullptr) {
        if (error.status == KZB_OK || error.message[0] == '\0') found("no picture and no word why");
        if (std::strchr(error.message, '\n') != nullptr) found("more than one line");
        return {};
    }
    const test::Value picture = test::Value::adopt(reinterpret_cast<KZBObject>(read_picture));
    const GWorld *world = kzb_picture_world(read_picture);
    if (world->depth != 32 || world->width < 1 || world->height < 1) found("a picture of no size");
    if (static_cast<uint64_t>(world->width) * static_cast<uint64_t>(world->height) > most_pixels)
        found("a picture beyond the limit");
    KZBPicture mask = kzb_picture_mask(read_picture);
    const test::Value held = test::Value::adopt(reinterpret_cast<KZBObject>(mask));
    return {true, world->width, world->height, digest(read_picture), digest(mask)};
}

void run(const uint8_t *bytes, size_t count) {
    static const MemoryFile file;
    file.fill(bytes, count);
    const size_t objects = kzb_live_count(nullptr);
    const Read first = read(file.path());
    if (kzb_live_count(nullptr) != objects) found("objects of the host were left behind");
    // What nobody has written would differ.
    if (first.done && read(file.path()) != first) found("the same file read twice gives two pictures");
}

constexpr size_t png_start = 8;

uint32_t check_sum(const uint8_t *bytes, size_t count) {
    static const auto table = [] {
        std::array<uint32_t, 256> made;
        for (uint32_t i = 0; i < made.size(); ++i) {
            made[i] = i;
            for (int bit = 0; bit < 8; ++bit) made[i] = made[i] >> 1 ^ (made[i] & 1 ? 0xEDB88320 : 0);
        }
        return made;
    }();
    uint32_t sum = ~uint32_t{0};
    for (size_t i = 0; i < count; ++i) sum = table[(sum ^ bytes[i]) & 0xFF] ^ sum >> 8;
    return ~sum;
}

uint32_t word_at(const uint8_t *bytes) {
    return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

// Makes the chunks' check sums right again, without which the readers would see little of a changed PNG file.
void mend_check_sums(uint8_t *bytes, size_t count) {
    static constexpr uint8_t start[png_start] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    if (count < png_start || std::memcmp(bytes, start, png_start) != 0) return;
    for (size_t at = png_start; at + 12 <= count;) {
        const size_t length = word_at(bytes + at);
        if (length > count - at - 12) return;
        const uint32_t sum = check_sum(bytes + at + 4, length + 4);
        for (size_t i = 0; i < 4; ++i) bytes[at + 8 + length + i] = static_cast<uint8_t>(sum >> (24 - 8 * i));
        at += length + 12;
    }
}

} // namespace

} // namespace kzb::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count) {
    kzb::fuzz::run(bytes, count);
    return 0;
}

extern "C" [[gnu::weak]] size_t LLVMFuzzerMutate(uint8_t *bytes, size_t count, size_t most);

extern "C" [[gnu::visibility("default")]] size_t LLVMFuzzerCustomMutator(uint8_t *bytes, size_t count, size_t most,
                                                                         unsigned seed) {
    const size_t size = LLVMFuzzerMutate(bytes, count, most);
    if (seed % 8 != 0) kzb::fuzz::mend_check_sums(bytes, size);
    return size;
}
