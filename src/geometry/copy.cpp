#include "geometry/copy.h"

#include "geometry/rectangle.h"
#include "image/paced_image.h"
#include "image/pixel_conversion.h"
#include "image/row_pairs.h"
#include "image/storage.h"

#include <utility>

namespace kzb {

namespace {

// Whether rows of this many pixels follow each other without a gap.
bool gapless(const ImageRecord &image, int32_t width) {
    return static_cast<int64_t>(width) * image.PixelSize == image.RowSize;
}

} // namespace

void copy_pixels_rectangle(ImageObject object, ImageObject source_object, int32_t dest_x, int32_t dest_y,
                           int32_t dest_width, int32_t dest_height, int32_t source_x, int32_t source_y) {
    if (source_object == nullptr) return;
    ImageRecord &image = *record_of(object);
    ImageRecord &source = *record_of(source_object);
    if (!source.Valid || !usable(image)) return;
    PacedImage paced(image);
    if (!paced.pace() || !usable(source)) return;
    PacedImage paced_source(source);
    if (!paced_source.pace() || !paced.unchanged()) return;

    const CopyExtent columns = clip_copy(image.Width, source.Width, dest_x, dest_width, source_x);
    const CopyExtent rows = clip_copy(image.Height, source.Height, dest_y, dest_height, source_y);
    const kernels::Conversion conversion = conversion_between(image, source);
    if (columns.length < 1 || rows.length < 1 || conversion.channels == 0) return;
    const int64_t target_byte = static_cast<int64_t>(columns.to) * image.PixelSize;
    const int64_t source_byte = static_cast<int64_t>(columns.from) * source.PixelSize;
    auto pixels = static_cast<size_t>(columns.length);
    int32_t row_count = rows.length;
    if (gapless(image, columns.length) && gapless(source, columns.length) && rows_at_once(image) && !source.IsMapping &&
        sharing_of(image, source, {}) == Sharing::none)
        pixels *= static_cast<size_t>(std::exchange(row_count, 1));
    RowPairs pairs(image, source);
    for (int32_t i = 0; i < row_count; ++i) {
        if (!pairs.fetch(rows.to + i, rows.from + i)) return;
        kernels::convert(pairs.target + target_byte, pairs.row + source_byte, conversion, pixels);
        if (!paced.pace() || !paced_source.unchanged()) return;
    }
}

void copy_pixels_from_corner(ImageObject object, ImageObject source, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                             int32_t dest_height) {
    copy_pixels_rectangle(object, source, dest_x, dest_y, dest_width, dest_height, 0, 0);
}

void copy_pixels(ImageObject object, ImageObject source) {
    const ImageRecord &image = *record_of(object);
    copy_pixels_rectangle(object, source, 0, 0, image.Width, image.Height, 0, 0);
}

} // namespace kzb
