#include "filters/engrave.h"

#include "image/destination.h"
#include "image/plain_walk.h"
#include "image/row_ring.h"
#include "kernels/engrave.h"

#include <cstring>

namespace kzb {

namespace {

int32_t neighbour(int32_t own, int32_t level, int32_t limit) {
    return static_cast<int32_t>(std::clamp<int64_t>(static_cast<int64_t>(own) + level, 0, limit - 1));
}

void engrave_plainly(ImageRecord &source, ImageRecord &destination, const Channels &channels, int32_t level) {
    const ChannelOffsets from = offsets_of(source, channels);
    walk_plainly(
        source, destination, channels, source.Width, source.Height, [&](size_t i, int32_t x, int32_t y, uint8_t value) {
            const uint8_t *other =
                channel_at(source, neighbour(x, level, source.Width), neighbour(y, level, source.Height), from[i]);
            kernels::engrave(&value, &value, other == nullptr ? &value : other, 1);
            return value;
        });
}

// One packed row against the row of its neighbours. All three may be one: pixels are taken from left to right.
void engrave_row(uint8_t *target, const uint8_t *row, const uint8_t *other, size_t channels, int32_t width,
                 int32_t level) {
    if (width == 0) return;
    // Pixels whose neighbour is the edge pixel, and the others.
    const auto reach = static_cast<size_t>(std::min<int64_t>(std::abs(static_cast<int64_t>(level)), width));
    const size_t inside = static_cast<size_t>(width) - reach;
    if (level >= 0) {
        kernels::engrave(target, row, other + reach * channels, inside * channels);
        const size_t rest = inside * channels;
        const uint8_t *last = other + (static_cast<size_t>(width) - 1) * channels;
        kernels::engrave_against(target + rest, row + rest, last, channels, reach);
    } else {
        const size_t rest = reach * channels;
        kernels::engrave_against(target, row, other, channels, reach);
        kernels::engrave(target + rest, row + rest, other, inside * channels);
    }
}

// False when there is no memory for it.
bool engrave_by_rows(ImageRecord &source, ImageRecord &destination, const RowRoute &route, int32_t level) {
    RowWindow other_window(source);
    PackedRows rows(source, route.channels, source.Width, false);
    PackedRows others(other_window.image(), route.channels, source.Width, false);
    PackedRows written(destination, route.channels, source.Width, route.plain_destination);
    Buffer<uint8_t> line(static_cast<int64_t>(rows.bytes()));
    if (!rows || !others || !written || !line) return false;
    for (int32_t y = 0; y < source.Height; ++y) {
        const int32_t other_y = neighbour(y, level, source.Height);
        const uint8_t *row = rows.read(y);
        const uint8_t *other = other_y == y ? row : others.read(other_y);
        if (row == nullptr || other == nullptr) return true;
        if (route.in_place) {
            // A row that is its own neighbour is read back as it changes.
            std::memcpy(line.get(), row, rows.bytes());
            row = line.get();
            if (other_y == y) other = row;
        }
        engrave_row(line.get(), row, other, route.channels.size(), source.Width, level);
        if (!written.write(y, line.get())) return true;
    }
    return true;
}

} // namespace

ImageObject engrave_filter(ImageObject image, ImageObject dest, int32_t level) {
    auto passage = open_passage(image, dest);
    if (!passage) return nullptr;
    auto &[source, destination, result] = *passage;
    const Channels channels = channels_of(source);
    if (channels.size() == 0) return result.release();
    const RowRoute route = row_route(source, destination, channels);
    if (!route.by_rows || !engrave_by_rows(source, destination, route, level))
        engrave_plainly(source, destination, channels, level);
    return result.release();
}

} // namespace kzb
