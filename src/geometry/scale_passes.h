// The two passes of filtered scaling, a row at a time. Where the images involved share bytes, or work memory is short,
// a row is made pixel by pixel and channel by channel.
#pragma once

#include "geometry/carried_channels.h"
#include "geometry/contributions.h"
#include "image/record.h"

namespace kzb {

// From the source into the intermediate image.
class HorizontalPass {
public:
    // `columns` has the lists of the `width` output columns.
    HorizontalPass(ImageRecord &source, ImageRecord &temp, const CarriedChannels &carried, const Contributions &columns,
                   int32_t width);

    // Makes the intermediate image's row from the source's. False when a row cannot be reached.
    [[nodiscard]] bool make_row(int32_t row) const;

private:
    bool make_row_plainly(int32_t row) const;
    // A carried channel of a source pixel; false when its row cannot be reached.
    bool read(int32_t column, int32_t row, Channel lane, double &value) const;

    ImageRecord &source_, &temp_;
    CarriedChannels carried_;
    const Contributions &columns_;
    int32_t width_;
    Buffer<double> lanes_;
};

// From the intermediate image into the destination.
class VerticalPass {
public:
    // `rows` has the lists of the output rows.
    VerticalPass(ImageRecord &temp, ImageRecord &destination, const CarriedChannels &carried, const Contributions &rows,
                 int32_t width);

    // Makes the destination's row. False when a row cannot be reached.
    [[nodiscard]] bool make_row(int32_t row) const;

private:
    bool make_row_plainly(int32_t row) const;

    ImageRecord &temp_, &destination_;
    CarriedChannels carried_;
    const Contributions &rows_;
    int32_t width_;
    int32_t strip_; // columns that are made at a time
    Buffer<double> sums_;
    Buffer<uint8_t> bytes_;
};

} // namespace kzb
