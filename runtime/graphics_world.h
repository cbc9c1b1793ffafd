// Offscreen graphics worlds: the memory that pictures keep their pixels in.
#ifndef KZB_RUNTIME_GRAPHICS_WORLD_H
#define KZB_RUNTIME_GRAPHICS_WORLD_H

#include <picturekzb/host_interface.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kzb {

struct DisposeWorld {
    void operator()(GWorld *world) const;
};
using WorldOwner = std::unique_ptr<GWorld, DisposeWorld>;

// Bytes of one pixel: 1, 2, 3, 4 for the depths 8, 16, 24, 32; 0 for any other depth.
size_t pixel_bytes(kzb_word depth);

// The bytes of a padded row, or 0 when a world of this size cannot be: a size below 1, another depth, a row beyond
// 2^31 - 1 bytes, more than 2^31 - 1 pixels, or more bytes than this machine can address.
int32_t world_row_bytes(int32_t width, int32_t height, int32_t depth);

// A world of zero bytes, rows padded to 16 bytes; nil when world_row_bytes() gives 0 and when out of memory.
WorldOwner make_world(int32_t width, int32_t height, int32_t depth);

// Makes every pixel white; byte 0 of a 32-bit pixel stays 0.
void fill_white(GWorld &world);

// Whether a world made elsewhere can back a picture: a known depth, sizes above 0 that fit the rows, and pixels.
bool is_drawable(const GWorld *world);

// The first byte of row `y`.
inline uint8_t *world_row(const GWorld &world, int64_t y) {
    return static_cast<uint8_t *>(world.base_address) + static_cast<ptrdiff_t>(y) * world.row_bytes;
}

} // namespace kzb

#endif
