#include "geometry/lane_writer.h"

#include "kernels/convert.h"

namespace kzb {

LaneWriter::LaneWriter(ImageRecord &destination, const CarriedChannels &carried)
    : destination_(destination), carried_(carried) {
    const size_t lanes = carried.lanes.size();
    const ChannelOffsets offsets = offsets_of(destination, carried.lanes);
    dense_ = static_cast<size_t>(destination.PixelSize) == lanes;
    for (size_t i = 1; i < lanes; ++i) dense_ = dense_ && offsets[i] == offsets[0] + static_cast<int32_t>(i);
}

uint8_t *LaneWriter::start(int32_t x, int32_t y, uint8_t *packed) {
    uint8_t *row = destination_.row_accessor(destination_, y);
    if (row == nullptr) return nullptr;
    target_ = row + static_cast<size_t>(x) * static_cast<size_t>(destination_.PixelSize);
    packed_ = packed;
    return dense_ ? target_ + offset_of(destination_, carried_.lanes[0]) : packed;
}

void LaneWriter::finish(size_t count) const {
    if (dense_) return;
    const size_t lanes = carried_.lanes.size();
    for (size_t i = 0; i < lanes; ++i)
        for (Channel channel : carried_.targets_of(carried_.lanes[i]))
            kernels::copy_channel(target_ + offset_of(destination_, channel),
                                  static_cast<size_t>(destination_.PixelSize), packed_ + i, lanes, 0, count);
}

} // namespace kzb
