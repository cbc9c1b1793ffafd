#include "platform/ticks.h"

#include <ctime>

uint32_t TickCount() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    // From seconds and nanoseconds apart, so that no product leaves 64 bits.
    return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 60 +
                                 static_cast<uint64_t>(now.tv_nsec) * 60 / 1000000000);
}
