// Gray images of one row or one column, written out value by value.
#pragma once

#include "fixtures/host.h"

namespace kzb::test {

// Sets the start of a row; the rest becomes 0.
inline void set_row(const Image &image, int32_t y, Bytes values) {
    values.resize(static_cast<size_t>(image.integer("RowSize")));
    image.assign("Row", block_of(values), y);
}

inline Image gray_row(const Bytes &values) {
    const Image image(static_cast<int32_t>(values.size()), 1, 11);
    set_row(image, 0, values);
    return image;
}

inline Image gray_column(const Bytes &values) {
    const Image image(1, static_cast<int32_t>(values.size()), 11);
    for (size_t y = 0; y < values.size(); ++y) set_row(image, static_cast<int32_t>(y), {values[y]});
    return image;
}

inline Bytes row_of(const Image &image) {
    Bytes row = image.row(0);
    row.resize(static_cast<size_t>(image.width()));
    return row;
}

inline Bytes column_of(const Image &image) {
    Bytes column;
    for (int32_t y = 0; y < image.height(); ++y) column.push_back(image.row(y)[0]);
    return column;
}

} // namespace kzb::test
