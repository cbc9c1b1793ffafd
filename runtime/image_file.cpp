#include "image_file.h"

#include "names.h"

#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>

namespace kzb {

namespace {

std::string error_text(int error) {
    return std::generic_category().message(error);
}

bool fail_with(FileFailure &failure, kzb_status status, const char *path, const std::string &what) {
    failure.status = status;
    failure.message = std::string(path) + ": " + what;
    return false;
}

std::string size_text(uint64_t width, uint64_t height) {
    return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

using Writer = bool (*)(ImageWriting &);

Writer writer_for(std::string_view path) {
    const size_t dot = path.rfind('.');
    const std::string_view ending = dot == path.npos ? std::string_view() : path.substr(dot);
    if (same_name(ending, ".png")) return write_png;
    if (same_name(ending, ".jpg") || same_name(ending, ".jpeg")) return write_jpeg;
    return nullptr;
}

} // namespace

bool ImageReading::fail(kzb_status status, const std::string &what) {
    return fail_with(failure, status, path, what);
}

bool ImageReading::fail_decoding(const char *reason) {
    if (input.error()) return fail(KZB_ERROR_INPUT, "cannot be read: " + error_text(input.error()));
    const std::string file = std::string("the ") + format + " file ";
    if (input.ended()) return fail(KZB_ERROR_INPUT, file + "ends too early, a part of it is missing; copy it again");
    return fail(KZB_ERROR_INPUT, file + "is damaged or of a kind that cannot be read (" + reason + ")");
}

bool ImageReading::size_fits(uint64_t width, uint64_t height) {
    const bool fits = width <= INT32_MAX && height <= INT32_MAX;
    if (fits && world_row_bytes(static_cast<int32_t>(width), static_cast<int32_t>(height), 32) != 0) return true;
    return fail(KZB_ERROR_INPUT,
                "the picture is too large for this program: " + size_text(width, height) + "; make it smaller");
}

bool ImageReading::make_worlds(uint64_t width, uint64_t height, bool alpha, ImageWorlds &worlds) {
    if (!size_fits(width, height)) return false;
    const std::string size = size_text(width, height);
    if (width * height > max_pixels) {
        return fail(KZB_ERROR_INPUT, "the picture is too large: " + size + ", and the limit is " +
                                         std::to_string(max_pixels) + " pixels; make it smaller or raise the limit");
    }
    worlds.picture = make_world(static_cast<int32_t>(width), static_cast<int32_t>(height), 32);
    if (alpha) worlds.mask = make_world(static_cast<int32_t>(width), static_cast<int32_t>(height), 32);
    if (worlds.picture && (worlds.mask || !alpha)) return true;
    return fail(KZB_ERROR_MEMORY, "there is not enough memory for the picture's " + size);
}

bool read_image(const char *path, uint64_t max_pixels, ImageWorlds &worlds, FileFailure &failure) {
    InputFile input(path);
    if (input.error()) {
        return fail_with(failure, KZB_ERROR_INPUT, path, "cannot be opened: " + error_text(input.error()));
    }
    static constexpr uint8_t png_start[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    static constexpr uint8_t jpeg_start[] = {0xFF, 0xD8, 0xFF};
    const bool longest = input.peek(sizeof png_start);
    if (input.error()) {
        const std::string what = input.error() == EISDIR ? "is a folder, not a picture file"
                                                         : "cannot be read: " + error_text(input.error());
        return fail_with(failure, KZB_ERROR_INPUT, path, what);
    }
    if (input.available() == 0) return fail_with(failure, KZB_ERROR_INPUT, path, "the file is empty");
    const auto starts_like = [&](const uint8_t *start, size_t count) {
        return std::memcmp(input.next(), start, std::min(count, input.available())) == 0;
    };
    const bool png = starts_like(png_start, sizeof png_start), jpeg = starts_like(jpeg_start, sizeof jpeg_start);
    if (!png && !jpeg) {
        return fail_with(failure, KZB_ERROR_INPUT, path,
                         "is neither a PNG nor a JPEG file; convert it to one of these first");
    }
    ImageReading reading{path, png ? "PNG" : "JPEG", input, max_pixels, failure};
    if (!longest) return reading.fail_decoding("too short");
    ImageWorlds made;
    if (!(png ? read_png(reading, made) : read_jpeg(reading, made))) return false;
    worlds = std::move(made);
    return true;
}

bool ImageWriting::fail(kzb_status status, const std::string &what) {
    return fail_with(failure, status, path, what);
}

bool ImageWriting::fail_encoding(const char *reason) {
    if (output.error() == ENOENT) {
        return fail(KZB_ERROR_OUTPUT, "cannot be written: its folder does not exist; make the folder first");
    }
    if (output.error() == EISDIR) return fail(KZB_ERROR_OUTPUT, "cannot be written: it is a folder; name a file in it");
    return fail(KZB_ERROR_OUTPUT, "cannot be written: " + (output.error() ? error_text(output.error()) : reason));
}

bool write_image(const char *path, const GWorld &picture, const GWorld *mask, int quality, FileFailure &failure) {
    const Writer write = writer_for(path);
    if (!write) {
        return fail_with(failure, KZB_ERROR_USAGE, path,
                         "the name must end in .png, .jpg or .jpeg, which tells the kind of file to write");
    }
    OutputFile output(path);
    ImageWriting writing{path, picture, mask, quality, output, failure};
    if (output.error()) return writing.fail_encoding("");
    if (!write(writing)) return false;
    return output.commit() || writing.fail_encoding("");
}

} // namespace kzb
