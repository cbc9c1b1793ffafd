// The platform's clock.
#pragma once

#include <cstdint>

// Sixtieths of a second of a monotonic clock; wraps around at 32 bits.
extern "C" uint32_t TickCount();
