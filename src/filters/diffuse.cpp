#include "filters/diffuse.h"

#include "image/destination.h"
#include "image/row_ring.h"
#include "image/storage.h"
#include "kernels/scatter.h"

#include <cstdlib>

namespace kzb {

namespace {

// Draws coordinates at most `level` away, kept inside the image.
class Displacement {
public:
    explicit Displacement(int32_t level) : level_(level), span_(2 * static_cast<uint32_t>(level) + 1) {}

    int32_t draw(int32_t own, int32_t limit) const {
        const uint32_t drawn = static_cast<uint32_t>(std::rand()) % span_;
        return static_cast<int32_t>(std::clamp<int64_t>(int64_t{own} + drawn - level_, 0, int64_t{limit} - 1));
    }

private:
    int32_t level_;
    uint32_t span_;
};

void diffuse_plainly(ImageRecord &source, ImageRecord &destination, const Channels &channels, int32_t level) {
    const ChannelOffsets from = offsets_of(source, channels);
    const ChannelOffsets to = offsets_of(destination, channels);
    const Displacement displacement(level);
    for (int32_t y = 0; y < source.Height; ++y) {
        for (int32_t x = 0; x < source.Width; ++x) {
            const int32_t column = displacement.draw(x, source.Width);
            const int32_t row = displacement.draw(y, source.Height);
            for (size_t i = 0; i < channels.size(); ++i) {
                const uint8_t *read = channel_at(source, column, row, from[i]);
                if (read == nullptr) continue;
                const uint8_t value = *read;
                if (uint8_t *written = channel_at(destination, x, y, to[i])) *written = value;
            }
        }
    }
}

// False when there is no memory for it; nothing is then drawn.
bool diffuse_by_rows(ImageRecord &source, ImageRecord &destination, const RowRoute &route, int32_t level) {
    const int32_t width = source.Width;
    const int32_t height = source.Height;
    const auto count = static_cast<size_t>(width);
    const kernels::Remainder remainder(2 * static_cast<uint32_t>(level) + 1);
    RowRing ring(source, route.channels, 2 * int64_t{level} + 1);
    PackedRows written(destination, route.channels, width, route.plain_destination);
    Buffer<int32_t> columns(width), rows(width);
    if (!ring || !written || !columns || !rows) return false;
    for (int32_t y = 0; y < height; ++y) {
        const int32_t start = std::max(y - level, 0);
        const auto end = static_cast<int32_t>(std::min<int64_t>(int64_t{y} + level + 1, height));
        if (!ring.read_through(end - 1)) return true;
        // All of a row's numbers at once, in the order in which its pixels ask for them.
        for (size_t x = 0; x < count; ++x) {
            columns[x] = std::rand();
            rows[x] = std::rand();
        }
        kernels::place_near(columns.get(), remainder, 0, 1, level, width, count);
        kernels::place_near(rows.get(), remainder, y, 0, level, height, count);
        uint8_t *target = route.in_place ? ring.row(y) : written.place(y);
        if (target == nullptr) return true;
        kernels::gather_pixels(target, ring.rows(start, end), rows.get(), start, columns.get(), route.channels.size(),
                               count);
        if (!(route.in_place ? written.write(y, target) : written.finish(y))) return true;
    }
    return true;
}

} // namespace

ImageObject diffuse_filter(ImageObject image, ImageObject dest, int32_t level) {
    auto passage = open_passage(image, dest);
    if (!passage) return nullptr;
    auto &[source, destination, result] = *passage;
    const Channels channels = channels_of(source);
    if (channels.size() == 0 || level < 0) return result.release();
    const RowRoute route = row_route(source, destination, channels);
    if (!route.by_rows || !diffuse_by_rows(source, destination, route, level))
        diffuse_plainly(source, destination, channels, level);
    return result.release();
}

} // namespace kzb
