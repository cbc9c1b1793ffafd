// What filtered scaling carries from one layout to another.
#pragma once

#include "image/channels.h"

#include <optional>

namespace kzb {

struct CarriedChannels {
    // Gray, or red, green and blue; then alpha where both layouts have it, except from gray to colour.
    Channels lanes;
    bool mixes_gray;   // gray is made from the source's red, green and blue
    bool spreads_gray; // gray becomes the destination's red, green and blue

    // The destination's channels that a lane is written to.
    Channels targets_of(Channel lane) const;
};

// None where one of the layouts is neither gray nor colour.
std::optional<CarriedChannels> carried_between(const ImageRecord &source, const ImageRecord &destination);

} // namespace kzb
