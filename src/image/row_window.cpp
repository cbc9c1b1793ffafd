#include "image/row_window.h"

#include "image/mapped_store.h"

#include <algorithm>

namespace kzb {

namespace {

// As large as the image's own block; small where several of them share an address space of 32 bits.
constexpr int32_t window_bytes = sizeof(void *) > 4 ? INT32_MAX : 4 << 20;
constexpr int32_t fewest_window_rows = 5;

} // namespace

RowWindow::RowWindow(ImageRecord &image) : image_(image), window_(image) {
    if (!image.IsMapping) return;
    open_window(window_, image);
    const int32_t rows = std::max(window_bytes / image.RowSize, fewest_window_rows);
    if (rows >= image.rows_per_block) return;
    window_.rows_per_block = rows;
    window_.MappingBlockSize = rows * image.RowSize;
}

RowWindow::~RowWindow() {
    unmap_block(window_);
}

} // namespace kzb
