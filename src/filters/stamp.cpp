#include "filters/stamp.h"

#include "filters/box_blur.h"
#include "filters/tables.h"
#include "image/bytes.h"

namespace kzb {

namespace {

// A colour's part for a channel; green stands for gray.
int32_t part_of(Color color, Channel channel) {
    const int shift = channel == Channel::red ? 16 : channel == Channel::blue ? 0 : 8;
    return static_cast<int32_t>(static_cast<uint32_t>(color) >> shift & 0xff);
}

double smooth_step(double v, double lower, double upper) {
    if (v < lower) return 0;
    if (v >= upper) return 1;
    const double u = (v - lower) / (upper - lower);
    return u * u * (3 - 2 * u);
}

ChannelTables stamp_tables(const ImageRecord &image, double threshold, double softness, Color black, Color white) {
    const double lower = (threshold - softness * 0.5) * 255.0;
    const double upper = (threshold + softness * 0.5) * 255.0;
    ChannelTables tables;
    for (Channel channel : colour_channels_of(image)) {
        const int32_t from = part_of(black, channel);
        const int32_t to = part_of(white, channel);
        Table table;
        for (int32_t v = 0; v < 256; ++v)
            table[static_cast<size_t>(v)] = byte_from(smooth_step(v, lower, upper) * (to - from) + from);
        tables.add(channel, table);
    }
    return tables;
}

} // namespace

ImageObject stamp_filter(ImageObject image, ImageObject dest, double radius, double threshold, double softness,
                         Color black, Color white) {
    constexpr int32_t passes = 3;
    const double pass_radius = radius / passes;
    const auto tables_for = [&](const ImageRecord &blurred) {
        return stamp_tables(blurred, threshold, softness, black, white);
    };
    const auto begun = dest == nullptr ? ImageReference::share(image)
                                       : ImageReference::adopt(box_blur_filter(image, dest, pass_radius));
    if (!begun) return nullptr;
    const int32_t left = dest == nullptr ? passes : passes - 1;
    const ChannelTables tables = tables_for(*record_of(begun.get()));
    if (auto stamped = box_blur_unseen(begun.get(), pass_radius, left, &tables)) return stamped.release();
    const auto blurred = ImageReference::adopt(box_blur_filter_repeated(begun.get(), nullptr, pass_radius, left));
    return blurred ? filter_through_tables(blurred.get(), nullptr, tables_for) : nullptr;
}

} // namespace kzb
