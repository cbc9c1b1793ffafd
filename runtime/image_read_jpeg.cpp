#include "exif.h"
#include "image_codec.h"
#include "jpeg_errors.h"

#include <jerror.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace kzb {

namespace {

constexpr int exif_marker = JPEG_APP0 + 1;

struct JpegSource {
    jpeg_source_mgr manager;
    InputFile *input;
};

JpegSource &source_of(j_decompress_ptr codec) {
    return *reinterpret_cast<JpegSource *>(codec->src);
}

void source_nothing(j_decompress_ptr) {}

boolean fill_source(j_decompress_ptr codec) {
    JpegSource &source = source_of(codec);
    if (!source.input->fill()) ERREXIT(codec, JERR_INPUT_EOF);
    source.manager.next_input_byte = source.input->next();
    source.manager.bytes_in_buffer = source.input->available();
    source.input->take(source.input->available());
    return TRUE;
}

void skip_source(j_decompress_ptr codec, long count) {
    jpeg_source_mgr &manager = source_of(codec).manager;
    while (count > 0) {
        if (manager.bytes_in_buffer == 0) fill_source(codec);
        const size_t part = std::min(static_cast<size_t>(count), manager.bytes_in_buffer);
        manager.next_input_byte += part;
        manager.bytes_in_buffer -= part;
        count -= static_cast<long>(part);
    }
}

// A small file can hold thousands of scans over a large picture; no honest one has this many.
void limit_scans(j_common_ptr codec) {
    constexpr int most_scans = 500;
    if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > most_scans) {
        ERREXIT(codec, JERR_BAD_PROGRESSION);
    }
}

struct JpegReading {
    jpeg_decompress_struct codec{};
    JpegErrors errors{};
    JpegSource source{};
    jpeg_progress_mgr progress{};

    explicit JpegReading(InputFile &input) {
        codec.err = prepare_errors(errors);
        source.input = &input;
        source.manager.init_source = source_nothing;
        source.manager.fill_input_buffer = fill_source;
        source.manager.skip_input_data = skip_source;
        source.manager.resync_to_restart = jpeg_resync_to_restart;
        source.manager.term_source = source_nothing;
        progress.progress_monitor = limit_scans;
    }
    ~JpegReading() { jpeg_destroy_decompress(&codec); }
};

bool read_header(JpegReading &work) {
    if (setjmp(work.errors.jump)) return false;
    jpeg_create_decompress(&work.codec);
    work.codec.src = &work.source.manager;
    work.codec.progress = &work.progress;
    constexpr unsigned whole = 0xFFFF;
    jpeg_save_markers(&work.codec, exif_marker, whole);
    jpeg_save_markers(&work.codec, JPEG_APP0 + 2, whole);
    jpeg_read_header(&work.codec, TRUE);
    const bool inks = work.codec.jpeg_color_space == JCS_CMYK || work.codec.jpeg_color_space == JCS_YCCK;
    work.codec.out_color_space = inks ? JCS_CMYK : JCS_RGB;
    return true;
}

// The memory is the caller's to free.
bool take_profile(JpegReading &work, JOCTET *&profile, unsigned &count) {
    if (setjmp(work.errors.jump)) return false;
    if (!jpeg_read_icc_profile(&work.codec, &profile, &count)) profile = nullptr;
    return true;
}

int orientation_of(const jpeg_decompress_struct &codec) {
    for (const jpeg_marker_struct *marker = codec.marker_list; marker; marker = marker->next) {
        if (marker->marker != exif_marker || marker->data_length < 6) continue;
        if (std::memcmp(marker->data, "Exif", 4) == 0) return exif_orientation(marker->data, marker->data_length);
    }
    return 1;
}

// Inks to red, green, blue. Files with an Adobe marker store 255 for no ink, others 0.
void print_inks(const uint8_t *inks, uint8_t *row, size_t count, bool inverted) {
    const uint8_t flip = inverted ? 0 : 255;
    for (; count > 0; --count, inks += 4, row += 3) {
        const unsigned black = inks[3] ^ flip;
        for (int i = 0; i < 3; ++i) row[i] = static_cast<uint8_t>(((inks[i] ^ flip) * black + 127) / 255);
    }
}

bool start_rows(JpegReading &work) {
    if (setjmp(work.errors.jump)) return false;
    jpeg_start_decompress(&work.codec);
    return true;
}

// With the last row the file is read to its end.
bool next_row(JpegReading &work, uint8_t *row) {
    if (setjmp(work.errors.jump)) return false;
    if (jpeg_read_scanlines(&work.codec, &row, 1) != 1) ERREXIT(&work.codec, JERR_INPUT_EOF);
    if (work.codec.output_scanline == work.codec.output_height) jpeg_finish_decompress(&work.codec);
    return true;
}

class JpegReader : public ImageReader {
public:
    explicit JpegReader(ImageSource &read_from) : ImageReader(read_from), work(read_from.input) {}

    bool start(ImageInfo &info) override {
        if (!read_header(work)) return fail();
        const jpeg_decompress_struct &codec = work.codec;
        if (!source.size_fits(codec.image_width, codec.image_height) ||
            !source.within_limit(codec.image_width, codec.image_height)) {
            return false;
        }
        info.width = codec.image_width;
        info.height = codec.image_height;
        info.orientation = orientation_of(codec);
        JOCTET *profile = nullptr;
        unsigned count = 0;
        if (!take_profile(work, profile, count)) return fail();
        const std::unique_ptr<JOCTET, decltype(&std::free)> owner(profile, std::free);
        if (profile) info.profile.assign(profile, profile + count);
        if (codec.out_color_space == JCS_CMYK) inks.resize(size_t{codec.image_width} * 4);
        return true;
    }

    bool read_row(uint8_t *row) override {
        if (!started && !start_rows(work)) return fail();
        started = true;
        if (inks.empty()) return next_row(work, row) || fail();
        if (!next_row(work, inks.data())) return fail();
        print_inks(inks.data(), row, work.codec.image_width, work.codec.saw_Adobe_marker != 0);
        return true;
    }

private:
    bool fail() { return work.errors.out_of_memory ? source.fail_memory() : source.fail_decoding(work.errors.reason); }

    JpegReading work;
    bool started = false;
    std::vector<uint8_t> inks;
};

} // namespace

std::unique_ptr<ImageReader> make_jpeg_reader(ImageSource &source) {
    return std::make_unique<JpegReader>(source);
}

} // namespace kzb
