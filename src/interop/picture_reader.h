// The reading side of host pictures.
#pragma once

#include "host/reference.h"
#include "platform/graphics_worlds.h"

namespace kzb {

// A host picture's "Width" and "Height"; 0 for nil or when the host does not tell.
int32_t picture_width(Picture picture);
int32_t picture_height(Picture picture);

// Draws width × height pixels of a picture, from its top left, to the top left of a graphics object; nothing when the
// host has no drawing method, or for nil.
void draw_picture(Object graphics, Picture picture, int32_t width, int32_t height);

// A host picture's pixels, locked in place from a successful open() to the end of this object: exchange pixels, four
// bytes each, of which bytes 1 to 3 are red, green and blue.
class PictureReader {
public:
    PictureReader() = default;
    PictureReader(const PictureReader &) = delete;
    PictureReader &operator=(const PictureReader &) = delete;
    ~PictureReader();

    // Reads the picture itself where it is a world of 32 bits, else a 32-bit copy that goes away with the reader.
    [[nodiscard]] bool open(Picture picture);

    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    const uint8_t *row(int32_t y) const { return base_ + static_cast<int64_t>(y) * row_bytes_; }

private:
    [[nodiscard]] bool lock(Picture picture);

    Reference<Picture> held_;
    PictureDescription description_ = {};
    PixMapHandle map_ = nullptr;
    const uint8_t *base_ = nullptr;
    int32_t row_bytes_ = 0;
    int32_t width_ = 0;
    int32_t height_ = 0;
};

} // namespace kzb
