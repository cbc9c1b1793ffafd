#include "graphics.h"

#include "drawing.h"
#include "entries.h"
#include "error.h"
#include "picture.h"

namespace kzb {

namespace {

void finalize(KZBObject object) noexcept {
    object_release(as_object(payload<GraphicsPayload>(object).picture), "a Graphics object");
    destroy_payload<GraphicsPayload>(object);
}

void draw_picture(KZBObject graphics, KZBPicture reference, int32_t x, int32_t y, int32_t dw, int32_t dh, int32_t sx,
                  int32_t sy, int32_t sw, int32_t sh) {
    if (!object_is(graphics, graphics_class, "DrawPicture")) return;
    const PicturePayload *source = picture_payload(reference, "DrawPicture");
    const PicturePayload *target = picture_payload(payload<GraphicsPayload>(graphics).picture, "DrawPicture");
    if (!source || !target) return;
    guarded(nullptr, false, [&] {
        draw_world(*target->world, {x, y, dw, dh}, *source->world, mask_world(*source), {sx, sy, sw, sh});
        return true;
    });
}

const ObjectMethod methods[] = {
    {"DrawPicture( p as Picture, x as Integer, y as Integer, dw as Integer, dh as Integer, sx as Integer, "
     "sy as Integer, sw as Integer, sh as Integer )",
     reinterpret_cast<KZBFunction>(static_cast<GraphicsDrawPicture *>(draw_picture))}};

KZBObject pluginPictureGraphicsGetter(KZBPicture picture) {
    if (!picture_payload(picture, "pluginPictureGraphicsGetter")) return nullptr;
    KZBObject graphics = object_make<GraphicsPayload>(graphics_class, GraphicsPayload{picture});
    if (graphics) object_retain(as_object(picture), "pluginPictureGraphicsGetter");
    return graphics;
}

const HostEntry list[] = {KZB_HOST_ENTRY(pluginPictureGraphicsGetter)};
const ObjectClass *const classes[] = {&graphics_class};
const Contribution contribution(list, classes);

} // namespace

const ObjectClass graphics_class = {
    .name = "Graphics", .payload_size = sizeof(GraphicsPayload), .finalize = finalize, .methods = methods};

} // namespace kzb
