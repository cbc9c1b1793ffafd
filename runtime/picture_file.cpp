#include "error.h"
#include "exif.h"
#include "image_file.h"
#include "picture.h"
#include "pixel_rows.h"

using namespace kzb;

namespace {

// A picture of depth 32 and, where the file has alpha, its mask of the same depth and size (alpha in red, green, blue).
struct ImageWorlds {
    WorldOwner picture, mask;
};

// Where the pixels of a stored row go so that the picture stands upright.
struct Placement {
    int64_t x, y, step_x, step_y;
};

Placement place_row(int orientation, int64_t row, int64_t width, int64_t height) {
    switch (orientation) {
    case 2:
        return {width - 1, row, -1, 0};
    case 3:
        return {width - 1, height - 1 - row, -1, 0};
    case 4:
        return {0, height - 1 - row, 1, 0};
    case 5:
        return {row, 0, 0, 1};
    case 6:
        return {height - 1 - row, 0, 0, 1};
    case 7:
        return {height - 1 - row, width - 1, 0, -1};
    case 8:
        return {row, width - 1, 0, -1};
    default:
        return {0, row, 1, 0};
    }
}

void place(const uint8_t *row, const ImageInfo &info, int64_t index, const ImageWorlds &worlds) {
    const Placement to = place_row(info.orientation, index, info.width, info.height);
    const auto step = static_cast<ptrdiff_t>(to.step_x * 4 + to.step_y * worlds.picture->row_bytes);
    uint8_t *pixel = world_row(*worlds.picture, to.y) + to.x * 4;
    uint8_t *level = info.alpha ? world_row(*worlds.mask, to.y) + to.x * 4 : nullptr;
    for (uint32_t x = 0; x < info.width; ++x, pixel += step) {
        pixel[0] = 0;
        for (int i = 0; i < 3; ++i) pixel[i + 1] = row[i];
        if (level) {
            level[0] = 0;
            level[1] = level[2] = level[3] = row[3];
            level += step;
        }
        row += info.alpha ? 4 : 3;
    }
}

bool read_worlds(ImageFileReader &file, ImageWorlds &worlds, kzb_error *error) {
    const ImageInfo &info = file.info();
    auto width = static_cast<int32_t>(info.width), height = static_cast<int32_t>(info.height);
    if (lies_on_its_side(info.orientation)) std::swap(width, height);
    worlds.picture = make_world(width, height, 32);
    if (info.alpha) worlds.mask = make_world(width, height, 32);
    if (!worlds.picture || (info.alpha && !worlds.mask)) throw std::bad_alloc();
    std::vector<uint8_t> row(file.row_bytes());
    for (uint32_t y = 0; y < info.height; ++y) {
        if (!file.read_row(row.data())) {
            return fail(error, file.failure().status, "%s", file.failure().message.c_str());
        }
        place(row.data(), info, y, worlds);
    }
    return true;
}

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

bool write_worlds(ImageFileWriter &file, const GWorld &picture, const GWorld *mask) {
    const auto width = static_cast<size_t>(picture.width);
    const int channels = mask ? 4 : 3;
    const ImageShape shape = {
        static_cast<uint32_t>(picture.width), static_cast<uint32_t>(picture.height), channels, {}};
    if (!file.start(shape)) return false;
    std::vector<uint8_t> pixels(width * 4), levels(mask ? width : 0), row(shape.row_bytes());
    for (kzb_word y = 0; y < picture.height; ++y) {
        read_pixels(picture, 0, y, width, pixels.data());
        if (mask) read_mask(*mask, 0, y, width, levels.data());
        uint8_t *to = row.data();
        for (size_t x = 0; x < width; ++x, to += channels) {
            for (size_t i = 0; i < 3; ++i) to[i] = pixels[x * 4 + i + 1];
            if (mask) to[3] = levels[x];
        }
        if (!file.write_row(row.data())) return false;
    }
    return file.finish();
}

} // namespace

KZBPicture kzb_picture_read(const char *path, const kzb_read_options *options, kzb_error *error) {
    return guarded(error, KZBPicture{}, [&]() -> KZBPicture {
        if (!path) {
            fail(error, KZB_ERROR_USAGE, "kzb_picture_read needs the path of a file");
            return nullptr;
        }
        ReadLimits limits;
        if (options && options->max_pixels) limits.max_pixels = options->max_pixels;
        if (options && options->scratch_folder) limits.scratch = options->scratch_folder;
        ImageFileReader file(path, limits);
        ImageWorlds worlds;
        if (!file.start()) {
            fail(error, file.failure().status, "%s", file.failure().message.c_str());
            return nullptr;
        }
        if (!read_worlds(file, worlds, error)) return nullptr;
        KZBPicture picture = picture_from_worlds(std::move(worlds));
        if (!picture) throw std::bad_alloc();
        return picture;
    });
}

int kzb_picture_write(KZBPicture reference, const char *path, const kzb_write_options *options, kzb_error *error) {
    return guarded(error, 0, [&]() -> int {
        const PicturePayload *picture = picture_payload(reference, "kzb_picture_write");
        if (!picture) return fail(error, KZB_ERROR_USAGE, "kzb_picture_write needs a picture");
        const ImageKind *kind = checked_kind(path, options, error);
        if (!kind) return 0;
        ImageFileWriter file(path, *kind, quality_of(options), options && options->lossless);
        const GWorld *mask = kind->alpha ? mask_world(*picture) : nullptr;
        if (write_worlds(file, *picture->world, mask)) return 1;
        return fail(error, file.failure().status, "%s", file.failure().message.c_str());
    });
}
