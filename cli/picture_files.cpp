#include "picture_files.h"

#include "runtime/names.h"

#include <cstring>

namespace kzb::cli {

namespace {

int64_t constant(const char *name) {
    int64_t value = 0;
    CallFailure failure = {};
    if (!kzb_constant(picture_class, name, &value, &failure.error)) throw failure;
    return value;
}

// The pictures here come from files or from the module and have exchange pixels: alpha or unused, red, green, blue.
constexpr size_t exchange_pixel = 4;

const uint8_t *row_of(const GWorld &world, kzb_word y) {
    return static_cast<const uint8_t *>(world.base_address) + y * world.row_bytes;
}

// A mask's gray level becomes the alpha of a row's pixels; beyond the mask they are opaque.
void put_alpha(uint8_t *pixels, const GWorld &mask, kzb_word y, kzb_word count) {
    for (kzb_word x = 0; x < count; ++x)
        pixels[x * 4] = y < mask.height && x < mask.width ? row_of(mask, y)[x * 4 + 1] : 255;
}

// Whether a mask lets nothing of its picture show.
bool is_transparent(const GWorld &mask) {
    for (kzb_word y = 0; y < mask.height; ++y) {
        const uint8_t *row = row_of(mask, y);
        for (kzb_word x = 0; x < mask.width; ++x)
            if (row[x * 4 + 1] != 0) return false;
    }
    return true;
}

bool holds_alpha(const std::string &path) { return same_name(path.substr(path.rfind('.')), ".png"); }

} // namespace

Value from_host_picture(const Value &host_picture) {
    const GWorld *world = kzb_picture_world(host_picture.as_picture());
    const Value mask = Value::picture(kzb_picture_mask(host_picture.as_picture()));
    const GWorld *mask_world = mask.is_nil() ? nullptr : kzb_picture_world(mask.as_picture());
    const bool alpha = mask_world != nullptr;
    const Value picture = call_shared(picture_class, "CreatePictureKZB",
                                      {Value::integer(world->width), Value::integer(world->height),
                                       Value::integer(constant(alpha ? "ImageFormatRGBA" : "ImageFormatRGB"))});
    if (picture.is_nil()) return picture;
    const Value format = Value::integer(constant(alpha ? "ImageFormatARGB" : "ImageFormatXRGB"));
    const size_t count = static_cast<size_t>(world->width) * exchange_pixel;
    const Value row = Value::object(reinterpret_cast<KZBObject>(kzb_block_new(nullptr, count)));
    if (row.is_nil()) return row;
    uint8_t *bytes = static_cast<uint8_t *>(kzb_block_bytes(row.as_block(), nullptr));
    for (kzb_word y = 0; y < world->height; ++y) {
        std::memcpy(bytes, row_of(*world, y), count);
        if (alpha) put_alpha(bytes, *mask_world, y, world->width);
        assign(picture, "RowInFormat", {Value::integer(y), format}, row);
    }
    return picture;
}

Value read_picture_file(const std::string &path, uint64_t max_pixels) {
    kzb_error error = {};
    const kzb_read_options options = {max_pixels};
    const Value host_picture = Value::picture(kzb_picture_read(path.c_str(), &options, &error));
    if (host_picture.is_nil()) {
        std::string message = error.message;
        if (max_pixels != 0 && message.ends_with("raise the limit")) message += " (--max-pixels)";
        fail(Exit::input, message);
    }
    const Value picture = from_host_picture(host_picture);
    if (picture.is_nil())
        fail(Exit::input, path + ": " + std::to_string(property(host_picture, "Width")) + " x " +
                              std::to_string(property(host_picture, "Height")) +
                              " pixels are too many to be held in memory; make the picture smaller");
    return picture;
}

WrittenPicture write_picture_file(const Value &picture, const std::string &path, int quality,
                                  const Catalogue &catalogue) {
    const Value host_picture = call(picture, "CopyPictureWithMask");
    if (host_picture.is_nil())
        fail(Exit::operation, "the chain ends with a picture of " + describe_picture(picture, catalogue) +
                                  ", of which no host picture can be made: it is empty, too large, or neither gray "
                                  "nor coloured");
    WrittenPicture written;
    const Value mask = Value::picture(kzb_picture_mask(host_picture.as_picture()));
    if (!mask.is_nil()) {
        written.alpha_left_out = !holds_alpha(path);
        written.all_transparent = is_transparent(*kzb_picture_world(mask.as_picture()));
    }
    kzb_error error = {};
    const kzb_write_options options = {quality};
    if (!kzb_picture_write(host_picture.as_picture(), path.c_str(), &options, &error))
        fail(Exit::output, error.message);
    return written;
}

std::string describe_picture(const Value &picture, const Catalogue &catalogue) {
    return std::to_string(property(picture, "Width")) + " x " + std::to_string(property(picture, "Height")) +
           " pixels, " + catalogue.layout_name(property(picture, "ImageFormat"));
}

} // namespace kzb::cli
