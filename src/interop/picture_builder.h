// The writing side of host pictures.
#pragma once

#include "host/reference.h"
#include "platform/graphics_worlds.h"

namespace kzb {

// A buffer of exchange pixels, zero-filled, that becomes a host picture; disposed of when it does not.
class PictureBuilder {
public:
    PictureBuilder() = default;
    PictureBuilder(const PictureBuilder &) = delete;
    PictureBuilder &operator=(const PictureBuilder &) = delete;
    ~PictureBuilder();

    // False for sizes below 1 and without memory.
    [[nodiscard]] bool open(int32_t width, int32_t height);

    uint8_t *row(int32_t y) const { return base_ + static_cast<int64_t>(y) * row_bytes_; }

    // The picture, which takes the pixels over, or nil.
    Reference<Picture> finish();

private:
    GWorldPtr world_ = nullptr;
    PixMapHandle map_ = nullptr;
    uint8_t *base_ = nullptr;
    int32_t row_bytes_ = 0;
};

// Draws `mask`, width × height pixels of it, into the picture's mask, which is made when there is none. False for a nil
// picture or when there is nothing to draw into; true for a nil mask.
bool attach_mask(Picture picture, Picture mask, int32_t width, int32_t height);

} // namespace kzb
