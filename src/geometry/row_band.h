// Rows of an image that lie in reach at the same time.
#pragma once

#include "image/mapped_store.h"

#include <algorithm>

namespace kzb {

// `count` rows from `first` on, RowSize bytes apart; nil where there are none. Void at the next call for the same
// image.
struct RowBand {
    uint8_t *first = nullptr;
    int32_t count = 0;
};

// The rows from `row`, which lies at `first`, down to the image's last that are in reach with it: all in memory, those
// of the mapped block in a file-backed image.
inline RowBand rows_in_reach(const ImageRecord &image, int32_t row, uint8_t *first) {
    if (first == nullptr) return {};
    int64_t count = int64_t{image.Height} - row;
    if (image.IsMapping) count = std::min(count, image.last_mapped_row - (int64_t{image.RowOffset} + row) + 1);
    return {first, static_cast<int32_t>(count)};
}

// The rows from `row` on, for loops that go from band to band.
inline RowBand rows_from(ImageRecord &image, int32_t row) {
    return rows_in_reach(image, row, walked_row(image, row));
}

// The rows `row` to `last`, mapping a block that starts near `row` where the mapped one ends too early; none when no
// block holds them all.
inline RowBand rows_between(ImageRecord &image, int32_t row, int32_t last) {
    RowBand band = rows_in_reach(image, row, image.row_accessor(image, row));
    if (band.first != nullptr && band.count <= last - row) {
        image.row_accessor(image, last);
        band = rows_in_reach(image, row, image.row_accessor(image, row));
    }
    return band.count > last - row ? band : RowBand{};
}

} // namespace kzb
