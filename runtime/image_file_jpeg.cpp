#include "image_file.h"

#include "pixel_rows.h"

#include <cstdio> // the library's header needs it

#include <jerror.h>
#include <jpeglib.h>

#include <csetjmp>
#include <vector>

namespace kzb {

namespace {

// The library's error record, first so that the library's pointer to it is a pointer to this.
struct JpegErrors {
    jpeg_error_mgr manager;
    std::jmp_buf jump;
    char reason[JMSG_LENGTH_MAX];
    bool out_of_memory;
};

void give_up(j_common_ptr codec) {
    auto *errors = reinterpret_cast<JpegErrors *>(codec->err);
    errors->out_of_memory = codec->err->msg_code == JERR_OUT_OF_MEMORY;
    codec->err->format_message(codec, errors->reason);
    std::longjmp(errors->jump, 1);
}

// Bytes that belong to nothing: a few before a marker are padding that cameras write, but many, or any before the
// marker of a new interval, are pixels gone astray.
bool is_padding(const jpeg_error_mgr &errors) {
    constexpr int most_padding = 64;
    const int count = errors.msg_parm.i[0], marker = errors.msg_parm.i[1];
    return count <= most_padding && !(marker >= JPEG_RST0 && marker < JPEG_RST0 + 8);
}

// Warnings that say that pixels are missing or made up are errors here; the others concern markers only.
void judge_message(j_common_ptr codec, int level) {
    if (level >= 0) return;
    switch (codec->err->msg_code) {
    case JWRN_ADOBE_XFORM:
    case JWRN_JFIF_MAJOR:
    case JWRN_TOO_MUCH_DATA:
    case JWRN_BOGUS_ICC:
        return;
    case JWRN_EXTRANEOUS_DATA:
        if (is_padding(*codec->err)) return;
        [[fallthrough]];
    default:
        give_up(codec);
    }
}

void print_nothing(j_common_ptr) {}

jpeg_error_mgr *prepare_errors(JpegErrors &errors) {
    jpeg_std_error(&errors.manager);
    errors.manager.error_exit = give_up;
    errors.manager.emit_message = judge_message;
    errors.manager.output_message = print_nothing;
    return &errors.manager;
}

// ------------------------------------------------------------------------------------------------- reading

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
    jpeg_read_header(&work.codec, TRUE);
    const bool inks = work.codec.jpeg_color_space == JCS_CMYK || work.codec.jpeg_color_space == JCS_YCCK;
    work.codec.out_color_space = inks ? JCS_CMYK : JCS_EXT_XRGB;
    return true;
}

// Inks to exchange pixels, in place. Files with an Adobe marker store 255 for no ink, others 0.
void print_inks(uint8_t *pixels, size_t count, bool inverted) {
    const uint8_t flip = inverted ? 0 : 255;
    for (uint8_t *pixel = pixels; count > 0; --count, pixel += 4) {
        const unsigned cyan = pixel[0] ^ flip, magenta = pixel[1] ^ flip, yellow = pixel[2] ^ flip;
        const unsigned black = pixel[3] ^ flip;
        pixel[0] = 0;
        pixel[1] = static_cast<uint8_t>((cyan * black + 127) / 255);
        pixel[2] = static_cast<uint8_t>((magenta * black + 127) / 255);
        pixel[3] = static_cast<uint8_t>((yellow * black + 127) / 255);
    }
}

bool read_rows(JpegReading &work, GWorld &world) {
    if (setjmp(work.errors.jump)) return false;
    jpeg_start_decompress(&work.codec);
    while (work.codec.output_scanline < work.codec.output_height) {
        uint8_t *row = world_row(world, work.codec.output_scanline);
        if (jpeg_read_scanlines(&work.codec, &row, 1) != 1) ERREXIT(&work.codec, JERR_INPUT_EOF);
        const auto width = static_cast<size_t>(world.width);
        if (work.codec.out_color_space == JCS_CMYK) {
            print_inks(row, width, work.codec.saw_Adobe_marker != 0);
        } else {
            for (size_t x = 0; x < width; ++x) row[x * 4] = 0;
        }
    }
    jpeg_finish_decompress(&work.codec);
    return true;
}

bool fail_reading(ImageReading &reading, const JpegReading &work) {
    if (work.errors.out_of_memory) {
        return reading.fail(KZB_ERROR_MEMORY, "there is not enough memory to read it");
    }
    return reading.fail_decoding(work.errors.reason);
}

// ------------------------------------------------------------------------------------------------- writing

struct JpegTarget {
    jpeg_destination_mgr manager;
    OutputFile *output;
    uint8_t buffer[1 << 14];
};

JpegTarget &target_of(j_compress_ptr codec) {
    return *reinterpret_cast<JpegTarget *>(codec->dest);
}

void start_target(j_compress_ptr codec) {
    JpegTarget &target = target_of(codec);
    target.manager.next_output_byte = target.buffer;
    target.manager.free_in_buffer = sizeof target.buffer;
}

boolean empty_target(j_compress_ptr codec) {
    JpegTarget &target = target_of(codec);
    if (!target.output->write(target.buffer, sizeof target.buffer)) ERREXIT(codec, JERR_FILE_WRITE);
    start_target(codec);
    return TRUE;
}

void finish_target(j_compress_ptr codec) {
    JpegTarget &target = target_of(codec);
    const size_t count = sizeof target.buffer - target.manager.free_in_buffer;
    if (!target.output->write(target.buffer, count)) ERREXIT(codec, JERR_FILE_WRITE);
}

struct JpegWriting {
    jpeg_compress_struct codec{};
    JpegErrors errors{};
    JpegTarget target{};

