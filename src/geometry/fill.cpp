#include "geometry/fill.h"

#include "geometry/rectangle.h"
#include "image/mapped_store.h"
#include "image/paced_image.h"
#include "image/storage.h"
#include "kernels/lanes.h"

#include <cstring>
#include <utility>

namespace kzb {

namespace {

// What becomes of a byte b: (b & keep) ^ flip.
struct Change {
    uint8_t keep;
    uint8_t flip;
};

constexpr Change complement = {0xff, 0xff};
constexpr Change set_to(int32_t value) {
    return {0, static_cast<uint8_t>(value)};
}

// Which channels change, and how, in the order in which a pixel is processed.
struct Changes {
    Channels channels;
    std::array<Change, 4> of;

    void add(Channel channel, Change change) {
        of[channels.size()] = change;
        channels.add(channel);
    }
};

Changes all_changed(const Channels &channels, Change change) {
    Changes changes;
    for (Channel channel : channels) changes.add(channel, change);
    return changes;
}

// Calls row(y) for the rows in ascending order, pacing the image, until it gives false.
template <class Row> void for_each_row(ImageRecord &image, Extent rows, Row row) {
    if (!usable(image)) return;
    PacedImage paced(image);
    if (!paced.pace()) return;
    for (int32_t i = 0; i < rows.length; ++i)
        if (!row(rows.start + i) || !paced.pace()) return;
}

void change_rectangle(ImageRecord &image, const Rectangle &area, const Changes &changes) {
    if (area.empty() || changes.channels.size() == 0) return;
    const ChannelOffsets offsets = offsets_of(image, changes.channels);
    const auto [low, high] = std::minmax_element(offsets.begin(), offsets.begin() + changes.channels.size());
    const auto step = static_cast<size_t>(image.PixelSize);
    kernels::Lanes keep;
    kernels::Lanes flip = {};
    keep.fill(0xff);
    for (size_t i = 0; i < changes.channels.size(); ++i) {
        const Change change = changes.of[i];
        // Channels of a view may lie at the same byte, which then changes once for each of them.
        for (auto lane = static_cast<size_t>(offsets[i] - *low); lane < keep.size(); lane += step) {
            keep[lane] &= change.keep;
            flip[lane] = (flip[lane] & change.keep) ^ change.flip;
        }
    }
    const int64_t first = static_cast<int64_t>(area.columns.start) * image.PixelSize + *low;
    // Rows without a gap between them are one row of many pixels.
    Extent rows = area.rows;
    auto pixels = static_cast<size_t>(area.columns.length);
    if (rows_at_once(image) && pixels * step == static_cast<size_t>(image.RowSize))
        pixels *= static_cast<size_t>(std::exchange(rows.length, 1));
    const size_t count = (pixels - 1) * step + static_cast<size_t>(*high - *low) + 1;
    const bool nothing_kept = keep == kernels::Lanes{};
    for_each_row(image, rows, [&](int32_t y) {
        uint8_t *row = walked_row(image, y);
        if (row == nullptr) return false;
        if (nothing_kept)
            kernels::set_lanes(row + first, count, flip);
        else
            kernels::change_lanes(row + first, count, keep, flip);
        return true;
    });
}

// Sets `count` bytes from byte `first` of each row on, as far as they lie inside the storage.
void set_bytes(ImageRecord &image, Extent rows, int64_t first, int64_t count, uint8_t value) {
    if (rows_at_once(image) && count >= image.RowSize && rows.length > 0)
        count += (std::exchange(rows.length, 1) - 1) * int64_t{image.RowSize};
    for_each_row(image, rows, [&](int32_t y) {
        for_each_run(image, y, first, count, [&](uint8_t *bytes, size_t size) { std::memset(bytes, value, size); });
        return true;
    });
}

void set_colours(ImageObject object, const Rectangle &area, int32_t red, int32_t green, int32_t blue,
                 const int32_t *alpha) {
    ImageRecord &image = *record_of(object);
    if (!image.HasRed || !image.HasGreen || !image.HasBlue) return;
    Changes changes;
    changes.add(Channel::red, set_to(red));
    changes.add(Channel::green, set_to(green));
    changes.add(Channel::blue, set_to(blue));
    if (alpha != nullptr && image.HasAlpha) changes.add(Channel::alpha, set_to(*alpha));
    change_rectangle(image, area, changes);
}

Rectangle whole(ImageObject object) {
    const ImageRecord &image = *record_of(object);
    return clip(image, 0, 0, image.Width, image.Height);
}

Rectangle area_of(ImageObject object, int32_t x, int32_t y, int32_t w, int32_t h) {
    return clip(*record_of(object), x, y, w, h);
}

void set_color(ImageObject object, const Rectangle &area, Color color, const int32_t *alpha) {
    const auto packed = static_cast<int32_t>(color);
    set_colours(object, area, packed >> 16, packed >> 8, packed, alpha);
}

} // namespace

void invert(ImageObject object) {
    const ImageRecord &image = *record_of(object);
    invert_rectangle(object, 0, 0, image.Width, image.Height);
}

void invert_rectangle(ImageObject object, int32_t x, int32_t y, int32_t w, int32_t h) {
    ImageRecord &image = *record_of(object);
    // With alpha, green is complemented twice: programs rely on its staying as it is.
    const Channels channels =
        image.HasAlpha && !image.IsGray && image.IsRGB ? Channels{Channel::red, Channel::blue} : channels_of(image);
    change_rectangle(image, clip(image, x, y, w, h), all_changed(channels, complement));
}

void clear(ImageObject object) {
    ImageRecord &image = *record_of(object);
    set_bytes(image, {0, image.Height}, 0, image.RowSize, 0);
}

void clear_rectangle(ImageObject object, int32_t x, int32_t y, int32_t width, int32_t height) {
    ImageRecord &image = *record_of(object);
    const Rectangle area = clip(image, x, y, width, height);
    if (area.empty()) return;
    set_bytes(image, area.rows, static_cast<int64_t>(area.columns.start) * image.PixelSize,
              static_cast<int64_t>(area.columns.length) * image.PixelSize, 0);
}

void fill(ImageObject object, int32_t value) {
    const ImageRecord &image = *record_of(object);
    fill_rectangle(object, 0, 0, image.Width, image.Height, value);
}

void fill_rectangle(ImageObject object, int32_t x, int32_t y, int32_t width, int32_t height, int32_t value) {
    ImageRecord &image = *record_of(object);
    const Rectangle area = clip(image, x, y, width, height);
    const Channels channels = channels_of(image);
    if (area.empty() || channels.size() == 0) return;
    if (static_cast<size_t>(image.PixelSize) != channels.size())
        return change_rectangle(image, area, all_changed(channels, set_to(value)));
    // Programs rely on the run's length.
    set_bytes(image, area.rows, static_cast<int64_t>(area.columns.start) * image.PixelSize, image.RowSize,
              static_cast<uint8_t>(value));
}

void fill_rgb(ImageObject object, int32_t red, int32_t green, int32_t blue) {
    set_colours(object, whole(object), red, green, blue, nullptr);
}

void fill_rgba(ImageObject object, int32_t red, int32_t green, int32_t blue, int32_t alpha) {
    set_colours(object, whole(object), red, green, blue, &alpha);
}

void fill_rectangle_rgb(ImageObject object, int32_t x, int32_t y, int32_t width, int32_t height, int32_t red,
                        int32_t green, int32_t blue) {
    set_colours(object, area_of(object, x, y, width, height), red, green, blue, nullptr);
}

void fill_rectangle_rgba(ImageObject object, int32_t x, int32_t y, int32_t width, int32_t height, int32_t red,
                         int32_t green, int32_t blue, int32_t alpha) {
    set_colours(object, area_of(object, x, y, width, height), red, green, blue, &alpha);
}

void fill_color(ImageObject object, Color color) {
    set_color(object, whole(object), color, nullptr);
}

void fill_color_with_alpha(ImageObject object, Color color, int32_t alpha) {
    set_color(object, whole(object), color, &alpha);
}

void fill_rectangle_color(ImageObject object, int32_t x, int32_t y, int32_t width, int32_t height, Color color) {
    set_color(object, area_of(object, x, y, width, height), color, nullptr);
}

void fill_rectangle_color_with_alpha(ImageObject object, int32_t x, int32_t y, int32_t width, int32_t height,
                                     Color color, int32_t alpha) {
    set_color(object, area_of(object, x, y, width, height), color, &alpha);
}

} // namespace kzb
