// Pixels of a picture that must be held whole before the first row can be given.
#ifndef KZB_RUNTIME_HELD_PIXELS_H
#define KZB_RUNTIME_HELD_PIXELS_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace kzb {

class HeldPixels {
public:
    HeldPixels() = default;
    ~HeldPixels();
    HeldPixels(const HeldPixels &) = delete;
    HeldPixels &operator=(const HeldPixels &) = delete;

    // Zero bytes in memory or, with a folder, in a file there that has no name and goes with this object. False: no
    // room, errno tells.
    bool hold(size_t count, const std::string &folder);

    uint8_t *bytes() const { return bytes_; }

private:
    uint8_t *bytes_ = nullptr;
    size_t count_ = 0;
};

// A new file in the folder that has no name there any more; -1: none could be made, errno tells.
int open_nameless_file(const std::string &folder);

} // namespace kzb

#endif
