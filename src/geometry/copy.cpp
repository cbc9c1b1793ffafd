#include "geometry/copy.h"

#include "geometry/rectangle.h"
#include "image/channels.h"
#include "image/mapped_store.h"
#include "image/paced_image.h"
#include "kernels/copy_channels.h"

#include <optional>

namespace kzb {

namespace {

// Which channels of the source become which of the image; none for layouts that do not fit.
struct Conversion {
    Channels to;
    Channels from;
    bool to_gray;
};

Conversion conversion_between(const ImageRecord &image, const ImageRecord &source) {
    Conversion conversion = {colour_channels_of(image), colour_channels_of(source), false};
    if (conversion.to.size() == 0 || conversion.from.size() == 0) return {};
    conversion.to_gray = conversion.to.size() < conversion.from.size();
    if (conversion.from.size() == 1 && conversion.to.size() == 3)
        conversion.from = {Channel::gray, Channel::gray, Channel::gray};
    if (image.HasAlpha && source.HasAlpha) {
        conversion.to.add(Channel::alpha);
        conversion.from.add(Channel::alpha);
    }
    return conversion;
}

// The two images' rows, a pair at a time.
class RowPairs {
public:
    RowPairs(ImageRecord &image, ImageRecord &source) : image_(image), source_(&source) {
        same_file_ = image.IsMapping && source.IsMapping && image.storage_id == source.storage_id;
        // One record has one window, which two far rows would move to and fro.
        if (&image == &source && same_file_) source_ = &window_.emplace(source).record();
    }

    // False when a row cannot be reached. The addresses are void at the next call.
    bool fetch(int32_t to, int32_t from) {
        target = image_.row_accessor(image_, to);
        // Two windows on one row would hide from the row functions that its bytes are the same.
        const bool same_row = same_file_ && int64_t{image_.RowOffset} + to == int64_t{source_->RowOffset} + from;
        row = same_row ? target : source_->row_accessor(*source_, from);
        return target != nullptr && row != nullptr;
    }

    uint8_t *target = nullptr;
    const uint8_t *row = nullptr;

private:
    ImageRecord &image_;
    ImageRecord *source_;
    std::optional<SecondWindow> window_;
    bool same_file_;
};

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
    const Conversion conversion = conversion_between(image, source);
    if (columns.length < 1 || rows.length < 1 || conversion.to.size() == 0) return;

    const kernels::Placement to = {static_cast<size_t>(image.PixelSize), offsets_of(image, conversion.to)};
    const kernels::Placement from = {static_cast<size_t>(source.PixelSize), offsets_of(source, conversion.from)};
    const int64_t target_byte = static_cast<int64_t>(columns.to) * image.PixelSize;
    const int64_t source_byte = static_cast<int64_t>(columns.from) * source.PixelSize;
    const auto count = static_cast<size_t>(columns.length);
    RowPairs pairs(image, source);
    for (int32_t i = 0; i < rows.length; ++i) {
        if (!pairs.fetch(rows.to + i, rows.from + i)) return;
        uint8_t *target = pairs.target + target_byte;
        const uint8_t *row = pairs.row + source_byte;
        if (conversion.to_gray)
            kernels::copy_as_gray(target, to, row, from, conversion.to.size() == 2, count);
        else
            kernels::copy_channels(target, to, row, from, conversion.to.size(), count);
        if (!paced.pace() || !paced_source.unchanged()) return;
    }
}

void copy_pixels_from_corner(ImageObject object, ImageObject source, int32_t dest_x, int32_t dest_y,
                             int32_t dest_width, int32_t dest_height) {
    copy_pixels_rectangle(object, source, dest_x, dest_y, dest_width, dest_height, 0, 0);
}

void copy_pixels(ImageObject object, ImageObject source) {
    const ImageRecord &image = *record_of(object);
    copy_pixels_rectangle(object, source, 0, 0, image.Width, image.Height, 0, 0);
}

} // namespace kzb
