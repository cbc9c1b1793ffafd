#include "image/row_window.h"

#include "image/mapped_store.h"

#include <algorithm>

namespace kzb {

namespace {

// Small, as several windows share the address space with the image's own block.
constexpr int32_t window_bytes = 4 << 20;
constexpr int32_t fewest_window_rows = 5;

} // namespace

RowWindow::RowWindow(ImageRecord &image) : image_(image), window_(image) {
    if (!image.IsMapping) return;
    open_window(window_, image);
    window_.rows_per_block = std::min(image.rows_per_block, std::max(window_bytes / image.RowSize, fewest_window_rows));
    window_.MappingBlockSize = window_.rows_per_block * image.RowSize;
}

RowWindow::~RowWindow() {
    unmap_block(window_);
}

} // namespace kzb
