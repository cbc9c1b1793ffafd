#include "graphics_world.h"

#include "pixel_rows.h"

#include <cstdlib>
#include <vector>

namespace kzb {

namespace {

void free_world(GWorld *world) {
    std::free(world->base_address);
    std::free(world);
}

} // namespace

void DisposeWorld::operator()(GWorld *world) const {
    if (world->dispose) world->dispose(world);
}

size_t pixel_bytes(kzb_word depth) {
    return depth == 8 || depth == 16 || depth == 24 || depth == 32 ? static_cast<size_t>(depth) / 8 : 0;
}

int32_t world_row_bytes(int32_t width, int32_t height, int32_t depth) {
    const int64_t bytes = static_cast<int64_t>(pixel_bytes(depth));
    if (width < 1 || height < 1 || bytes == 0) return 0;
    const int64_t row_bytes = (width * bytes + 15) / 16 * 16;
    if (row_bytes > INT32_MAX || static_cast<int64_t>(width) * height > INT32_MAX) return 0;
    if (row_bytes * height > static_cast<int64_t>(INTPTR_MAX)) return 0;
    return static_cast<int32_t>(row_bytes);
}

WorldOwner make_world(int32_t width, int32_t height, int32_t depth) {
    const int32_t row_bytes = world_row_bytes(width, height, depth);
    if (row_bytes == 0) return nullptr;
    auto *world = static_cast<GWorld *>(std::calloc(1, sizeof(GWorld)));
    if (!world) return nullptr;
    world->base_address = std::calloc(static_cast<size_t>(height), static_cast<size_t>(row_bytes));
    world->depth = depth;
    world->row_bytes = row_bytes;
    world->width = width;
    world->height = height;
    world->dispose = free_world;
    if (!world->base_address) {
        free_world(world);
        return nullptr;
    }
    return WorldOwner(world);
}

void fill_white(GWorld &world) {
    const std::vector<uint8_t> white(static_cast<size_t>(world.width) * 4, 255);
    for (kzb_word y = 0; y < world.height; ++y) {
        write_pixels(world, 0, y, static_cast<size_t>(world.width), white.data());
    }
}

bool is_drawable(const GWorld *world) {
    if (!world || !world->base_address) return false;
    if (world->width < 1 || world->width > INT32_MAX || world->height < 1 || world->height > INT32_MAX) return false;
    if (pixel_bytes(world->depth) == 0) return false;
    const int32_t needed = world_row_bytes(static_cast<int32_t>(world->width), static_cast<int32_t>(world->height),
                                           static_cast<int32_t>(world->depth));
    return needed != 0 && world->row_bytes <= INT32_MAX &&
           static_cast<int64_t>(world->row_bytes) * world->height <= static_cast<int64_t>(INTPTR_MAX) &&
           world->row_bytes >= world->width * static_cast<kzb_word>(pixel_bytes(world->depth));
}

} // namespace kzb
