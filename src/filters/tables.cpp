#include "filters/tables.h"

#include "image/mapped_store.h"
#include "image/plain_walk.h"
#include "kernels/look_up.h"

#include <algorithm>
#include <optional>

namespace kzb {

namespace {

// Sends rows through tables; by whole pixels where the channels lie at the same places in both images.
class RowLookUp {
public:
    RowLookUp(const ImageRecord &source, const ImageRecord &destination, const ChannelTables &tables)
        : from_(offsets_of(source, tables.channels)), to_(offsets_of(destination, tables.channels)),
          from_step_(static_cast<size_t>(source.PixelSize)), to_step_(static_cast<size_t>(destination.PixelSize)),
          tables_(tables), first_(*std::min_element(from_.begin(), from_.begin() + tables.channels.size())) {
        std::array<const uint8_t *, 4> by_place = {};
        // The working layout of scaling has wider pixels, and no channels.
        bool same_places = from_step_ == to_step_ && from_step_ <= by_place.size();
        for (size_t i = 0; i < tables.channels.size(); ++i) {
            const auto place = static_cast<size_t>(from_[i] - first_);
            same_places = same_places && from_[i] == to_[i] && place < std::min<size_t>(from_step_, 4);
            if (same_places) by_place[place] = tables.tables[i].data();
        }
        if (same_places) whole_.emplace(from_step_, by_place);
    }

    void operator()(uint8_t *target, const uint8_t *row, int32_t width) const {
        const auto count = static_cast<size_t>(width);
        if (whole_) return kernels::look_up_pixels(target + first_, row + first_, *whole_, count);
        for (size_t i = 0; i < tables_.channels.size(); ++i)
            kernels::look_up(target + to_[i], to_step_, row + from_[i], from_step_, tables_.tables[i].data(), count);
    }

private:
    ChannelOffsets from_, to_;
    size_t from_step_, to_step_;
    const ChannelTables &tables_;
    int32_t first_;
    std::optional<kernels::PixelTables> whole_;
};

} // namespace

void apply_tables(ImageRecord &source, ImageRecord &destination, const ChannelTables &tables) {
    const int32_t width = source.Width;
    const int32_t height = source.Height;
    if (!rows_may_run(source, destination, tables.channels, width, height)) {
        walk_plainly(source, destination, tables.channels, width, height,
                     [&](size_t i, int32_t, int32_t, uint8_t value) { return tables.tables[i][value]; });
        return;
    }
    const RowLookUp look_up(source, destination, tables);
    for (int32_t y = 0; y < height; ++y) {
        const uint8_t *row = walked_row(source, y);
        uint8_t *target = walked_row(destination, y);
        if (row == nullptr || target == nullptr) return;
        look_up(target, row, width);
    }
}

void apply_tables_in_place(ImageRecord &image, const ChannelTables &tables, int32_t x, int32_t y, int32_t width,
                           int32_t height) {
    const RowLookUp look_up(image, image, tables);
    for (int32_t i = 0; i < height; ++i) {
        uint8_t *row = walked_row(image, y + i);
        if (row == nullptr) return;
        row += static_cast<int64_t>(x) * image.PixelSize;
        look_up(row, row, width);
    }
}

} // namespace kzb
