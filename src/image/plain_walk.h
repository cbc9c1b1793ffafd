// The walk that states in which order a point operation processes bytes; it serves whatever row functions cannot.
#pragma once

#include "image/storage.h"

namespace kzb {

// For the rows and pixels of width × height in ascending order and each channel in the list's order: reads the source
// byte and writes write(i, x, y, byte), i being the channel's place in the list, to the destination's place of the same
// channel; a place outside the destination's storage is left out. Right for images that share storage in any way.
template <class Write>
void walk_plainly(ImageRecord &source, ImageRecord &destination, const Channels &channels, int32_t width,
                  int32_t height, Write write) {
    const ChannelOffsets from = offsets_of(source, channels);
    const ChannelOffsets to = offsets_of(destination, channels);
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            for (size_t i = 0; i < channels.size(); ++i) {
                const uint8_t *read = channel_at(source, x, y, from[i]);
                if (read == nullptr) continue;
                const uint8_t value = write(i, x, y, *read);
                if (uint8_t *written = channel_at(destination, x, y, to[i])) *written = value;
            }
        }
    }
}

} // namespace kzb
