#include "interop/picture_builder.h"

#include "interop/picture_reader.h"

#include <utility>

namespace kzb {

PictureBuilder::~PictureBuilder() {
    if (map_ != nullptr) UnlockPixels(map_);
    if (world_ != nullptr) DisposeGWorld(world_);
}

bool PictureBuilder::open(int32_t width, int32_t height) {
    // The published rectangle has sides of 16 bits.
    using Side = decltype(Rect::top);
    if (width < 1 || height < 1 || !std::in_range<Side>(width) || !std::in_range<Side>(height)) return false;
    const Rect bounds = {0, 0, static_cast<Side>(height), static_cast<Side>(width)};
    if (NewGWorld(&world_, 32, &bounds, nullptr, nullptr, 0) != 0) return false;
    PixMapHandle map = GetGWorldPixMap(world_);
    if (map == nullptr || !LockPixels(map)) return false;
    map_ = map;
    base_ = reinterpret_cast<uint8_t *>(GetPixBaseAddr(map));
    row_bytes_ = static_cast<int32_t>(GetPixRowBytes(map));
    return base_ != nullptr;
}

Reference<Picture> PictureBuilder::finish() {
    UnlockPixels(std::exchange(map_, nullptr));
    auto picture = Reference<Picture>::adopt(REALBuildPictureFromGWorld(world_, 1));
    if (picture) world_ = nullptr;
    return picture;
}

bool attach_mask(Picture picture, Picture mask, int32_t width, int32_t height) {
    if (picture == nullptr) return false;
    if (mask == nullptr) return true;
    auto own_mask = Reference<Picture>::adopt(REALGetPictureMask(picture, 1));
    if (!own_mask) return false;
    auto graphics = Reference<Object>::adopt(pluginPictureGraphicsGetter(own_mask.get()));
    if (!graphics) return false;
    draw_picture(graphics.get(), mask, width, height);
    return true;
}

} // namespace kzb
