#include "geometry/carried_channels.h"

namespace kzb {

namespace {

constexpr Channels colours = {Channel::red, Channel::green, Channel::blue};

} // namespace

Channels CarriedChannels::targets_of(Channel lane) const {
    return lane == Channel::gray && spreads_gray ? colours : Channels{lane};
}

std::optional<CarriedChannels> carried_between(const ImageRecord &source, const ImageRecord &destination) {
    if (!(source.IsRGB || source.IsGray) || !(destination.IsRGB || destination.IsGray)) return std::nullopt;
    const bool mixes_gray = source.IsRGB && !destination.IsRGB;
    const bool spreads_gray = !source.IsRGB && destination.IsRGB;
    Channels lanes = source.IsRGB && destination.IsRGB ? colours : Channels{Channel::gray};
    if (source.HasAlpha && destination.HasAlpha && !spreads_gray) lanes.add(Channel::alpha);
    return CarriedChannels{lanes, mixes_gray, spreads_gray};
}

} // namespace kzb
