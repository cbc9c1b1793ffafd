#include "image/lifecycle.h"

#include "host/reference.h"
#include "image/format.h"
#include "image/mapped_store.h"
#include "platform/buffer.h"
#include "platform/large_pages.h"

namespace kzb {

namespace {

constexpr int64_t row_alignment = 64;

// Drops the reference that a record's field holds.
template <class T> void drop(T &field) {
    Reference<T>::adopt(std::exchange(field, nullptr));
}

// Drops a view's parent. The parent may go with it and drop its own, and so on: however long the chain, one at a time.
void drop_parent(ImageObject &field) {
    static constinit bool dropping = false;
    static constinit ImageObject next = nullptr;
    ImageObject parent = std::exchange(field, nullptr);
    if (dropping && next == nullptr) {
        next = parent;
        return;
    }
    const bool outermost = !std::exchange(dropping, true);
    drop(parent);
    if (!outermost) return;
    while (next != nullptr) {
        ImageObject following = std::exchange(next, nullptr);
        drop(following);
    }
    dropping = false;
}

int64_t row_size_of(int32_t width, int32_t pixel_size) {
    return (static_cast<int64_t>(width) * pixel_size + row_alignment - 1) / row_alignment * row_alignment;
}

} // namespace

bool fits_in_memory(int32_t width, int32_t height, int32_t pixel_size) {
    const int64_t row_size = row_size_of(width, pixel_size);
    return row_size <= INT32_MAX && row_size * height <= INT32_MAX;
}

uint8_t *memory_row(ImageRecord &image, int32_t row) {
    return image.pixel_buffer + (static_cast<int64_t>(image.RowOffset) + row) * image.RowSize;
}

void begin_construction(ImageRecord &image) {
    // A view of an image without storage has none either, but a parent.
    if (image.storage_id != 0 || image.Parent != nullptr) close_record(image);
    image.Valid = 0;
    image.IsMapping = 0;
    image.delete_backing_file = 0;
    image.MappingBlockSize = 0;
    image.rows_per_block = 0;
    image.RowOffset = 0;
    image.TotalSize = 0;
    image.original_total_size = 0;
}

void construct_in_memory(ImageObject object, int32_t width, int32_t height, int32_t image_format) {
    ImageRecord &image = *record_of(object);
    begin_construction(image);
    if (!fill_format_descriptor(&image, width, height, image_format)) return;
    if (width < 0 || height < 0) return;
    if (!fits_in_memory(width, height, image.PixelSize)) return;
    const int64_t row_size = row_size_of(width, image.PixelSize);
    Buffer<uint8_t> pixels(row_size * height);
    if (!pixels) return;
    prefer_large_pages(pixels.get(), row_size * height);
    image.pixel_buffer = pixels.release();
    image.owns_buffer = 1;
    image.TotalSize = row_size * height;
    image.RowSize = static_cast<int32_t>(row_size);
    image.row_accessor = memory_row;
    image.rows_per_block = height;
    image.storage_id = next_storage_id();
    image.Valid = 1;
}

void construct_over_block(ImageObject object, MemoryBlock block, int32_t width, int32_t height, int32_t image_format,
                          int32_t row_size) {
    ImageRecord &image = *record_of(object);
    // The block may be the very one that the image holds.
    auto held = Reference<MemoryBlock>::share(block);
    begin_construction(image);
    if (!held) return;
    if (!fill_format_descriptor(&image, width, height, image_format)) return;
    if (width < 0 || height < 0 || row_size < 0) return;
    const int64_t size = static_cast<int64_t>(row_size) * height;
    if (size >= int64_t{1} << 32 || static_cast<int64_t>(width) * image.PixelSize > INT32_MAX) return;
    void *bytes = memoryBlockGetPtr(block);
    if (bytes == nullptr) return;
    image.MemoryTarget = held.release();
    image.pixel_buffer = static_cast<uint8_t *>(bytes);
    image.owns_buffer = 0;
    image.rows_per_block = height;
    image.TotalSize = size;
    image.RowSize = row_size;
    image.row_accessor = memory_row;
    image.storage_id = next_storage_id();
    image.Valid = 1;
}

void close_record(ImageRecord &image) {
    image.storage_id = 0;
    if (image.owns_buffer && image.pixel_buffer != nullptr) std::free(std::exchange(image.pixel_buffer, nullptr));
    unmap_block(image);
    if (image.delete_backing_file && image.IsMapping) discard_backing_file(image);
    image.owns_buffer = 0;
    image.pixel_buffer = nullptr;
    image.row_accessor = nullptr;
    drop_parent(image.Parent);
    drop(image.MemoryTarget);
    drop(image.backing_folder_item);
    drop(image.Target);
    std::free(std::exchange(image.backing_file_path, nullptr));
}

void close_image(ImageObject object) {
    close_record(*record_of(object));
}

MemoryBlock image_memory(ImageObject object, word) {
    const ImageRecord &image = *record_of(object);
    return PtrToMemoryBlock(storage_present(image) ? image.pixel_buffer : nullptr);
}

int64_t image_total_size(ImageObject object, word) {
    const ImageRecord &image = *record_of(object);
    return image.original_total_size != 0 ? image.original_total_size : image.TotalSize;
}

} // namespace kzb
