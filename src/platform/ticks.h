// The platform's clock.
#pragma once

#include <picturekzb/host_interface.h>

#if !defined(KZB_CARBON)
// Sixtieths of a second of a monotonic clock; wraps around at 32 bits.
extern "C" uint32_t TickCount();
#endif