    explicit JpegWriting(OutputFile &output) {
        codec.err = prepare_errors(errors);
        target.output = &output;
        target.manager.init_destination = start_target;
        target.manager.empty_output_buffer = empty_target;
        target.manager.term_destination = finish_target;
    }
    ~JpegWriting() { jpeg_destroy_compress(&codec); }
};

// `pixels` holds a row of exchange pixels.
bool write_rows(JpegWriting &work, const GWorld &picture, int quality, uint8_t *pixels) {
    if (setjmp(work.errors.jump)) return false;
    jpeg_create_compress(&work.codec);
    work.codec.dest = &work.target.manager;
    work.codec.image_width = static_cast<JDIMENSION>(picture.width);
    work.codec.image_height = static_cast<JDIMENSION>(picture.height);
    work.codec.input_components = 4;
    work.codec.in_color_space = JCS_EXT_XRGB;
    jpeg_set_defaults(&work.codec);
    jpeg_set_quality(&work.codec, quality, TRUE);
    jpeg_start_compress(&work.codec, TRUE);
    for (kzb_word y = 0; y < picture.height; ++y) {
        read_pixels(picture, 0, y, static_cast<size_t>(picture.width), pixels);
        jpeg_write_scanlines(&work.codec, &pixels, 1);
    }
    jpeg_finish_compress(&work.codec);
    return true;
}

} // namespace

bool read_jpeg(ImageReading &reading, ImageWorlds &worlds) {
    JpegReading work(reading.input);
    if (!read_header(work)) return fail_reading(reading, work);
    if (!reading.make_worlds(work.codec.image_width, work.codec.image_height, false, worlds)) return false;
    return read_rows(work, *worlds.picture) || fail_reading(reading, work);
}

bool write_jpeg(ImageWriting &writing) {
    if (writing.picture.width > JPEG_MAX_DIMENSION || writing.picture.height > JPEG_MAX_DIMENSION) {
        return writing.fail(KZB_ERROR_OUTPUT, "a JPEG file holds at most " + std::to_string(JPEG_MAX_DIMENSION) +
                                                  " pixels each way; write a PNG file instead");
    }
    JpegWriting work(writing.output);
    std::vector<uint8_t> pixels(static_cast<size_t>(writing.picture.width) * 4);
    if (write_rows(work, writing.picture, writing.quality, pixels.data())) return true;
    if (work.errors.out_of_memory) return writing.fail(KZB_ERROR_MEMORY, "there is not enough memory to write it");
    return writing.fail_encoding(work.errors.reason);
}

} // namespace kzb
