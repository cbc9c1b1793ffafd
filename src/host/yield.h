// Pacing: long operations hand control back to the host, at most once per interval.
#pragma once

#include <cstdint>

namespace kzb {

// Yields to the host when at least `interval` ticks have gone by since `last_yield_tick`, and then sets that to the
// tick after the yield. User code may run meanwhile: row addresses and fields that were read before are void.
void pace(uint32_t interval, uint32_t &last_yield_tick);

} // namespace kzb
