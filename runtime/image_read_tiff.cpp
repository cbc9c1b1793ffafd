#include "image_codec.h"
#include "tiff_rows.h"

#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace kzb {

namespace {

// The library's window on a file that can be read anywhere.
struct TiffInput {
    int descriptor;
    off_t place = 0;
    int error = 0;
};

TiffInput &input_of(thandle_t handle) {
    return *static_cast<TiffInput *>(handle);
}
tmsize_t read_bytes(thandle_t handle, void *bytes, tmsize_t count) {
    TiffInput &input = input_of(handle);
    tmsize_t done = 0;
    while (done < count) {
        const ssize_t got =
            pread(input.descriptor, static_cast<char *>(bytes) + done, static_cast<size_t>(count - done), input.place);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) input.error = errno;
        if (got <= 0) break;
        done += got;
        input.place += got;
    }
    return done;
}
tmsize_t write_nothing(thandle_t, void *, tmsize_t) {
    return -1;
}
toff_t size_of(thandle_t handle) {
    struct stat status;
    return fstat(input_of(handle).descriptor, &status) == 0 ? static_cast<toff_t>(status.st_size) : 0;
}
toff_t seek_to(thandle_t handle, toff_t offset, int whence) {
    TiffInput &input = input_of(handle);
    if (whence == SEEK_CUR) offset += static_cast<toff_t>(input.place);
    if (whence == SEEK_END) offset += size_of(handle);
    return static_cast<toff_t>(input.place = static_cast<off_t>(offset));
}
int close_nothing(thandle_t) {
    return 0;
}
int map_nothing(thandle_t, void **, toff_t *) {
    return 0;
}
void unmap_nothing(thandle_t, void *, toff_t) {}

class TiffReader : public ImageReader {
public:
    using ImageReader::ImageReader;

    bool start(ImageInfo &info) override {
        const char *folder = std::getenv("TMPDIR");
        if (!source.scratch.empty()) folder = source.scratch.c_str();
        input.descriptor = source.input.seekable(folder && *folder ? folder : "/tmp");
        if (input.descriptor < 0) return source.fail_decoding("");
        const auto options = errors.options();
        if (!options) return source.fail_memory();
        file.reset(TIFFClientOpenExt(source.name.c_str(), "rm", &input, read_bytes, write_nothing, seek_to,
                                     close_nothing, size_of, map_nothing, unmap_nothing, options.get()));
        if (!file) return fail();
        uint32_t width = 0, height = 0;
        if (!TIFFGetField(file.get(), TIFFTAG_IMAGEWIDTH, &width) ||
            !TIFFGetField(file.get(), TIFFTAG_IMAGELENGTH, &height)) {
            return source.fail_decoding("no size");
        }
        if (!source.size_fits(width, height) || !source.within_limit(width, height)) return false;
        // One byte of a strip can stand for many, but not for this many.
        constexpr uint64_t most_pixels_of_a_byte = 100000;
        if (uint64_t{width} * height / most_pixels_of_a_byte > size_of(&input)) {
            return source.fail_too_short(width, height);
        }
        rows = make_tiff_rows(file.get(), width, height, errors);
        if (!rows) return fail();
        info.width = width;
        info.height = height;
        info.alpha = rows->alpha();
        uint16_t orientation = 1;
        if (TIFFGetField(file.get(), TIFFTAG_ORIENTATION, &orientation) && orientation >= 1 && orientation <= 8) {
            info.orientation = orientation;
        }
        uint32_t count = 0;
        const uint8_t *profile = nullptr;
        if (TIFFGetField(file.get(), TIFFTAG_ICCPROFILE, &count, &profile))
            info.profile.assign(profile, profile + count);
        return true;
    }

    bool read_row(uint8_t *row) override { return rows->next(row) || fail(); }

private:
    bool fail() {
        if (input.error) errno = input.error;
        return source.fail_decoding(errors.reason[0] ? errors.reason : "unknown");
    }

    TiffInput input{};
    TiffErrors errors;
    TiffOwner file;
    std::unique_ptr<TiffRows> rows; // goes before the file
};

} // namespace

std::unique_ptr<ImageReader> make_tiff_reader(ImageSource &source) {
    return std::make_unique<TiffReader>(source);
}

} // namespace kzb
