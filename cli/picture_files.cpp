#include "picture_files.h"

#include "runtime/names.h"

namespace kzb::cli {

namespace {

int64_t constant(const char *name) {
    int64_t value = 0;
    CallFailure failure = {};
    if (!kzb_constant(picture_class, name, &value, &failure.error)) throw failure;
    return value;
}

// Whether a mask, which has exchange pixels, lets nothing of its picture show.
bool is_transparent(const GWorld &mask) {
    const uint8_t *row = static_cast<const uint8_t *>(mask.base_address);
    for (kzb_word y = 0; y < mask.height; ++y, row += mask.row_bytes)
        for (kzb_word x = 0; x < mask.width; ++x)
            if (row[x * 4 + 1] != 0) return false;
    return true;
}

bool holds_alpha(const std::string &path) {
    return same_name(path.substr(path.rfind('.')), ".png");
}

} // namespace

Value from_host_picture(const Value &host_picture) {
    const Value width = Value::integer(property(host_picture, "Width"));
    const Value height = Value::integer(property(host_picture, "Height"));
    const Value mask = Value::picture(kzb_picture_mask(host_picture.as_picture()));
    const Value format = Value::integer(constant(mask.is_nil() ? "ImageFormatRGB" : "ImageFormatRGBA"));
    const Value picture = call_shared(picture_class, "CreatePictureKZB", {width, height, format});
    if (picture.is_nil()) return picture;
    const Value origin = Value::integer(0);
    call(picture, "DrawPictureRGB", {host_picture, origin, origin, width, height});
    if (!mask.is_nil())
        call(call(picture, "AlphaChannel"), "DrawPictureRedToGrayChannel", {mask, origin, origin, width, height});
    return picture;
}

Value read_picture_file(const std::string &path, uint64_t max_pixels) {
    kzb_error error = {};
    const kzb_read_options options = {max_pixels, nullptr};
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
    const kzb_write_options options = {quality, 0};
    if (!kzb_picture_write(host_picture.as_picture(), path.c_str(), &options, &error))
        fail(Exit::output, error.message);
    return written;
}

std::string describe_picture(const Value &picture, const Catalogue &catalogue) {
    return std::to_string(property(picture, "Width")) + " x " + std::to_string(property(picture, "Height")) +
           " pixels, " + catalogue.layout_name(property(picture, "ImageFormat"));
}

} // namespace kzb::cli
