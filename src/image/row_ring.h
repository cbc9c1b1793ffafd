// Rows as operations need them whose pixels depend on a neighbourhood.
#pragma once

#include "image/packed_rows.h"
#include "image/row_window.h"

namespace kzb {

// How such an operation may go from source to destination.
struct RowRoute {
    bool by_rows;           // otherwise only the plain walk, in the stated order, gives the right bytes
    bool in_place;          // the destination is the source: rows are read as they have become
    bool plain_destination; // the destination's rows must be written plainly
    Channels channels;      // in the order in which rows are best packed
};
RowRoute row_route(const ImageRecord &source, const ImageRecord &destination, const Channels &channels);

// The last few rows of an image, packed, read one after the other.
class RowRing {
public:
    // For `rows` rows at a time, or all rows of a lower image, which must hold them.
    RowRing(ImageRecord &image, const Channels &channels, int64_t rows);

    // False when there is no memory for them, or they are too many to be held.
    explicit operator bool() const { return source_ && held_ && addresses_; }

    // Reads on up to row y or the last one. False when a row cannot be reached.
    [[nodiscard]] bool read_through(int64_t y);

    // One of the rows held. The caller may write into it.
    uint8_t *row(int32_t y) const { return held_.get() + static_cast<size_t>(y % rows_) * source_.bytes(); }

    // The rows from `start` to before `end`, all of them held. The array is good until the next call.
    const uint8_t *const *rows(int32_t start, int32_t end) const;

private:
    RowWindow window_;
    PackedRows source_;
    int32_t height_;
    int64_t rows_;
    Buffer<uint8_t> held_;
    Buffer<const uint8_t *> addresses_;
    int32_t next_ = 0;
};

} // namespace kzb
