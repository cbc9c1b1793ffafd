#include "filters/tables.h"

#include "image/mapped_store.h"
#include "image/plain_walk.h"
#include "kernels/look_up.h"

namespace kzb {

namespace {

void look_up_row(uint8_t *target, const ImageRecord &destination, const uint8_t *row, const ImageRecord &source,
                 const ChannelTables &tables, int32_t width) {
    for (size_t i = 0; i < tables.channels.size(); ++i) {
        const Channel channel = tables.channels[i];
        kernels::look_up(target + offset_of(destination, channel), static_cast<size_t>(destination.PixelSize),
                         row + offset_of(source, channel), static_cast<size_t>(source.PixelSize),
                         tables.tables[i].data(), static_cast<size_t>(width));
    }
}

} // namespace

void apply_tables(ImageRecord &source, ImageRecord &destination, const ChannelTables &tables) {
    const int32_t width = source.Width;
    const int32_t height = source.Height;
    if (!rows_may_run(source, destination, tables.channels, width, height)) {
        walk_plainly(source, destination, tables.channels, width, height,
                     [&](size_t i, int32_t, int32_t, uint8_t value) { return tables.tables[i][value]; });
        return;
    }
    for (int32_t y = 0; y < height; ++y) {
        const uint8_t *row = walked_row(source, y);
        uint8_t *target = walked_row(destination, y);
        if (row == nullptr || target == nullptr) return;
        look_up_row(target, destination, row, source, tables, width);
    }
}

void apply_tables_in_place(ImageRecord &image, const ChannelTables &tables, int32_t x, int32_t y, int32_t width,
                           int32_t height) {
    for (int32_t i = 0; i < height; ++i) {
        uint8_t *row = walked_row(image, y + i);
        if (row == nullptr) return;
        row += static_cast<int64_t>(x) * image.PixelSize;
        look_up_row(row, image, row, image, tables, width);
    }
}

} // namespace kzb
