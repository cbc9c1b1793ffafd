// One side of a rectangle, cut to an image.
#pragma once

#include "geometry/wrapping.h"

namespace kzb {

struct Extent {
    int32_t start;
    int32_t length; // below 1: empty
};

// A negative length reaches back from the start; what lies before 0 and beyond `limit` is cut off.
inline Extent cut_to(int32_t limit, int32_t start, int32_t length) {
    if (length < 0) {
        start = wrapping_add(start, length);
        length = wrapping_negate(length);
    }
    if (start < 0) {
        length = wrapping_add(length, start);
        start = 0;
    }
    if (start >= limit) return {start, 0};
    if (length > limit - start) length = limit - start;
    return {start, length};
}

} // namespace kzb
