// Packed lanes as pixels of a destination.
#pragma once

#include "geometry/carried_channels.h"
#include "image/record.h"

namespace kzb {

class LaneWriter {
public:
    LaneWriter(ImageRecord &destination, const CarriedChannels &carried);

    // Where to put the packed lanes of pixels from (x, y) on: the row itself when they are its bytes, else `packed`.
    // Nil when the row cannot be reached.
    [[nodiscard]] uint8_t *start(int32_t x, int32_t y, uint8_t *packed);

    // Takes `count` pixels over from where `start` said.
    void finish(size_t count) const;

private:
    ImageRecord &destination_;
    CarriedChannels carried_;
    bool dense_;
    uint8_t *target_ = nullptr;
    const uint8_t *packed_ = nullptr;
};

} // namespace kzb
