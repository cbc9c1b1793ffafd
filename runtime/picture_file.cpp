#include "error.h"
#include "image_file.h"
#include "picture.h"

using namespace kzb;

namespace {

// Wraps the worlds that were read; nil when out of memory.
KZBPicture picture_from_worlds(ImageWorlds worlds) {
    KZBPicture picture = picture_from_world(std::move(worlds.picture));
    if (!picture || !worlds.mask) return picture;
    KZBPicture mask = picture_from_world(std::move(worlds.mask));
    kzb_picture_set_mask(picture, mask);
    object_release(as_object(mask), "kzb_picture_read");
    if (mask) return picture;
    object_release(as_object(picture), "kzb_picture_read");
    return nullptr;
}

} // namespace

KZBPicture kzb_picture_read(const char *path, const kzb_read_options *options, kzb_error *error) {
    return guarded(error, KZBPicture{}, [&]() -> KZBPicture {
        if (!path) {
            fail(error, KZB_ERROR_USAGE, "kzb_picture_read needs the path of a file");
            return nullptr;
        }
        const uint64_t most = options && options->max_pixels ? options->max_pixels : INT32_MAX;
        ImageWorlds worlds;
        FileFailure failure;
        if (!read_image(path, most, worlds, failure)) {
            fail(error, failure.status, "%s", failure.message.c_str());
            return nullptr;
        }
        KZBPicture picture = picture_from_worlds(std::move(worlds));
        if (!picture) throw std::bad_alloc();
        return picture;
    });
}

int kzb_picture_write(KZBPicture reference, const char *path, const kzb_write_options *options, kzb_error *error) {
    return guarded(error, 0, [&]() -> int {
        const PicturePayload *picture = picture_payload(reference, "kzb_picture_write");
        if (!picture) return fail(error, KZB_ERROR_USAGE, "kzb_picture_write needs a picture");
        if (!path) return fail(error, KZB_ERROR_USAGE, "kzb_picture_write needs the path of a file");
        const int quality = options && options->quality ? options->quality : 90;
        if (quality < 1 || quality > 100) {
            return fail(error, KZB_ERROR_USAGE, "a JPEG file's quality is 1 to 100, not %d", quality);
        }
        FileFailure failure;
        if (write_image(path, *picture->world, mask_world(*picture), quality, failure)) return 1;
        return fail(error, failure.status, "%s", failure.message.c_str());
    });
}
