// Rows of two images at once.
#pragma once

#include "image/row_window.h"

#include <optional>

namespace kzb {

// Pairs of rows of a destination and a source that may be one image, or views of one file. Lives within one operation.
class RowPairs {
public:
    RowPairs(ImageRecord &image, ImageRecord &source);

    // False when a row cannot be reached. The addresses are void at the next call.
    [[nodiscard]] bool fetch(int32_t to, int32_t from);

    uint8_t *target = nullptr;
    const uint8_t *row = nullptr;

private:
    ImageRecord &image_;
    ImageRecord *source_;
    std::optional<RowWindow> window_;
    bool same_file_;
};

} // namespace kzb
