#include "image_file.h"

#include "error.h"
#include "names.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace kzb {

namespace {

constexpr ImageKind kinds[] = {
    {"PNG", ".png.", "png:", true, false, make_png_writer},
    {"JPEG", ".jpg.jpeg.", "jpg:jpeg:", false, false, make_jpeg_writer},
    {"WebP", ".webp.", "webp:", true, false, make_webp_writer},
    {"TIFF", ".tif.tiff.", "tif:tiff:", true, true, make_tiff_writer},
    {"PNM", ".pnm.pam.", "pnm:pam:", true, false, make_pnm_writer},
    {"PPM", ".ppm.", "ppm:", false, false, make_pnm_writer},
};
constexpr const ImageKind &standard_output_kind = kinds[4];

// Whether a list holds a word that ends with `end`, regardless of case.
bool lists(std::string_view list, std::string_view word, char begin, char end) {
    size_t at = begin ? 1 : 0;
    while (at < list.size()) {
        const size_t next = list.find(end, at);
        if (same_name(list.substr(at, next - at), word)) return true;
        at = next + 1;
    }
    return false;
}

bool is_stream(std::string_view path) {
    return path == "-" || path.ends_with(":-");
}

struct Mark {
    const char *format;
    std::unique_ptr<ImageReader> (*make_reader)(ImageSource &);
    bool (*begins)(const uint8_t *bytes, size_t count); // as far as there are bytes
};

bool starts_like(const uint8_t *bytes, size_t count, const char *start, size_t length) {
    return std::memcmp(bytes, start, std::min(count, length)) == 0;
}

constexpr size_t longest_mark = 12;
constexpr Mark marks[] = {
    {"PNG", make_png_reader,
     [](const uint8_t *bytes, size_t count) { return starts_like(bytes, count, "\x89PNG\r\n\x1A\n", 8); }},
    {"JPEG", make_jpeg_reader,
     [](const uint8_t *bytes, size_t count) { return starts_like(bytes, count, "\xFF\xD8\xFF", 3); }},
    {"WebP", make_webp_reader,
     [](const uint8_t *bytes, size_t count) {
         return starts_like(bytes, count, "RIFF", 4) && (count <= 8 || starts_like(bytes + 8, count - 8, "WEBP", 4));
     }},
    {"TIFF", make_tiff_reader,
     [](const uint8_t *bytes, size_t count) {
         return starts_like(bytes, count, "II*\0", 4) || starts_like(bytes, count, "MM\0*", 4) ||
                starts_like(bytes, count, "II+\0", 4) || starts_like(bytes, count, "MM\0+", 4);
     }},
    {"PNM", make_pnm_reader,
     [](const uint8_t *bytes, size_t count) {
         const bool kind = count < 2 || (bytes[1] >= '1' && bytes[1] <= '7');
         const bool space = count < 3 || bytes[2] == '#' || bytes[2] == ' ' || (bytes[2] >= '\t' && bytes[2] <= '\r');
         return bytes[0] == 'P' && kind && space;
     }},
};

} // namespace

const ImageKind *kind_to_write(std::string_view path) {
    if (path == "-") return &standard_output_kind;
    if (path.ends_with(":-")) {
        for (const ImageKind &kind : kinds)
            if (lists(kind.prefixes, path.substr(0, path.size() - 2), 0, ':')) return &kind;
        return nullptr;
    }
    const size_t dot = path.rfind('.');
    if (dot == path.npos || path.find('/', dot) != path.npos) return nullptr;
    for (const ImageKind &kind : kinds)
        if (lists(kind.endings, path.substr(dot + 1), '.', '.')) return &kind;
    return nullptr;
}

const ImageKind *checked_kind(const char *path, const kzb_write_options *options, kzb_error *error) {
    if (!path) {
        fail(error, KZB_ERROR_USAGE, "the path of the file to write is nil");
        return nullptr;
    }
    const int quality = quality_of(options);
    if (quality < 1 || quality > 100) {
        fail(error, KZB_ERROR_USAGE, "a file's quality is 1 to 100, not %d", quality);
        return nullptr;
    }
    const ImageKind *kind = kind_to_write(path);
    if (kind) return kind;
    const bool stream = is_stream(path);
    fail(error, KZB_ERROR_USAGE,
         stream ? "%s: before ':-' stands the kind of file to write: png, jpg, webp, tif, pnm or ppm"
                : "%s: the name must end in .png, .jpg, .webp, .tif, .pnm or .ppm, which tells the kind of file to "
                  "write",
         path);
    return nullptr;
}

ImageFileReader::ImageFileReader(const char *path, const ReadLimits &limits)
    : input(path), source{std::strcmp(path, "-") == 0 ? "standard input" : path,
                          input,
                          limits.max_pixels,
                          limits.whole_in_memory,
                          limits.scratch,
                          read_failure} {}

bool ImageFileReader::start() {
    const auto error_text = [&] { return std::generic_category().message(input.error()); };
    if (input.error()) return source.fail(KZB_ERROR_INPUT, "cannot be opened: " + error_text());
    input.peek(longest_mark);
    if (input.error()) {
        return source.fail(KZB_ERROR_INPUT, input.error() == EISDIR ? "is a folder, not a picture file"
                                                                    : "cannot be read: " + error_text());
    }
    const size_t count = input.available();
    if (count == 0) return source.fail(KZB_ERROR_INPUT, "the file is empty");
    const Mark *mark = std::find_if(std::begin(marks), std::end(marks),
                                    [&](const Mark &known) { return known.begins(input.next(), count); });
    if (mark == std::end(marks)) {
        return source.fail(KZB_ERROR_INPUT,
                           "is no PNG, JPEG, WebP, TIFF or PNM file; convert it to one of these first");
    }
    source.format = mark->format;
    constexpr size_t shortest = 8;
    if (count < shortest) return source.fail_decoding("too short");
    reader = mark->make_reader(source);
    return reader->start(read_info);
}

ImageFileWriter::ImageFileWriter(const char *path, const ImageKind &kind, int quality, bool lossless)
    : output(is_stream(path) ? "" : path, kind.seeks), target{is_stream(path) ? "standard output" : path, output,
                                                              quality, lossless, write_failure},
      writer(kind.make_writer(target)) {}

bool ImageFileWriter::start(const ImageShape &shape) {
    if (output.error()) return target.fail_encoding("");
    return writer->start(shape);
}

bool ImageFileWriter::finish() {
    return writer->finish() && (output.commit() || target.fail_encoding(""));
}

} // namespace kzb
