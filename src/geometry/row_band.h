// Rows of an image that lie in reach at the same time.
#pragma once

#include "image/record.h"

#include <algorithm>

namespace kzb {

// `count` rows from `first` on, RowSize bytes apart; nil where there are none. Void at the next call for the same
// image.
struct RowBand {
    uint8_t *first = nullptr;
    int32_t count = 0;
};

// The rows from `row` on, down to the image's last, that are in reach with it: all in memory, those of the mapped block
// in a file-backed image.
inline RowBand rows_from(ImageRecord &image, int32_t row) {
    uint8_t *first = image.row_accessor(image, row);
    if (first == nullptr) return {};
    int64_t count = int64_t{image.Height} - row;
    if (image.IsMapping) count = std::min(count, image.last_mapped_row - (int64_t{image.RowOffset} + row) + 1);
    return {first, static_cast<int32_t>(count)};
}

// The rows `row` to `last`, mapping a block that starts near `row` where the mapped one ends too early; none when no
// block holds them all.
inline RowBand rows_between(ImageRecord &image, int32_t row, int32_t last) {
    RowBand band = rows_from(image, row);
    if (band.first != nullptr && band.count <= last - row) {
        image.row_accessor(image, last);
        band = rows_from(image, row);
    }
    return band.count > last - row ? band : RowBand{};
}

// A row, for loops that go upwards: a block that is mapped for it holds the rows above it.
inline uint8_t *row_upwards(ImageRecord &image, int32_t row) {
    const int64_t storage_row = int64_t{image.RowOffset} + row;
    if (image.IsMapping && (storage_row < image.first_mapped_row || storage_row > image.last_mapped_row)) {
        // Blocks start two rows above the row they are mapped for.
        constexpr int32_t lead = 2;
        image.row_accessor(image, std::max(row - (image.rows_per_block - 1 - lead), 0));
    }
    return image.row_accessor(image, row);
}

} // namespace kzb
