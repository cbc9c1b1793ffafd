#include "interop/import_export.h"

#include "geometry/extent.h"
#include "image/channels.h"
#include "image/format.h"
#include "image/lifecycle.h"
#include "image/mapped_store.h"
#include "image/paced_image.h"
#include "interop/picture_builder.h"
#include "interop/picture_reader.h"

namespace kzb {

namespace {

constexpr int32_t exchange_pixel_size = 4;
constexpr int32_t debug_picture_size = 512;

// A host picture of the rectangle whose red, green and blue are these three channels of the image; nil when the image
// is not usable or a yield changes that.
Reference<Picture> picture_of(ImageRecord &image, int32_t x, int32_t y, int32_t w, int32_t h,
                              const Channels &as_colours) {
    const Extent columns = cut_to(image.Width, x, w);
    const Extent rows = cut_to(image.Height, y, h);
    if (columns.length < 1 || rows.length < 1 || !usable(image)) return {};
    PacedImage paced(image);
    PictureBuilder builder;
    if (!paced.pace() || !builder.open(columns.length, rows.length) || !paced.pace()) return {};
    const ChannelOffsets offsets = offsets_of(image, as_colours);
    for (int32_t r = 0; r < rows.length; ++r) {
        const uint8_t *pixel = walked_row(image, rows.start + r);
        if (pixel == nullptr) return {};
        pixel += static_cast<int64_t>(columns.start) * image.PixelSize;
        uint8_t *target = builder.row(r);
        for (int32_t k = 0; k < columns.length; ++k, pixel += image.PixelSize, target += exchange_pixel_size) {
            target[0] = 0;
            for (size_t i = 0; i < 3; ++i) target[1 + i] = pixel[offsets[i]];
        }
        if (!paced.pace()) return {};
    }
    return builder.finish();
}

Reference<Picture> colours_of(ImageRecord &image, int32_t x, int32_t y, int32_t w, int32_t h) {
    if (image.IsGray) return picture_of(image, x, y, w, h, {Channel::gray, Channel::gray, Channel::gray});
    if (image.IsRGB) return picture_of(image, x, y, w, h, {Channel::red, Channel::green, Channel::blue});
    return {};
}

Reference<Picture> alpha_of(ImageRecord &image, int32_t x, int32_t y, int32_t w, int32_t h) {
    if (!image.HasAlpha) return {};
    return picture_of(image, x, y, w, h, {Channel::alpha, Channel::alpha, Channel::alpha});
}

} // namespace

void construct_on_picture(ImageObject object, Picture picture, Boolean use_alpha) {
    ImageRecord &image = *record_of(object);
    // The picture may be the very one that the image holds.
    auto held = Reference<Picture>::share(picture);
    begin_construction(image);
    PictureDescription description = {};
    if (!held || !lockPictureDescription(picture, &description)) return;
    // The picture is kept alive, and with it the addresses of the description.
    unlockPictureDescription(picture, &description);
    if (description.kind != KZB_PICTURE_GWORLD || description.port == nullptr) return;
    PixMapHandle map = GetPortPixMap(static_cast<GWorldPtr>(description.port));
    if (map == nullptr) return;
    auto *base = reinterpret_cast<uint8_t *>(GetPixBaseAddr(map));
    if (base == nullptr) return;
    const int16_t depth = GetPixDepth(map);
    if (depth != 32 && depth != 24) return;
    const int32_t image_format = depth == 24 ? ImageFormatRGB : use_alpha ? ImageFormatARGB : ImageFormatXRGB;
    const auto row_size = static_cast<int32_t>(GetPixRowBytes(map));
    if (description.width < 0 || description.height < 0 || row_size < 0) return;
    fill_format_descriptor(&image, static_cast<int32_t>(description.width), static_cast<int32_t>(description.height),
                           image_format);
    image.RowSize = row_size;
    image.TotalSize = static_cast<int64_t>(row_size) * image.Height;
    image.pixel_buffer = base;
    image.owns_buffer = 0;
    image.rows_per_block = image.Height;
    image.row_accessor = memory_row;
    image.Target = held.release();
    image.storage_id = next_storage_id();
    image.Valid = 1;
}

Picture copy_picture_rectangle(ImageObject image, int32_t x, int32_t y, int32_t w, int32_t h) {
    return colours_of(*record_of(image), x, y, w, h).release();
}

Picture copy_picture(ImageObject image) {
    const ImageRecord &record = *record_of(image);
    return copy_picture_rectangle(image, 0, 0, record.Width, record.Height);
}

Picture copy_mask_rectangle(ImageObject image, int32_t x, int32_t y, int32_t w, int32_t h) {
    return alpha_of(*record_of(image), x, y, w, h).release();
}

Picture copy_mask(ImageObject image) {
    const ImageRecord &record = *record_of(image);
    return copy_mask_rectangle(image, 0, 0, record.Width, record.Height);
}

Picture copy_picture_with_mask_rectangle(ImageObject image, int32_t x, int32_t y, int32_t w, int32_t h) {
    ImageRecord &record = *record_of(image);
    auto picture = colours_of(record, x, y, w, h);
    auto mask = alpha_of(record, x, y, w, h);
    // With the size as it was asked for, not as it was cut.
    attach_mask(picture.get(), mask.get(), w, h);
    return picture.release();
}

Picture copy_picture_with_mask(ImageObject image) {
    const ImageRecord &record = *record_of(image);
    return copy_picture_with_mask_rectangle(image, 0, 0, record.Width, record.Height);
}

Picture debug_picture(ImageObject image, word) {
    if (!record_of(image)->DebugPictureEnabled) return nullptr;
    return copy_picture_with_mask_rectangle(image, 0, 0, debug_picture_size, debug_picture_size);
}

} // namespace kzb
