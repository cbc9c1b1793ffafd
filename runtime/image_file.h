// Image files of all kinds, opened for reading and made for writing, row by row.
#ifndef KZB_RUNTIME_IMAGE_FILE_H
#define KZB_RUNTIME_IMAGE_FILE_H

#include "image_codec.h"

#include <string_view>

namespace kzb {

struct ImageKind {
    const char *name;
    const char *endings;  // ".jpg.jpeg."
    const char *prefixes; // "jpg:jpeg:", before "-"
    bool alpha;           // whether it can hold any
    bool seeks;           // its writer goes back to what it wrote
    std::unique_ptr<ImageWriter> (*make_writer)(ImageTarget &);
};

// The kind that a path's ending, or the prefix before "-" for standard output, asks for; "-" alone is an anymap. Nil:
// no kind.
const ImageKind *kind_to_write(std::string_view path);

// The same with the caller's mistakes told; the path and the options may be nil.
const ImageKind *checked_kind(const char *path, const kzb_write_options *options, kzb_error *error);

inline int quality_of(const kzb_write_options *options) {
    return options && options->quality ? options->quality : 90;
}

struct ReadLimits {
    uint64_t max_pixels = INT32_MAX;
    bool whole_in_memory = true;
    std::string scratch;
};

// A file that is being read; "-" is standard input. The kind is told by the first bytes.
class ImageFileReader {
public:
    ImageFileReader(const char *path, const ReadLimits &limits);

    bool start(); // false: failure() tells
    bool read_row(uint8_t *row) { return reader->read_row(row); }

    const ImageInfo &info() const { return read_info; }
    const char *format() const { return source.format; }
    const FileFailure &failure() const { return read_failure; }
    // Bytes of a packed row.
    size_t row_bytes() const { return size_t{read_info.width} * (read_info.alpha ? 4 : 3); }

private:
    FileFailure read_failure;
    InputFile input;
    ImageSource source;
    ImageInfo read_info;
    std::unique_ptr<ImageReader> reader;
};

// A file that is being written. Unless finish() succeeds, what had the name before stays.
class ImageFileWriter {
public:
    ImageFileWriter(const char *path, const ImageKind &kind, int quality, bool lossless);

    bool start(const ImageShape &shape); // false: failure() tells
    bool write_row(const uint8_t *row) { return writer->write_row(row); }
    bool finish();

    const FileFailure &failure() const { return write_failure; }

private:
    FileFailure write_failure;
    OutputFile output;
    ImageTarget target;
    std::unique_ptr<ImageWriter> writer;
};

} // namespace kzb

#endif
