#include "image_codec.h"

#include "graphics_world.h"

#include <cerrno>
#include <system_error>

namespace kzb {

namespace {

std::string error_text(int error) {
    return std::generic_category().message(error);
}

bool fail_with(FileFailure &failure, kzb_status status, const std::string &name, const std::string &what) {
    failure.status = status;
    failure.message = name + ": " + what;
    return false;
}

std::string size_text(uint64_t width, uint64_t height) {
    return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

bool fits_a_world(uint64_t width, uint64_t height) {
    return world_row_bytes(static_cast<int32_t>(width), static_cast<int32_t>(height), 32) != 0;
}

} // namespace

bool ImageSource::fail(kzb_status status, const std::string &what) {
    return fail_with(failure, status, name, what);
}

bool ImageSource::fail_memory() {
    return fail(KZB_ERROR_MEMORY,
                "there is not enough memory to read it" + (scratch.empty() ? "" : ", or no room in " + scratch));
}

bool ImageSource::fail_decoding(const char *reason) {
    if (input.error()) return fail(KZB_ERROR_INPUT, "cannot be read: " + error_text(input.error()));
    const std::string file = std::string("the ") + format + " file ";
    if (input.ended()) return fail(KZB_ERROR_INPUT, file + "ends too early, a part of it is missing; copy it again");
    return fail(KZB_ERROR_INPUT, file + "is damaged or of a kind that cannot be read (" + reason + ")");
}

bool ImageSource::fail_too_short(uint64_t width, uint64_t height) {
    return fail(KZB_ERROR_INPUT, std::string("the ") + format + " file is damaged: too short for the size that it " +
                                     "states, " + size_text(width, height));
}

bool ImageSource::size_fits(uint64_t width, uint64_t height) {
    // A row of four channels is counted in 31 bits.
    const bool fits = width > 0 && height > 0 && width <= INT32_MAX / 4 && height <= INT32_MAX;
    if (fits && (!whole_in_memory || fits_a_world(width, height))) return true;
    return fail(KZB_ERROR_INPUT,
                "the picture is too large for this program: " + size_text(width, height) + "; make it smaller");
}

bool ImageSource::within_limit(uint64_t width, uint64_t height) {
    if (width * height <= max_pixels) return true;
    return fail(KZB_ERROR_INPUT, "the picture is too large: " + size_text(width, height) + ", and the limit is " +
                                     std::to_string(max_pixels) + " pixels; make it smaller or raise the limit");
}

bool ImageTarget::fail(kzb_status status, const std::string &what) {
    return fail_with(failure, status, name, what);
}

bool ImageTarget::fail_memory() {
    return fail(KZB_ERROR_MEMORY, "there is not enough memory to write it");
}

bool ImageTarget::fail_size(const char *format, unsigned most) {
    return fail(KZB_ERROR_OUTPUT, std::string("a ") + format + " file holds at most " + std::to_string(most) +
                                      " pixels each way; write a PNG file instead");
}

bool ImageTarget::fail_encoding(const char *reason) {
    if (output.error() == ENOENT) {
        return fail(KZB_ERROR_OUTPUT, "cannot be written: its folder does not exist; make the folder first");
    }
    if (output.error() == EISDIR) return fail(KZB_ERROR_OUTPUT, "cannot be written: it is a folder; name a file in it");
    return fail(KZB_ERROR_OUTPUT, "cannot be written: " + (output.error() ? error_text(output.error()) : reason));
}

} // namespace kzb
