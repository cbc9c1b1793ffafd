// Plain bytes and error conditions as host values. All report failure by nil; none raises by itself.
#pragma once

#include "host/values.h"

namespace kzb {

// A host string of `length` bytes in `encoding`, which the caller owns; nil for nil bytes, length 0 or a failing host.
// UTF-16 and UTF-32 input comes out as UTF-8, every other encoding as it is.
String make_string(const void *bytes, int32_t length, uint32_t encoding);

// A memory block holding a copy of `length` bytes, which the caller owns; nil for nil bytes, a length below 1 or a
// failing host.
MemoryBlock make_memory_block(const void *bytes, int32_t length);

// Raise a host exception with an ASCII message (nil: an empty one). They return normally and the host delivers the
// exception when the current method returns, so the caller returns at once.
void raise_out_of_bounds(const char *message);
void raise_nil_object(const char *message);

// The two messages that user code sees.
inline constexpr const char *index_out_of_bounds = "Index is out of bounds.";
inline constexpr const char *memory_block_is_nil = "Memoryblock is nil";

} // namespace kzb
