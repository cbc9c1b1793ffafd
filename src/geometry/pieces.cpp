#include "geometry/pieces.h"

#include "image/packed_rows.h"

#include <algorithm>

namespace kzb {

namespace {

// Whether the channels lie on bytes side by side, each on one of its own.
bool side_by_side(const ChannelOffsets &offsets, int32_t first, size_t count) {
    uint32_t bytes = 0;
    for (size_t i = 0; i < count; ++i) {
        if (static_cast<size_t>(offsets[i] - first) >= count) return false;
        bytes |= 1u << (offsets[i] - first);
    }
    return bytes == (1u << count) - 1;
}

} // namespace

Pieces pieces_of(const ImageRecord &source, const ImageRecord &destination, const Channels &channels) {
    const ChannelOffsets from = offsets_of(source, channels);
    const ChannelOffsets to = offsets_of(destination, channels);
    const size_t count = channels.size();
    if (count == 0) return {};
    const int32_t first_from = *std::min_element(from.begin(), from.begin() + count);
    const int32_t first_to = *std::min_element(to.begin(), to.begin() + count);
    bool together = side_by_side(to, first_to, count);
    for (size_t i = 0; i < count; ++i) together = together && from[i] - first_from == to[i] - first_to;
    if (together) return {1, count, {first_from}, {first_to}};
    return {count, 1, from, to};
}

bool any_order_serves(const ImageRecord &source, const ImageRecord &destination, const Channels &channels,
                      int32_t width, int32_t height) {
    return rows_may_run(source, destination, channels, width, height) &&
           sharing_of(source, destination, channels) == Sharing::none && rows_lie_apart(destination, channels, width);
}

} // namespace kzb
