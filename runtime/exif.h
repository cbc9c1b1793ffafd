// The one thing that is wanted of a camera's notes.
#ifndef KZB_RUNTIME_EXIF_H
#define KZB_RUNTIME_EXIF_H

#include <cstddef>
#include <cstdint>

namespace kzb {

// The orientation, 1 to 8, in an Exif block, which begins with the byte order ("II" or "MM") or with "Exif" and two
// zero bytes; 1 when there is none, or none that makes sense.
int exif_orientation(const uint8_t *bytes, size_t count);

// Whether pictures of this orientation lie on their side.
inline bool lies_on_its_side(int orientation) {
    return orientation > 4;
}

} // namespace kzb

#endif
