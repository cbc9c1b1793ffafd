// What the kinds of image files have in common: readers that give a picture's rows from top to bottom, and writers that
// take them.
//
// Rows are packed bytes, one per channel: red, green, blue and, where the picture has it, alpha; written ones may also
// be gray, or gray and alpha.
#ifndef KZB_RUNTIME_IMAGE_CODEC_H
#define KZB_RUNTIME_IMAGE_CODEC_H

#include "input_file.h"
#include "output_file.h"

#include <picturekzb/runtime.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace kzb {

// What went wrong: one line that begins with the file's name.
struct FileFailure {
    kzb_status status = KZB_OK;
    std::string message;
};

// What a file says about its picture, as stored.
struct ImageInfo {
    uint32_t width = 0, height = 0;
    bool alpha = false;
    int orientation = 1;          // as in Exif: 1 to 8, how the rows are to be turned to stand upright
    std::vector<uint8_t> profile; // the ICC profile; empty: none
};

// A file that is being read, and what its reader reports.
struct ImageSource {
    std::string name;
    InputFile &input;
    uint64_t max_pixels;
    bool whole_in_memory; // the picture goes into a graphics world, which has limits of its own
    std::string scratch;  // the folder for what must be held whole; empty: memory
    FileFailure &failure;
    const char *format = ""; // "PNG", "JPEG" ...

    // Whether a file's size fits this program and the limit.
    bool size_fits(uint64_t width, uint64_t height);
    bool within_limit(uint64_t width, uint64_t height);

    // What a decoder that gave up reports: the file ended early, could not be read, or is damaged as `reason` says.
    bool fail_decoding(const char *reason);
    bool fail_too_short(uint64_t width, uint64_t height);
    bool fail_memory();
    bool fail(kzb_status status, const std::string &what);
};

// Both functions report failures to the source and throw nothing but std::bad_alloc.
class ImageReader {
public:
    explicit ImageReader(ImageSource &read_from) : source(read_from) {}
    virtual ~ImageReader() = default;
    ImageReader(const ImageReader &) = delete;
    ImageReader &operator=(const ImageReader &) = delete;

    // Reads up to the pixels.
    virtual bool start(ImageInfo &info) = 0;

    // Reads the next row; with the last one the file is read to its end.
    virtual bool read_row(uint8_t *row) = 0;

protected:
    ImageSource &source;
};

// What is to be written.
struct ImageShape {
    uint32_t width, height;
    int channels; // 1 gray, 2 and alpha, 3 red green blue, 4 and alpha
    std::span<const uint8_t> profile;

    bool alpha() const { return channels % 2 == 0; }
    bool gray() const { return channels < 3; }
    size_t row_bytes() const { return static_cast<size_t>(width) * static_cast<size_t>(channels); }
};

struct ImageTarget {
    std::string name;
    OutputFile &output;
    int quality; // 1 to 100
    bool lossless;
    FileFailure &failure;

    bool fail_encoding(const char *reason);
    bool fail_size(const char *format, unsigned most);
    bool fail_memory();
    bool fail(kzb_status status, const std::string &what);
};

class ImageWriter {
public:
    explicit ImageWriter(ImageTarget &write_to) : target(write_to) {}
    virtual ~ImageWriter() = default;
    ImageWriter(const ImageWriter &) = delete;
    ImageWriter &operator=(const ImageWriter &) = delete;

    virtual bool start(const ImageShape &shape) = 0;
    virtual bool write_row(const uint8_t *row) = 0;
    virtual bool finish() = 0; // after the last row

protected:
    ImageTarget &target;
};

std::unique_ptr<ImageReader> make_png_reader(ImageSource &source);
std::unique_ptr<ImageReader> make_jpeg_reader(ImageSource &source);
std::unique_ptr<ImageReader> make_webp_reader(ImageSource &source);
std::unique_ptr<ImageReader> make_tiff_reader(ImageSource &source);
std::unique_ptr<ImageReader> make_pnm_reader(ImageSource &source);

std::unique_ptr<ImageWriter> make_png_writer(ImageTarget &target);
std::unique_ptr<ImageWriter> make_jpeg_writer(ImageTarget &target);
std::unique_ptr<ImageWriter> make_webp_writer(ImageTarget &target);
std::unique_ptr<ImageWriter> make_tiff_writer(ImageTarget &target);
std::unique_ptr<ImageWriter> make_pnm_writer(ImageTarget &target);

} // namespace kzb

#endif
