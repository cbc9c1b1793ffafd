#include "filters/tables.h"
#include "filters/tone.h"
#include "geometry/extent.h"
#include "image/bytes.h"
#include "image/mapped_store.h"
#include "image/paced_image.h"
#include "kernels/brightness.h"

namespace kzb {

namespace {

using Counts = kernels::BrightnessCounts;

// The largest level at or below which no more than `limit` pixels lie, or 0.
int32_t last_level_within(const Counts &cumulative, int64_t limit) {
    int32_t level = 0;
    for (int32_t i = 0; i < 256; ++i)
        if (cumulative[static_cast<size_t>(i)] <= limit) level = i;
    return level;
}

Table stretch_table(const Counts &cumulative) {
    const auto count = static_cast<float>(cumulative[255]);
    const int32_t low = last_level_within(cumulative, static_cast<int64_t>(count * 0.005f));
    const int32_t high = last_level_within(cumulative, static_cast<int64_t>(count * 0.995f));
    const double scale = 255.0 / (high - low);
    Table table;
    for (int32_t v = 0; v < 256; ++v)
        table[static_cast<size_t>(v)] = v < low ? uint8_t{0} : v > high ? uint8_t{255} : byte_from((v - low) * scale);
    return table;
}

} // namespace

Boolean auto_level(ImageObject object) {
    const ImageRecord &image = *record_of(object);
    return auto_level_rectangle(object, 0, 0, image.Width, image.Height);
}

Boolean auto_level_rectangle(ImageObject object, int32_t x, int32_t y, int32_t w, int32_t h) {
    ImageRecord &image = *record_of(object);
    if (!image.IsRGB || !image.Valid) return 0;
    const Extent columns = cut_to(image.Width, x, w);
    const Extent rows = cut_to(image.Height, y, h);
    if (columns.length < 1 || rows.length < 1 || !usable(image)) return 0;

    PacedImage paced(image);
    kernels::BrightnessCounter counter;
    for (int32_t i = 0; i < rows.length; ++i) {
        const uint8_t *row = walked_row(image, rows.start + i);
        if (row == nullptr) return 0;
        const uint8_t *first = row + static_cast<int64_t>(columns.start) * image.PixelSize;
        counter.count(first + image.RedOffset, first + image.GreenOffset, first + image.BlueOffset,
                      static_cast<size_t>(image.PixelSize), static_cast<size_t>(columns.length));
        if (!paced.pace()) return 0;
    }
    Counts counts = counter.counts();
    for (size_t i = 1; i < counts.size(); ++i) counts[i] += counts[i - 1];

    ChannelTables tables;
    const Table stretch = stretch_table(counts);
    for (Channel channel : colour_channels_of(image)) tables.add(channel, stretch);
    apply_tables_in_place(image, tables, columns.start, rows.start, columns.length, rows.length);
    return 1;
}

} // namespace kzb
