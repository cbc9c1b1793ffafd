#include "geometry/scale_fast.h"

#include "image/paced_image.h"
#include "image/pixel_conversion.h"
#include "image/row_pairs.h"
#include "image/storage.h"
#include "kernels/pick.h"

#include <algorithm>

namespace kzb {

namespace {

// Compared without sign: a negative number counts as huge.
int32_t smaller(int32_t a, int32_t b) {
    return static_cast<int32_t>(std::min(static_cast<uint32_t>(a), static_cast<uint32_t>(b)));
}

class FastScaling {
public:
    FastScaling(ImageRecord &source, ImageRecord &destination, const kernels::Conversion &conversion, int32_t width,
                int32_t height)
        : source_(source), destination_(destination), conversion_(conversion), width_(width),
          step_x_(static_cast<double>(source.Width) / width), step_y_(static_cast<double>(source.Height) / height),
          rows_(destination, source) {}

    // False when a row cannot be reached.
    [[nodiscard]] bool make_row(int32_t y);

private:
    static constexpr int32_t strip = 2048;

    bool first_pixel_inside(int32_t source_y) const;
    const int32_t *places_from(int32_t x, size_t count);

    ImageRecord &source_, &destination_;
    const kernels::Conversion conversion_;
    const int32_t width_;
    const double step_x_, step_y_;
    RowPairs rows_;
    int32_t places_[strip];
    int32_t first_place_ = -1; // the column that they begin with
};

// Of rows no wider than a strip the places are found once.
const int32_t *FastScaling::places_from(int32_t x, size_t count) {
    if (first_place_ != x) kernels::step_places(places_, x, step_x_, source_.PixelSize, count);
    first_place_ = x;
    return places_;
}

bool FastScaling::make_row(int32_t y) {
    // The steps stay below the source's size: the distance to it is far more than the rounding of a product.
    const auto source_y = static_cast<int32_t>(y * step_y_);
    // A view without columns is sampled where its first would be.
    if (source_.Width == 0 && !first_pixel_inside(source_y)) return true;
    if (!rows_.fetch(y, source_y)) return false;
    for (int32_t x = 0; x < width_; x += strip) {
        const auto count = static_cast<size_t>(std::min(strip, width_ - x));
        kernels::pick(rows_.target + static_cast<int64_t>(x) * destination_.PixelSize, rows_.row, places_from(x, count),
                      conversion_, count);
    }
    return true;
}

// Whether all the channels that are read lie inside the storage.
bool FastScaling::first_pixel_inside(int32_t source_y) const {
    const size_t channels = conversion_.to_gray ? conversion_.channels + 2 : conversion_.channels;
    const auto &offsets = conversion_.from.offsets;
    return std::all_of(offsets.begin(), offsets.begin() + channels,
                       [&](int32_t offset) { return byte_at(source_, source_y, offset) != nullptr; });
}

} // namespace

Boolean scale_fast(ImageObject image, ImageObject source_object, int32_t width, int32_t height) {
    if (image == nullptr || source_object == nullptr) return 0;
    ImageRecord &source = *record_of(source_object), &destination = *record_of(image);
    if (!source.Valid || !destination.Valid) return 0;
    const int32_t w = smaller(destination.Width, width);
    const int32_t h = smaller(destination.Height, height);
    if (w < 1 || h < 1) return 0;
    kernels::Conversion conversion = conversion_between(destination, source);
    if (conversion.channels == 0) return 0;
    // Alpha stays with gray.
    if (source.IsGray && destination.IsRGB) conversion.channels = 3;
    PacedImage paced_source(source), paced_destination(destination);
    if (!usable(source) || !paced_source.pace() || !usable(destination) || !paced_destination.pace() ||
        !paced_source.unchanged())
        return 0;

    FastScaling scaling(source, destination, conversion, w, h);
    for (int32_t y = 0; y < h; ++y)
        if (!scaling.make_row(y) || !paced_destination.pace() || !paced_source.unchanged()) return 0;
    return 1;
}

} // namespace kzb
