#include "host/yield.h"

#include "host/entry_points.h"
#include "platform/ticks.h"

namespace kzb {

void pace(uint32_t interval, uint32_t &last_yield_tick) {
    // Unsigned, so that the counter's wrap-around does no harm.
    if (TickCount() - last_yield_tick < interval) return;
    REALYieldToRB();
    // Read again: the time spent inside the host does not count against the next interval.
    last_yield_tick = TickCount();
}

} // namespace kzb
