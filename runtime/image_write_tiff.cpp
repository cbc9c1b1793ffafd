#include "image_codec.h"
#include "tiff_errors.h"

namespace kzb {

namespace {

OutputFile &output_of(thandle_t handle) {
    return *static_cast<OutputFile *>(handle);
}
tmsize_t read_bytes(thandle_t handle, void *bytes, tmsize_t count) {
    return static_cast<tmsize_t>(output_of(handle).read(bytes, static_cast<size_t>(count)));
}
tmsize_t write_bytes(thandle_t handle, void *bytes, tmsize_t count) {
    return output_of(handle).write(bytes, static_cast<size_t>(count)) ? count : -1;
}
toff_t seek_to(thandle_t handle, toff_t offset, int whence) {
    return static_cast<toff_t>(output_of(handle).seek(static_cast<int64_t>(offset), whence));
}
int close_nothing(thandle_t) {
    return 0;
}
toff_t size_of(thandle_t handle) {
    OutputFile &output = output_of(handle);
    const int64_t place = output.seek(0, SEEK_CUR), size = output.seek(0, SEEK_END);
    output.seek(place, SEEK_SET);
    return static_cast<toff_t>(size);
}
int map_nothing(thandle_t, void **, toff_t *) {
    return 0;
}
void unmap_nothing(thandle_t, void *, toff_t) {}

class TiffWriter : public ImageWriter {
public:
    using ImageWriter::ImageWriter;

    bool start(const ImageShape &shape) override {
        // Beyond 4 gigabytes the format counts in 64 bits. Deflated pixels are hardly ever longer than they were.
        constexpr uint64_t most_bytes = 4000000000;
        const char *mode = shape.row_bytes() * uint64_t{shape.height} > most_bytes ? "w8" : "w";
        const auto options = errors.options();
        if (!options) return target.fail_memory();
        file.reset(TIFFClientOpenExt(target.name.c_str(), mode, &target.output, read_bytes, write_bytes, seek_to,
                                     close_nothing, size_of, map_nothing, unmap_nothing, options.get()));
        if (!file) return fail();
        row_copy.resize(shape.row_bytes());
        return set_tags(shape) || fail();
    }

    // The library works on the row itself.
    bool write_row(const uint8_t *row) override {
        row_copy.assign(row, row + row_copy.size());
        return TIFFWriteScanline(file.get(), row_copy.data(), rows++, 0) == 1 || fail();
    }

    bool finish() override {
        if (TIFFFlush(file.get()) != 1) return fail();
        file.reset();
        return (!errors.reason[0] && target.output.error() == 0) || fail();
    }

private:
    bool set_tags(const ImageShape &shape) {
        TIFF *tiff = file.get();
        constexpr uint32_t strip_bytes = 1 << 18;
        const auto rows_per_strip = static_cast<uint32_t>(strip_bytes / shape.row_bytes() + 1);
        const uint16_t extra[] = {EXTRASAMPLE_UNASSALPHA};
        bool done =
            TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, shape.width) &&
            TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, shape.height) && TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) &&
            TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, shape.channels) &&
            TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
            TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, shape.gray() ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB) &&
            TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE) &&
            TIFFSetField(tiff, TIFFTAG_ZIPQUALITY, 3) && TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) &&
            TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, rows_per_strip);
        if (done && shape.alpha()) done = TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, extra);
        if (done && !shape.profile.empty()) {
            done = TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(shape.profile.size()),
                                shape.profile.data());
        }
        return done;
    }

    bool fail() { return target.fail_encoding(errors.reason); }

    TiffErrors errors;
    TiffOwner file;
    std::vector<uint8_t> row_copy;
    uint32_t rows = 0;
};

} // namespace

std::unique_ptr<ImageWriter> make_tiff_writer(ImageTarget &target) {
    return std::make_unique<TiffWriter>(target);
}

} // namespace kzb
