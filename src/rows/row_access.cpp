#include "rows/row_access.h"

#include "host/bridges.h"
#include "host/entry_points.h"

#include <cstring>

namespace kzb {

namespace {

// Raises for an index without a row.
bool in_bounds(const ImageRecord &image, int32_t index) {
    if (index >= 0 && index < image.Height) return true;
    raise_out_of_bounds(index_out_of_bounds);
    return false;
}

uint8_t *row_if_present(ImageRecord &image, int32_t index) {
    return storage_present(image) ? image.row_accessor(image, index) : nullptr;
}

} // namespace

uint8_t *indexed_row(ImageRecord &image, int32_t index) {
    return in_bounds(image, index) ? row_if_present(image, index) : nullptr;
}

MemoryBlock raw_row(ImageObject object, int32_t index) {
    ImageRecord &image = *record_of(object);
    if (!image.Valid) return nullptr;
    uint8_t *address = indexed_row(image, index);
    return address == nullptr ? nullptr : PtrToMemoryBlock(address);
}

MemoryBlock row(ImageObject object, int32_t index) {
    ImageRecord &image = *record_of(object);
    if (!image.Valid) return nullptr;
    return make_memory_block(indexed_row(image, index), image.RowSize);
}

void set_row(ImageObject object, int32_t index, MemoryBlock block) {
    ImageRecord &image = *record_of(object);
    if (!in_bounds(image, index)) return;
    if (block == nullptr) return raise_nil_object(memory_block_is_nil);
    uint8_t *target = row_if_present(image, index);
    const void *bytes = memoryBlockGetPtr(block);
    if (target == nullptr || bytes == nullptr) return;
    std::memmove(target, bytes, static_cast<size_t>(image.RowSize));
}

} // namespace kzb
