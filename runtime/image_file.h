// PNG and JPEG files, read into graphics worlds and written from them.
#ifndef KZB_RUNTIME_IMAGE_FILE_H
#define KZB_RUNTIME_IMAGE_FILE_H

#include "graphics_world.h"
#include "input_file.h"
#include "output_file.h"

#include <picturekzb/runtime.h>

#include <string>

namespace kzb {

// What went wrong: one line that begins with the file's name.
struct FileFailure {
    kzb_status status = KZB_OK;
    std::string message;
};

// A picture of depth 32 and, where the file has alpha, its mask of the same depth and size (alpha in red, green, blue).
struct ImageWorlds {
    WorldOwner picture, mask;
};

// Both read a file of any length, tell PNG from JPEG by its first bytes, and leave `worlds` alone on failure. They
// throw nothing but std::bad_alloc.
bool read_image(const char *path, uint64_t max_pixels, ImageWorlds &worlds, FileFailure &failure);

// `quality` is JPEG's, 1 to 100. `mask` may be nil, and of another size than the picture: beyond it the picture is
// opaque.
bool write_image(const char *path, const GWorld &picture, const GWorld *mask, int quality, FileFailure &failure);

// ------------------------------------------------------------------------------- between the formats and the above

// A format's reader: finds the input at the file's first byte.
struct ImageReading {
    const char *path;
    const char *format; // "PNG", "JPEG"
    InputFile &input;
    uint64_t max_pixels;
    FileFailure &failure;

    // Whether a file's size fits this program; then the worlds for it. False: too large.
    bool size_fits(uint64_t width, uint64_t height);
    bool make_worlds(uint64_t width, uint64_t height, bool alpha, ImageWorlds &worlds);

    // What a decoder that gave up reports: the file ended early, could not be read, or is damaged as `reason` says.
    bool fail_decoding(const char *reason);
    bool fail(kzb_status status, const std::string &what);
};

struct ImageWriting {
    const char *path;
    const GWorld &picture;
    const GWorld *mask;
    int quality;
    OutputFile &output;
    FileFailure &failure;

    bool fail_encoding(const char *reason);
    bool fail(kzb_status status, const std::string &what);
};

bool read_png(ImageReading &reading, ImageWorlds &worlds);
bool read_jpeg(ImageReading &reading, ImageWorlds &worlds);
bool write_png(ImageWriting &writing);
bool write_jpeg(ImageWriting &writing);

} // namespace kzb

#endif
