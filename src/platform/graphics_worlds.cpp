#include "platform/graphics_worlds.h"

#include "platform/buffer.h"

using kzb::Buffer;

namespace {

constexpr int32_t parameter_error = -50;
constexpr int32_t memory_full_error = -108;

void dispose_own_world(GWorld *world) {
    std::free(world->base_address);
    std::free(world);
}

} // namespace

int32_t NewGWorld(GWorldPtr *world, int16_t depth, const Rect *bounds, void *, void *, uint32_t) {
    *world = nullptr;
    const int64_t width = static_cast<int64_t>(bounds->right) - bounds->left;
    const int64_t height = static_cast<int64_t>(bounds->bottom) - bounds->top;
    if (width < 1 || height < 1 || (depth != 8 && depth != 16 && depth != 24 && depth != 32)) return parameter_error;
    const int64_t row_bytes = (width * (depth / 8) + 15) / 16 * 16;
    if (row_bytes > INT32_MAX || row_bytes * height > INT32_MAX) return memory_full_error;
    Buffer<GWorld> made(1);
    Buffer<char> pixels(row_bytes * height);
    if (!made || !pixels) return memory_full_error;
    *made.get() = {depth,
                   static_cast<kzb_word>(row_bytes),
                   static_cast<kzb_word>(width),
                   static_cast<kzb_word>(height),
                   pixels.release(),
                   0,
                   dispose_own_world};
    *world = made.release();
    return 0;
}

void DisposeGWorld(GWorldPtr world) {
    if (world != nullptr && world->dispose != nullptr) world->dispose(world);
}

PixMapHandle GetGWorldPixMap(GWorldPtr world) { return world; }

PixMapHandle GetPortPixMap(GWorldPtr port) { return port; }

KZBBoolean LockPixels(PixMapHandle map) {
    if (map == nullptr || map->base_address == nullptr) return 0;
    ++map->lock_count;
    return 1;
}

void UnlockPixels(PixMapHandle map) {
    if (map != nullptr) --map->lock_count;
}

char *GetPixBaseAddr(PixMapHandle map) { return map == nullptr ? nullptr : static_cast<char *>(map->base_address); }

int32_t GetPixRowBytes(PixMapHandle map) { return map == nullptr ? 0 : static_cast<int32_t>(map->row_bytes); }

int16_t GetPixDepth(PixMapHandle map) { return map == nullptr ? 0 : static_cast<int16_t>(map->depth); }
