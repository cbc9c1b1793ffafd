// What moves of a pixel: its channels together where they lie side by side and in the same order, else one by one.
#pragma once

#include "image/storage.h"

namespace kzb {

// Runs of `bytes` bytes, `count` of them for each pixel. Offsets are bytes from the pixel's start.
struct Pieces {
    size_t count = 0;
    size_t bytes = 1;
    ChannelOffsets from = {}; // in the source
    ChannelOffsets to = {};   // in the destination
};

// One piece with all channels where both images have them side by side and in the same order, else a piece for each
// channel. What is no channel, like padding, is left out.
Pieces pieces_of(const ImageRecord &source, const ImageRecord &destination, const Channels &channels);

// Whether the channels of width × height pixels may be written to the destination in any order: it holds them, writes
// none of their bytes twice, and shares no byte with the source.
bool any_order_serves(const ImageRecord &source, const ImageRecord &destination, const Channels &channels,
                      int32_t width, int32_t height);

} // namespace kzb
