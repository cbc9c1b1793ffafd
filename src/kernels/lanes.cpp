#include "kernels/lanes.h"

namespace kzb::kernels {

namespace {

// Calls pass(start, lane) for every byte, whole periods first, so that the compiler sees rows of fixed length.
template <class Pass> void for_each_lane(size_t count, Pass pass) {
    size_t start = 0;
    for (; start + lane_period <= count; start += lane_period)
        for (size_t lane = 0; lane < lane_period; ++lane) pass(start + lane, lane);
    for (size_t lane = 0; start + lane < count; ++lane) pass(start + lane, lane);
}

void change_lanes_plainly(uint8_t *bytes, size_t count, const Lanes &keep, const Lanes &flip) {
    // Copies, which the bytes cannot alias.
    const Lanes kept = keep;
    const Lanes flipped = flip;
    // Pages that are not read need not be fetched.
    if (kept == Lanes{}) return for_each_lane(count, [&](size_t at, size_t lane) { bytes[at] = flipped[lane]; });
    for_each_lane(count, [&](size_t at, size_t lane) {
        bytes[at] = static_cast<uint8_t>((bytes[at] & kept[lane]) ^ flipped[lane]);
    });
}

void copy_lanes_plainly(uint8_t *__restrict target, const uint8_t *__restrict source, size_t count, const Lanes &keep,
                        const Lanes &flip) {
    const Lanes kept = keep;
    const Lanes flipped = flip;
    for_each_lane(count, [&](size_t at, size_t lane) {
        target[at] = static_cast<uint8_t>((target[at] & kept[lane]) | ((source[at] & ~kept[lane]) ^ flipped[lane]));
    });
}

} // namespace

decltype(change_lanes) change_lanes = compiled<change_lanes_plainly>();
decltype(copy_lanes) copy_lanes = compiled<copy_lanes_plainly>();

} // namespace kzb::kernels
