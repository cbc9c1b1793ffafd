// Arrays of integers.
#ifndef KZB_RUNTIME_ARRAY_H
#define KZB_RUNTIME_ARRAY_H

#include "object.h"

namespace kzb {

extern const ObjectClass array_class;

} // namespace kzb

#endif
