// Memory blocks.
#ifndef KZB_RUNTIME_MEMORY_BLOCK_H
#define KZB_RUNTIME_MEMORY_BLOCK_H

#include "object.h"

namespace kzb {

extern const ObjectClass memory_block_class;

} // namespace kzb

#endif
