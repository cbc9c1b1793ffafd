#include "picture.h"

#include "audit.h"
#include "entries.h"
#include "error.h"
#include <picturekzb/runtime.h>

namespace kzb {

namespace {

void finalize(KZBObject object) noexcept {
    PicturePayload &picture = payload<PicturePayload>(object);
    if (picture.locks != 0) misuse("a Picture was released while its description was locked");
    object_release(as_object(picture.mask), "a Picture");
    if (picture.owns_world) DisposeWorld()(picture.world);
    destroy_payload<PicturePayload>(object);
}

KZBPicture make_picture(GWorldPtr world, bool owns_world) noexcept {
    return reinterpret_cast<KZBPicture>(
        object_make<PicturePayload>(picture_class, PicturePayload{world, owns_world, nullptr, 0}));
}

int32_t width_of(KZBObject object) {
    return static_cast<int32_t>(payload<PicturePayload>(object).world->width);
}
int32_t height_of(KZBObject object) {
    return static_cast<int32_t>(payload<PicturePayload>(object).world->height);
}
int32_t depth_of(KZBObject object) {
    return static_cast<int32_t>(payload<PicturePayload>(object).world->depth);
}

const IntegerProperty properties[] = {{"Width", width_of}, {"Height", height_of}, {"Depth", depth_of}};

// Whether `mask` is `picture` or has it as its mask, at any distance: references in a circle would never be released.
bool leads_to(KZBPicture mask, KZBPicture picture) noexcept {
    for (; mask; mask = payload<PicturePayload>(as_object(mask)).mask) {
        if (mask == picture) return true;
    }
    return false;
}

KZBPicture picture_retain(KZBPicture picture, const char *caller) noexcept {
    object_retain(as_object(picture), caller);
    return picture;
}

// A mask of depth 32, so that it can be read, drawn to and wrapped like any picture; white, which is opaque.
KZBPicture make_mask(const GWorld &world) noexcept {
    return kzb_picture_new(static_cast<int32_t>(world.width), static_cast<int32_t>(world.height), 32);
}

KZBPicture newPicture(int32_t width, int32_t height, int32_t depth) {
    return kzb_picture_new(width, height, depth);
}

KZBPicture REALBuildPictureFromGWorld(GWorldPtr world, KZBBoolean take_over) {
    return is_drawable(world) ? make_picture(world, take_over != 0) : nullptr;
}

KZBBoolean lockPictureDescription(KZBPicture reference, PictureDescription *description) {
    PicturePayload *picture = picture_payload(reference, "lockPictureDescription");
    if (!picture || !description) return 0;
    const GWorld &world = *picture->world;
    *description = {KZB_PICTURE_GWORLD, picture->world, world.row_bytes * world.height, world.width, world.height};
    ++picture->locks;
    return 1;
}

void unlockPictureDescription(KZBPicture reference, PictureDescription *) {
    PicturePayload *picture = picture_payload(reference, "unlockPictureDescription");
    if (!picture) return;
    if (picture->locks == 0) {
        misuse("unlockPictureDescription was given a Picture whose description is not locked");
        return;
    }
    --picture->locks;
}

KZBPicture REALGetPictureMask(KZBPicture reference, KZBBoolean create) {
    PicturePayload *picture = picture_payload(reference, "REALGetPictureMask");
    if (!picture) return nullptr;
    if (!picture->mask && create) picture->mask = make_mask(*picture->world);
    return picture_retain(picture->mask, "REALGetPictureMask");
}

const HostEntry list[] = {KZB_HOST_ENTRY(newPicture), KZB_HOST_ENTRY(REALBuildPictureFromGWorld),
                          KZB_HOST_ENTRY(lockPictureDescription), KZB_HOST_ENTRY(unlockPictureDescription),
                          KZB_HOST_ENTRY(REALGetPictureMask)};
const ObjectClass *const classes[] = {&picture_class};
const Contribution contribution(list, classes);

} // namespace

const ObjectClass picture_class = {
    .name = "Picture", .payload_size = sizeof(PicturePayload), .finalize = finalize, .integers = properties};

KZBPicture picture_from_world(WorldOwner world) noexcept {
    if (!world) return nullptr;
    KZBPicture picture = make_picture(world.get(), true);
    if (picture) world.release();
    return picture;
}

PicturePayload *picture_payload(KZBPicture picture, const char *caller) noexcept {
    if (!object_is(as_object(picture), picture_class, caller)) return nullptr;
    return &payload<PicturePayload>(as_object(picture));
}

const GWorld *mask_world(const PicturePayload &picture) noexcept {
    return picture.mask ? payload<PicturePayload>(as_object(picture.mask)).world : nullptr;
}

} // namespace kzb

using namespace kzb;

KZBPicture kzb_picture_new(int32_t width, int32_t height, int32_t depth) {
    return guarded(nullptr, KZBPicture{}, [&]() -> KZBPicture {
        WorldOwner world = make_world(width, height, depth);
        if (world) fill_white(*world);
        return picture_from_world(std::move(world));
    });
}

GWorldPtr kzb_picture_world(KZBPicture reference) {
    const PicturePayload *picture = picture_payload(reference, "kzb_picture_world");
    return picture ? picture->world : nullptr;
}

KZBPicture kzb_picture_mask(KZBPicture reference) {
    const PicturePayload *picture = picture_payload(reference, "kzb_picture_mask");
    return picture ? picture_retain(picture->mask, "kzb_picture_mask") : nullptr;
}

void kzb_picture_set_mask(KZBPicture reference, KZBPicture mask) {
    PicturePayload *picture = picture_payload(reference, "kzb_picture_set_mask");
    if (!picture || (mask && !picture_payload(mask, "kzb_picture_set_mask"))) return;
    if (leads_to(mask, reference)) {
        misuse("kzb_picture_set_mask was given a mask that has the Picture as its own mask");
        return;
    }
    KZBPicture old = picture->mask;
    picture->mask = picture_retain(mask, "kzb_picture_set_mask");
    object_release(as_object(old), "kzb_picture_set_mask");
}
