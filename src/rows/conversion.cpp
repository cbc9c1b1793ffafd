#include "rows/conversion.h"

#include "host/bridges.h"
#include "host/reference.h"
#include "image/format.h"
#include "image/mapped_store.h"
#include "image/pixel_conversion.h"
#include "platform/buffer.h"
#include "platform/large_pages.h"
#include "rows/row_access.h"

#include <optional>

namespace kzb {

namespace {

constexpr uint8_t invert = 0xFF;

// One row from one layout to another, which may be the image's own bytes; false, with nothing written, when one of the
// two is neither gray nor colour.
bool convert_row(uint8_t *target, const ImageRecord &to, const uint8_t *source, const ImageRecord &from,
                 uint8_t alpha_flip, int32_t width) {
    const kernels::Conversion conversion = conversion_between(to, from, alpha_flip);
    kernels::convert(target, source, conversion, static_cast<size_t>(width));
    return conversion.channels != 0;
}

// The layout that user code named, for rows as wide as the image's; none when it is no layout.
std::optional<ImageRecord> packed_layout(const ImageRecord &image, int32_t image_format) {
    ImageRecord layout = {};
    if (!fill_format_descriptor(&layout, image.Width, 1, image_format)) return std::nullopt;
    return layout;
}

int64_t packed_row_size(const ImageRecord &layout) {
    return static_cast<int64_t>(layout.Width) * layout.PixelSize;
}

// The bytes of a row that user code assigns to, with the checks of the setters in their order.
uint8_t *assigned_row(ImageRecord &image, int32_t index, bool nil) {
    if (nil) {
        raise_nil_object(memory_block_is_nil);
        return nullptr;
    }
    return image.Valid ? indexed_row(image, index) : nullptr;
}

void assign_row(uint8_t *target, const ImageRecord &image, const void *bytes, int32_t image_format,
                uint8_t alpha_flip) {
    const auto layout = packed_layout(image, image_format);
    if (!layout) return;
    convert_row(target, image, static_cast<const uint8_t *>(bytes), *layout, alpha_flip, image.Width);
}

MemoryBlock converted_block(ImageObject object, int32_t index, int32_t image_format, uint8_t alpha_flip) {
    ImageRecord &image = *record_of(object);
    if (!image.Valid) return nullptr;
    const uint8_t *row = indexed_row(image, index);
    if (row == nullptr) return nullptr;
    const auto layout = packed_layout(image, image_format);
    if (!layout || packed_row_size(*layout) > INT32_MAX) return nullptr;
    auto block = Reference<MemoryBlock>::adopt(newMemoryBlock(static_cast<int32_t>(packed_row_size(*layout))));
    if (!block) return nullptr;
    auto *target = static_cast<uint8_t *>(memoryBlockGetPtr(block.get()));
    if (target == nullptr) return nullptr;
    if (!convert_row(target, *layout, row, image, alpha_flip, image.Width)) return nullptr;
    return block.release();
}

void assign_block(ImageObject object, int32_t index, int32_t image_format, uint8_t alpha_flip, MemoryBlock block) {
    ImageRecord &image = *record_of(object);
    uint8_t *target = assigned_row(image, index, block == nullptr);
    if (target == nullptr) return;
    const void *bytes = memoryBlockGetPtr(block);
    if (bytes != nullptr) assign_row(target, image, bytes, image_format, alpha_flip);
}

} // namespace

MemoryBlock row_in_format(ImageObject image, int32_t index, int32_t image_format) {
    return converted_block(image, index, image_format, 0);
}

void set_row_in_format(ImageObject image, int32_t index, int32_t image_format, MemoryBlock block) {
    assign_block(image, index, image_format, 0, block);
}

MemoryBlock row_in_format_inverting(ImageObject image, int32_t index, int32_t image_format, Boolean invert_alpha) {
    return converted_block(image, index, image_format, invert_alpha ? invert : uint8_t{0});
}

void set_row_in_format_inverting(ImageObject image, int32_t index, int32_t image_format, Boolean invert_alpha,
                                 MemoryBlock block) {
    assign_block(image, index, image_format, invert_alpha ? invert : uint8_t{0}, block);
}

String row_string_in_format(ImageObject object, int32_t index, int32_t image_format) {
    ImageRecord &image = *record_of(object);
    if (!image.Valid) return nullptr;
    const uint8_t *row = indexed_row(image, index);
    if (row == nullptr) return nullptr;
    const auto layout = packed_layout(image, image_format);
    if (!layout || packed_row_size(*layout) > INT32_MAX) return nullptr;
    Buffer<uint8_t> bytes(packed_row_size(*layout));
    if (!bytes || !convert_row(bytes.get(), *layout, row, image, 0, image.Width)) return nullptr;
    return make_string(bytes.get(), static_cast<int32_t>(packed_row_size(*layout)), KZB_ENCODING_UNKNOWN);
}

void set_row_string_in_format(ImageObject object, int32_t index, int32_t image_format, String string) {
    ImageRecord &image = *record_of(object);
    uint8_t *target = assigned_row(image, index, string == nullptr);
    if (target != nullptr && string->text != nullptr) assign_row(target, image, string->text, image_format, 0);
}

String data_string_in_format(ImageObject object, int32_t image_format) {
    ImageRecord &image = *record_of(object);
    if (!image.Valid || !storage_present(image)) return nullptr;
    const auto layout = packed_layout(image, image_format);
    if (!layout) return nullptr;
    // More than a string can hold is not begun; the row's size is at most 2^35.
    const int64_t row_size = packed_row_size(*layout);
    if (image.Height < 0 || row_size > INT32_MAX || row_size * image.Height > INT32_MAX) return nullptr;
    Buffer<uint8_t> bytes(row_size * image.Height);
    if (!bytes) return nullptr;
    prefer_large_pages(bytes.get(), row_size * image.Height);
    for (int32_t y = 0; y < image.Height; ++y) {
        const uint8_t *row = walked_row(image, y);
        if (row == nullptr || !convert_row(bytes.get() + y * row_size, *layout, row, image, 0, image.Width))
            return nullptr;
    }
    return make_string(bytes.get(), static_cast<int32_t>(row_size * image.Height), KZB_ENCODING_UNKNOWN);
}

void set_data_string_in_format(ImageObject object, int32_t image_format, String string) {
    ImageRecord &image = *record_of(object);
    if (string == nullptr) return raise_nil_object(memory_block_is_nil);
    if (!image.Valid || !storage_present(image) || string->text == nullptr) return;
    const auto layout = packed_layout(image, image_format);
    if (!layout) return;
    const auto *bytes = reinterpret_cast<const uint8_t *>(string->text);
    for (int32_t y = 0; y < image.Height; ++y) {
        uint8_t *row = walked_row(image, y);
        if (row == nullptr || !convert_row(row, image, bytes + y * packed_row_size(*layout), *layout, 0, image.Width))
            return;
    }
}

} // namespace kzb
