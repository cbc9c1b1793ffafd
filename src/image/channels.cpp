#include "image/channels.h"

namespace kzb {

Channels colour_channels_of(const ImageRecord &image) {
    if (image.IsGray) return {Channel::gray};
    if (image.IsRGB) return {Channel::red, Channel::green, Channel::blue};
    return {};
}

Channels channels_of(const ImageRecord &image) {
    Channels channels = colour_channels_of(image);
    if (channels.size() != 0 && image.HasAlpha) channels.add(Channel::alpha);
    return channels;
}

int32_t offset_of(const ImageRecord &image, Channel channel) {
    switch (channel) {
    case Channel::red: return image.RedOffset;
    case Channel::green: return image.GreenOffset;
    case Channel::blue: return image.BlueOffset;
    case Channel::gray: return image.GrayOffset;
    case Channel::alpha: return image.AlphaOffset;
    }
    return 0;
}

ChannelOffsets offsets_of(const ImageRecord &image, const Channels &channels) {
    ChannelOffsets offsets = {};
    for (size_t i = 0; i < channels.size(); ++i) offsets[i] = offset_of(image, channels[i]);
    return offsets;
}

} // namespace kzb
