// Rows reduced to the channels that an operation touches.
#pragma once

#include "image/channels.h"
#include "platform/buffer.h"

namespace kzb {

// The channels in the order of their bytes: rows of dense layouts are then packed as they are. Channels on the same
// byte stay in the list's order.
Channels in_byte_order(const Channels &channels, const ImageRecord &image);

// Whether the listed channels of each row's `width` pixels end before the next row starts; the caller of the
// memory-block constructor may have named a row size below that.
bool rows_lie_apart(const ImageRecord &image, const Channels &channels, int32_t width);

// An image's rows as packed ones: of `width` pixels the listed channels, side by side in the list's order.
class PackedRows {
public:
    // `plainly` reaches each byte for itself, in the order of pixels and channels, and leaves out those outside the
    // image's storage; without it the image must hold the rows.
    PackedRows(ImageRecord &image, const Channels &channels, int32_t width, bool plainly);

    // False when there is no memory for them.
    explicit operator bool() const { return static_cast<bool>(packed_); }

    // Bytes of a packed row.
    size_t bytes() const { return pixels() * channels_; }

    // A packed row, void at the next call for this image; nil when the row cannot be reached. Bytes outside the storage
    // read as 0.
    const uint8_t *read(int32_t y);

    // Writes a packed row; false when the row cannot be reached.
    bool write(int32_t y, const uint8_t *packed);

    // Where a packed row may be made instead of being written: in the image itself if its rows are packed. Nil when the
    // row cannot be reached; void at the next call for this image. `finish` writes what was made elsewhere.
    uint8_t *place(int32_t y);
    bool finish(int32_t y) { return way_ == Way::dense || write(y, packed_.get()); }

private:
    enum class Way : uint8_t { dense, stepped, plain };

    size_t pixels() const { return static_cast<size_t>(width_); }
    size_t pixel_size() const { return static_cast<size_t>(image_.PixelSize); }

    ImageRecord &image_;
    ChannelOffsets offsets_;
    size_t channels_;
    int32_t width_;
    Way way_;
    Buffer<uint8_t> packed_;
};

// A copy of a row's RowSize bytes.
class RowCopy {
public:
    // For rows of this image.
    explicit RowCopy(ImageRecord &image) : image_(image), bytes_(image.RowSize) {}

    // False when there is no memory for it.
    explicit operator bool() const { return static_cast<bool>(bytes_); }

    // Takes the copy; of a row outside the storage it is empty.
    void take(int32_t y);

    // A byte counted from the row's start; 0 before and beyond the copy.
    uint8_t operator[](int64_t byte) const {
        return byte >= 0 && byte < length_ ? bytes_[static_cast<size_t>(byte)] : uint8_t{0};
    }

private:
    ImageRecord &image_;
    Buffer<uint8_t> bytes_;
    int64_t length_ = 0;
};

} // namespace kzb
