#include "interop/picture_reader.h"

namespace kzb {

namespace {

constexpr const char *draw_picture_declaration =
    "DrawPicture( p as Picture, x as Integer, y as Integer, dw as Integer, dh as Integer, sx as Integer, "
    "sy as Integer, sw as Integer, sh as Integer )";

int32_t picture_size(Picture picture, const char *property) {
    int32_t value = 0;
    if (picture == nullptr || !REALGetPropValueInt(as_object(picture), property, &value)) return 0;
    return value;
}

// The picture drawn into a new one of 32 bits, or nil.
Reference<Picture> copy_of_depth_32(Picture picture, int32_t width, int32_t height) {
    if (picture == nullptr || width < 1 || height < 1) return {};
    auto copy = Reference<Picture>::adopt(newPicture(width, height, 32));
    if (!copy) return {};
    auto graphics = Reference<Object>::adopt(pluginPictureGraphicsGetter(copy.get()));
    draw_picture(graphics.get(), picture, width, height);
    return copy;
}

} // namespace

int32_t picture_width(Picture picture) { return picture_size(picture, "Width"); }

int32_t picture_height(Picture picture) { return picture_size(picture, "Height"); }

void draw_picture(Object graphics, Picture picture, int32_t width, int32_t height) {
    if (graphics == nullptr || picture == nullptr) return;
    auto *draw = reinterpret_cast<GraphicsDrawPicture *>(REALLoadObjectMethod(graphics, draw_picture_declaration));
    if (draw != nullptr) draw(graphics, picture, 0, 0, width, height, 0, 0, width, height);
}

PictureReader::~PictureReader() {
    if (map_ == nullptr) return;
    UnlockPixels(map_);
    unlockPictureDescription(held_.get(), &description_);
}

bool PictureReader::open(Picture picture) {
    if (picture == nullptr) return false;
    if (lock(picture)) return true;
    const int32_t width = picture_width(picture);
    auto copy = copy_of_depth_32(picture, width, picture_height(picture));
    return copy && lock(copy.get());
}

bool PictureReader::lock(Picture picture) {
    PictureDescription description = {};
    if (!lockPictureDescription(picture, &description)) return false;
    if (description.kind == KZB_PICTURE_GWORLD && description.port != nullptr) {
        PixMapHandle map = GetGWorldPixMap(static_cast<GWorldPtr>(description.port));
        if (map != nullptr && GetPixDepth(map) == 32 && LockPixels(map)) {
            auto *base = reinterpret_cast<const uint8_t *>(GetPixBaseAddr(map));
            if (base != nullptr) held_ = Reference<Picture>::share(picture);
            if (held_) {
                description_ = description;
                map_ = map;
                base_ = base;
                row_bytes_ = static_cast<int32_t>(GetPixRowBytes(map));
                width_ = static_cast<int32_t>(description.width);
                height_ = static_cast<int32_t>(description.height);
                return true;
            }
            UnlockPixels(map);
        }
    }
    unlockPictureDescription(picture, &description);
    return false;
}

} // namespace kzb
