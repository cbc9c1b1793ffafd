// Columns skewed together.
#pragma once

#include "geometry/pieces.h"
#include "geometry/row_band.h"
#include "geometry/skew.h"
#include "platform/buffer.h"

namespace kzb {

// Skews strips of columns, all columns of a strip together from row to row. A strip is so narrow that the rows it
// writes at a time stay in the cache, and in a file-backed destination within a block.
class ColumnSkewer {
public:
    ColumnSkewer(const Skew &skew, const Shift *shifts)
        : source_(skew.source), destination_(skew.destination), background_(skew.background),
          pieces_(pieces_of(skew.source, skew.destination, skew.channels)), channels_(skew.channels.size()),
          shifts_(shifts), strip_(1) {}

    // False without work memory.
    explicit operator bool() const { return static_cast<bool>(strip_); }

    // Skews all columns; stops where a row is out of reach.
    void skew();

private:
    static constexpr int32_t most_columns = 512;
    static constexpr int32_t most_rows = 256;
    using Row = std::array<uint8_t, size_t{most_columns} * 4>; // packed pixels

    struct Strip {
        std::array<ptrdiff_t, most_columns> places; // bytes from the start of the row with the lowest shift
        std::array<double, size_t{most_columns} * 4> fractions;
        Row packed, result;
        std::array<Row, 2> parts; // given by one row and received by the next, in turns
    };

    Strip &strip() const { return strip_[0]; }
    size_t width() const { return static_cast<size_t>(width_); }
    void take_strip();
    bool skew_strip();
    const uint8_t *packed_pixels(const uint8_t *row) const;
    void skew_row(const uint8_t *pixels, int32_t y);
    bool fill_rows(int64_t end);
    void write_row(int32_t y, int64_t first, int64_t last);
    void write_run(int32_t y, int64_t first, const RowBand &band, int32_t column, int32_t end);

    ImageRecord &source_;
    ImageRecord &destination_;
    const Background background_;
    const Pieces pieces_;
    const size_t channels_;
    const Shift *shifts_;
    Buffer<Strip> strip_;

    int32_t left_ = 0;                 // the strip's first column
    int32_t width_ = 0;                // its columns
    int64_t lowest_ = 0, highest_ = 0; // the bounds of their shifts
    int64_t filled_ = 0;               // so many of the destination's rows have the background in the strip
};

} // namespace kzb
