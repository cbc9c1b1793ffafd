#include "held_pixels.h"
#include "image_codec.h"
#include "png_work.h"

#include <cstring>

namespace kzb {

namespace {

struct PngReading : PngWork {
    PngReading() {
        png = png_create_read_struct(PNG_LIBPNG_VER_STRING, static_cast<PngWork *>(this), give_up, ignore_warning);
        info = png ? png_create_info_struct(png) : nullptr;
    }
    ~PngReading() { png_destroy_read_struct(&png, &info, nullptr); }
};

void read_bytes(png_structp png, png_bytep bytes, size_t count) {
    auto *input = static_cast<InputFile *>(png_get_io_ptr(png));
    while (count > 0) {
        if (!input->fill()) png_error(png, "no more bytes");
        const size_t part = count < input->available() ? count : input->available();
        std::memcpy(bytes, input->next(), part);
        input->take(part);
        bytes += part;
        count -= part;
    }
}

// The size in the header, which follows the file's first eight bytes. The library, which has limits of its own where
// words are short, is not asked before it is known to fit.
bool stated_size_fits(ImageSource &source) {
    constexpr size_t type_at = 12, width_at = 16, height_at = 20, end = 24;
    if (!source.input.peek(end) || std::memcmp(source.input.next() + type_at, "IHDR", 4) != 0) return true;
    const png_uint_32 width = png_get_uint_32(source.input.next() + width_at);
    const png_uint_32 height = png_get_uint_32(source.input.next() + height_at);
    const auto sensible = [](png_uint_32 size) { return size >= 1 && size <= PNG_UINT_31_MAX; };
    return !sensible(width) || !sensible(height) || source.size_fits(width, height);
}

struct PngHeader {
    uint32_t width, height;
    uint64_t stored_row_bytes;
    bool alpha;
    int passes;
    const uint8_t *profile; // the library's
    size_t profile_bytes;
};

// Reads up to the pixels and asks for packed red, green, blue and, where the file has any, alpha.
bool read_header(PngWork &work, PngHeader &header) {
    if (setjmp(png_jmpbuf(work.png))) return false;
    png_set_user_limits(work.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    // All that is not needed is passed over, whatever its size.
    static const png_byte colour_profile[] = "iCCP";
    png_set_keep_unknown_chunks(work.png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_set_keep_unknown_chunks(work.png, PNG_HANDLE_CHUNK_AS_DEFAULT, colour_profile, 1);
    png_set_crc_action(work.png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
    png_read_info(work.png, work.info);
    header.width = png_get_image_width(work.png, work.info);
    header.height = png_get_image_height(work.png, work.info);
    header.stored_row_bytes = png_get_rowbytes(work.png, work.info);
    const int colour = png_get_color_type(work.png, work.info);
    header.alpha = (colour & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(work.png, work.info, PNG_INFO_tRNS) != 0;
    png_charp name = nullptr;
    png_bytep profile = nullptr;
    png_uint_32 profile_bytes = 0;
    int method = 0;
    if (png_get_iCCP(work.png, work.info, &name, &method, &profile, &profile_bytes) == 0) profile_bytes = 0;
    header.profile = profile;
    header.profile_bytes = profile_bytes;
    png_set_expand(work.png);
    png_set_scale_16(work.png);
    if (!(colour & PNG_COLOR_MASK_COLOR)) png_set_gray_to_rgb(work.png);
    header.passes = png_set_interlace_handling(work.png);
    png_read_update_info(work.png, work.info);
    if (png_get_rowbytes(work.png, work.info) != size_t{header.width} * (header.alpha ? 4 : 3)) {
        png_error(work.png, "unexpected pixel size");
    }
    return true;
}

bool next_row(PngWork &work, uint8_t *row) {
    if (setjmp(png_jmpbuf(work.png))) return false;
    png_read_row(work.png, row, nullptr);
    return true;
}

bool read_passes(PngWork &work, const PngHeader &header, uint8_t *pixels, size_t row_bytes) {
    if (setjmp(png_jmpbuf(work.png))) return false;
    for (int pass = 0; pass < header.passes; ++pass) {
        for (size_t y = 0; y < header.height; ++y) png_read_row(work.png, pixels + y * row_bytes, nullptr);
    }
    return true;
}

bool read_end(PngWork &work) {
    if (setjmp(png_jmpbuf(work.png))) return false;
    png_read_end(work.png, nullptr);
    return true;
}

class PngReader : public ImageReader {
public:
    using ImageReader::ImageReader;

    bool start(ImageInfo &info) override {
        if (!stated_size_fits(source)) return false;
        if (!work.info) return source.fail_memory();
        png_set_read_fn(work.png, &source.input, read_bytes);
        if (!read_header(work, header)) return fail();
        if (!source.size_fits(header.width, header.height) || !source.within_limit(header.width, header.height)) {
            return false;
        }
        // No compressed byte can stand for more than 1032: a short file with a huge size in its header is not worth
        // trying.
        if (header.stored_row_bytes * header.height / 1032 > source.input.size()) {
            return source.fail_too_short(header.width, header.height);
        }
        info.width = header.width;
        info.height = header.height;
        info.alpha = header.alpha;
        info.profile.assign(header.profile, header.profile + header.profile_bytes);
        return true;
    }

    bool read_row(uint8_t *row) override {
        const bool done = header.passes > 1 ? held_row(row) : next_row(work, row);
        return (done && (++rows < header.height || read_end(work))) || fail();
    }

private:
    // An interlaced file's rows are whole only after its last pass.
    bool held_row(uint8_t *row) {
        const size_t row_bytes = size_t{header.width} * (header.alpha ? 4 : 3);
        if (rows == 0) {
            if (header.height > SIZE_MAX / row_bytes || !held.hold(row_bytes * header.height, source.scratch)) {
                std::strcpy(work.reason, "Out of memory");
                return false;
            }
            if (!read_passes(work, header, held.bytes(), row_bytes)) return false;
        }
        std::memcpy(row, held.bytes() + rows * row_bytes, row_bytes);
        return true;
    }

    bool fail() { return work.out_of_memory() ? source.fail_memory() : source.fail_decoding(work.reason); }

    PngReading work;
    PngHeader header{};
    size_t rows = 0;
    HeldPixels held;
};

} // namespace

std::unique_ptr<ImageReader> make_png_reader(ImageSource &source) {
    return std::make_unique<PngReader>(source);
}

} // namespace kzb
