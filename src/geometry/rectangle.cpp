#include "geometry/rectangle.h"

#include <algorithm>

namespace kzb {

namespace {

// The length that is left inside the limit, for a start that is not negative. A negative length is a huge one here, and
// a start beyond the limit gives one below 1: programs rely on the former.
int32_t length_within(int32_t limit, int32_t start, int32_t length) {
    const auto end = static_cast<uint32_t>(limit);
    const auto first = static_cast<uint32_t>(start);
    const uint32_t wanted = end > first ? static_cast<uint32_t>(length) : 0;
    return static_cast<int32_t>(first + wanted > end ? end - first : wanted);
}

} // namespace

Extent clip(int32_t limit, int32_t start, int32_t length) {
    if (length < 0) {
        start = wrapping_add(start, length);
        length = wrapping_negate(length);
    }
    if (start < 0) {
        length = wrapping_add(length, start);
        start = 0;
    }
    return {start, length_within(limit, start, length)};
}

Rectangle clip(const ImageRecord &image, int32_t x, int32_t y, int32_t w, int32_t h) {
    return {clip(image.Width, x, w), clip(image.Height, y, h)};
}

CopyExtent clip_copy(int32_t limit, int32_t from_limit, int32_t to, int32_t length, int32_t from) {
    if (from < 0) {
        length = wrapping_add(length, from);
        to = wrapping_add(to, from);
        from = 0;
    }
    if (length < 0) {
        to = wrapping_add(to, length);
        length = wrapping_negate(length);
    }
    // In 64 bits: a start that wrapped around would lead before the source.
    int64_t first = from;
    if (to < 0) {
        length = wrapping_add(length, to);
        first -= to;
        to = 0;
    }
    length = length_within(limit, to, length);
    if (first + length > from_limit) length = static_cast<int32_t>(std::max<int64_t>(from_limit - first, 0));
    return {to, static_cast<int32_t>(std::min<int64_t>(first, INT32_MAX)), length};
}

} // namespace kzb
