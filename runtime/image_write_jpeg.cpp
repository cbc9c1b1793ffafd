#include "image_codec.h"
#include "jpeg_errors.h"

#include <jerror.h>

namespace kzb {

namespace {

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

bool write_header(JpegWriting &work, const ImageShape &shape, int quality) {
    if (setjmp(work.errors.jump)) return false;
    jpeg_create_compress(&work.codec);
    work.codec.dest = &work.target.manager;
    work.codec.image_width = shape.width;
    work.codec.image_height = shape.height;
    work.codec.input_components = shape.gray() ? 1 : 3;
    work.codec.in_color_space = shape.gray() ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&work.codec);
    jpeg_set_quality(&work.codec, quality, TRUE);
    jpeg_start_compress(&work.codec, TRUE);
    if (!shape.profile.empty()) {
        jpeg_write_icc_profile(&work.codec, shape.profile.data(), static_cast<unsigned>(shape.profile.size()));
    }
    return true;
}

bool write_one(JpegWriting &work, const uint8_t *row) {
    if (setjmp(work.errors.jump)) return false;
    auto *samples = const_cast<JSAMPROW>(row);
    jpeg_write_scanlines(&work.codec, &samples, 1);
    return true;
}

bool write_end(JpegWriting &work) {
    if (setjmp(work.errors.jump)) return false;
    jpeg_finish_compress(&work.codec);
    return true;
}

class JpegWriter : public ImageWriter {
public:
    explicit JpegWriter(ImageTarget &write_to) : ImageWriter(write_to), work(write_to.output) {}

    bool start(const ImageShape &shape) override {
        if (shape.width > JPEG_MAX_DIMENSION || shape.height > JPEG_MAX_DIMENSION) {
            return target.fail_size("JPEG", JPEG_MAX_DIMENSION);
        }
        return write_header(work, shape, target.quality) || fail();
    }
    bool write_row(const uint8_t *row) override { return write_one(work, row) || fail(); }
    bool finish() override { return write_end(work) || fail(); }

private:
    bool fail() { return work.errors.out_of_memory ? target.fail_memory() : target.fail_encoding(work.errors.reason); }

    JpegWriting work;
};

} // namespace

std::unique_ptr<ImageWriter> make_jpeg_writer(ImageTarget &target) {
    return std::make_unique<JpegWriter>(target);
}

} // namespace kzb
