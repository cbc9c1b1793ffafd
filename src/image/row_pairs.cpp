#include "image/row_pairs.h"
#include "image/mapped_store.h"

namespace kzb {

RowPairs::RowPairs(ImageRecord &image, ImageRecord &source) : image_(image), source_(&source) {
    same_file_ = image.IsMapping && source.IsMapping && image.storage_id == source.storage_id;
    // One record has one window, which two far rows would move to and fro.
    if (&image == &source && same_file_) source_ = &window_.emplace(source).image();
}

bool RowPairs::fetch(int32_t to, int32_t from) {
    target = walked_row(image_, to);
    // Two windows on one row would hide from the row functions that its bytes are the same.
    const bool same_row = same_file_ && int64_t{image_.RowOffset} + to == int64_t{source_->RowOffset} + from;
    row = same_row ? target : walked_row(*source_, from);
    return target != nullptr && row != nullptr;
}

} // namespace kzb
