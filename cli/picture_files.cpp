#include "picture_files.h"

#include "scratch.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace kzb::cli {

namespace {

// The most pixels of an input without --max-pixels: as many as four channels of memory hold or, in files, as the
// runtime takes.
constexpr uint64_t most_in_memory = 500'000'000;
constexpr uint64_t most_in_files = INT32_MAX;

struct CloseReader {
    void operator()(kzb_image_reader *reader) const { kzb_image_close(reader); }
};
using Reader = std::unique_ptr<kzb_image_reader, CloseReader>;

struct DiscardWriter {
    void operator()(kzb_image_writer *writer) const { kzb_image_discard(writer); }
};
using Writer = std::unique_ptr<kzb_image_writer, DiscardWriter>;

Reader open_reader(const std::string &path, uint64_t max_pixels, kzb_image_info &info) {
    const std::string &scratch = scratch_folder();
    const uint64_t most = max_pixels != 0 ? max_pixels : scratch.empty() ? most_in_memory : most_in_files;
    const kzb_read_options options = {most, scratch.empty() ? nullptr : scratch.c_str()};
    kzb_error error = {};
    Reader reader(kzb_image_open(path.c_str(), &options, &info, &error));
    if (reader) return reader;
    std::string message = error.message;
    if (message.ends_with("raise the limit")) message += " with --max-pixels";
    fail(Exit::input, message);
}

std::string size_text(int64_t width, int64_t height) {
    return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

// A block that rows are passed in, and its bytes.
struct RowBlock {
    Value block;
    uint8_t *bytes;

    explicit RowBlock(size_t count)
        : block(Value::object(reinterpret_cast<KZBObject>(kzb_block_new(nullptr, count)))), bytes(nullptr) {
        if (block.is_nil()) throw std::bad_alloc();
        bytes = static_cast<uint8_t *>(kzb_block_bytes(block.as_block(), nullptr));
    }
};

// Turns a picture that comes as its camera stored it, by Exif's orientation.
Value upright(Value picture, int orientation) {
    if (orientation > 4) {
        picture = call(picture, orientation == 8 ? "Rotate90" : "Rotate270", {Value()});
        if (picture.is_nil()) return picture;
    }
    if (orientation == 2 || orientation == 3 || orientation == 5) call(picture, "HMirror");
    if (orientation == 3 || orientation == 4 || orientation == 7) call(picture, "VMirror");
    return picture;
}

[[noreturn]] void fail_room(const std::string &path, const std::string &size) {
    const std::string hint = scratch_hint();
    if (!hint.empty()) fail(Exit::input, input_name(path) + hint);
    fail(Exit::input, input_name(path) + ": " + size +
                          " are too many to be held in memory; make the picture smaller, or give --scratch DIR");
}

// How a picture goes into a file.
struct OutputLayout {
    int channels;
    int64_t format;
    bool alpha_left_out, profile_left_out;
};

// A profile says for which pixels it is: "RGB " or "GRAY".
bool profile_is_for(const std::vector<uint8_t> &profile, const char *space) {
    return profile.size() >= 20 && std::memcmp(&profile[16], space, 4) == 0;
}

OutputLayout layout_for(const Value &picture, bool holds_alpha, const std::vector<uint8_t> &profile) {
    const bool has_alpha = property(picture, "HasAlpha") != 0, alpha = has_alpha && holds_alpha;
    // A gray picture with a profile for colours is written in colours, which the profile then describes.
    const bool gray = property(picture, "IsGray") != 0 && !profile_is_for(profile, "RGB ");
    const char *formats[] = {"ImageFormatRGB", "ImageFormatRGBA", "ImageFormatG", "ImageFormatGA"};
    const int channels = (gray ? 1 : 3) + (alpha ? 1 : 0);
    const bool describes = profile_is_for(profile, gray ? "GRAY" : "RGB ");
    return {channels, constant(formats[(gray ? 2 : 0) + (alpha ? 1 : 0)]), has_alpha && !alpha,
            !profile.empty() && !describes};
}

bool can_be_written(const Value &picture) {
    const bool pixels = property(picture, "IsGray") != 0 || property(picture, "IsRGB") != 0;
    return property(picture, "Valid") != 0 && pixels && property(picture, "Width") > 0 &&
           property(picture, "Height") > 0;
}

} // namespace

std::string input_name(const std::string &path) {
    return path == "-" ? "standard input" : path;
}

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

std::string describe_file(const std::string &path, uint64_t max_pixels) {
    kzb_image_info info = {};
    const Reader reader = open_reader(path, max_pixels, info);
    return std::string(info.format) + ", " + size_text(info.width, info.height);
}

ReadPicture read_picture_file(const std::string &path, uint64_t max_pixels, const RowsDone &rows_done) {
    kzb_image_info info = {};
    const Reader reader = open_reader(path, max_pixels, info);
    const Value format = Value::integer(constant(info.channels == 4 ? "ImageFormatRGBA" : "ImageFormatRGB"));
    ReadPicture read;
    read.picture = call_shared(picture_class, "CreatePictureKZB",
                               {Value::integer(info.width), Value::integer(info.height), format});
    const std::string size = size_text(info.width, info.height);
    if (read.picture.is_nil()) fail_room(path, size);
    const RowBlock row(static_cast<size_t>(info.width) * static_cast<size_t>(info.channels));
    for (int64_t y = 0; y < info.height; ++y) {
        kzb_error error = {};
        if (!kzb_image_read_row(reader.get(), row.bytes, &error)) fail(Exit::input, error.message);
        assign(read.picture, "RowInFormat", {Value::integer(y), format}, row.block);
        rows_done(y + 1, info.height);
    }
    const auto *profile = static_cast<const uint8_t *>(info.profile);
    if (profile != nullptr) read.profile.assign(profile, profile + info.profile_size);
    read.picture = upright(std::move(read.picture), info.orientation);
    if (read.picture.is_nil()) fail_room(path, size);
    if (const std::string hint = scratch_hint(); !hint.empty()) fail(Exit::input, input_name(path) + hint);
    return read;
}

WrittenPicture write_picture_file(const Value &picture, const std::string &path, const WriteOptions &options,
                                  const Catalogue &catalogue, const RowsDone &rows_done) {
    if (!can_be_written(picture))
        fail(Exit::operation, "the chain ends with a picture of " + describe_picture(picture, catalogue) +
                                  ", which no file can hold: it is empty or closed, or neither gray nor coloured");
    CallFailure failure = {};
    kzb_image_kind kind = {};
    if (!kzb_image_kind_of(path.c_str(), &kind, &failure.error)) throw failure;
    const OutputLayout layout = layout_for(picture, kind.holds_alpha != 0, options.profile);
    const bool profile = !options.profile.empty() && !layout.profile_left_out;
    const auto width = static_cast<size_t>(property(picture, "Width"));
    const int64_t height = property(picture, "Height");
    const kzb_image_info info = {static_cast<int32_t>(width),
                                 static_cast<int32_t>(height),
                                 layout.channels,
                                 1,
                                 profile ? options.profile.data() : nullptr,
                                 profile ? options.profile.size() : 0,
                                 nullptr};
    const kzb_write_options write_options = {options.quality, options.lossless};
    kzb_error error = {};
    Writer writer(kzb_image_create(path.c_str(), &info, &write_options, &error));
    if (!writer) fail(Exit::output, error.message);

    const Value format = Value::integer(layout.format);
    const size_t row_bytes = width * static_cast<size_t>(layout.channels);
    const bool alpha = layout.channels % 2 == 0;
    bool all_transparent = alpha;
    for (int64_t y = 0; y < height; ++y) {
        const Value row = call(picture, "RowInFormat", {Value::integer(y), format});
        size_t count = 0;
        const auto *bytes =
            row.is_nil() ? nullptr : static_cast<const uint8_t *>(kzb_block_bytes(row.as_block(), &count));
        if (bytes == nullptr || count < row_bytes)
            fail(Exit::operation, "row " + std::to_string(y) +
                                      " of the picture at the end of the chain cannot be read: "
                                      "it was closed, or there is not enough memory");
        for (size_t i = layout.channels - 1u; all_transparent && i < row_bytes;
             i += static_cast<size_t>(layout.channels))
            all_transparent = bytes[i] == 0;
        if (!kzb_image_write_row(writer.get(), bytes, &error)) fail(Exit::output, error.message);
        rows_done(y + 1, height);
    }
    if (!kzb_image_finish(writer.release(), &error)) fail(Exit::output, error.message);
    return {kind.name, layout.alpha_left_out, layout.profile_left_out, all_transparent};
}

std::string describe_picture(const Value &picture, const Catalogue &catalogue) {
    return size_text(property(picture, "Width"), property(picture, "Height")) + ", " +
           catalogue.layout_name(property(picture, "ImageFormat"));
}

} // namespace kzb::cli
