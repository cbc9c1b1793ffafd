// Which channels an operation touches: one small list, whatever the layout.
#pragma once

#include "image/record.h"

#include <array>

namespace kzb {

enum class Channel : uint8_t { red, green, blue, gray, alpha };

// Up to four channels in the order in which a pixel is processed.
class Channels {
public:
    constexpr Channels() = default;
    constexpr Channels(std::initializer_list<Channel> channels) {
        for (Channel channel : channels) items_[size_++] = channel;
    }
    constexpr const Channel *begin() const { return items_.data(); }
    constexpr const Channel *end() const { return items_.data() + size_; }
    constexpr size_t size() const { return size_; }
    constexpr Channel operator[](size_t index) const { return items_[index]; }
    constexpr void add(Channel channel) { items_[size_++] = channel; }

private:
    std::array<Channel, 4> items_ = {};
    size_t size_ = 0;
};

// Gray, or red, green and blue; none for other layouts.
Channels colour_channels_of(const ImageRecord &image);

// The same, then alpha where the layout has it; none for layouts that are neither gray nor colour.
Channels channels_of(const ImageRecord &image);

// Bytes from the pixel's start; 0 for an absent channel.
int32_t offset_of(const ImageRecord &image, Channel channel);

// The offsets of a list's channels in one image, in the list's order.
using ChannelOffsets = std::array<int32_t, 4>;
ChannelOffsets offsets_of(const ImageRecord &image, const Channels &channels);

} // namespace kzb
