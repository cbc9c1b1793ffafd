#include "image_file.h"

#include "pixel_rows.h"

#include <png.h>

#include <cstring>
#include <vector>

namespace kzb {

namespace {

// What reading and writing share: the library's records, freed outside the frames that it jumps out of, and its words
// when it gave up.
struct PngWork {
    png_structp png = nullptr;
    png_infop info = nullptr;
    char reason[160] = "";
};

void give_up(png_structp png, png_const_charp message) {
    auto *work = static_cast<PngWork *>(png_get_error_ptr(png));
    std::strncpy(work->reason, message, sizeof work->reason - 1);
    png_longjmp(png, 1);
}

void ignore_warning(png_structp, png_const_charp) {}

bool out_of_memory(const PngWork &work) {
    return std::strcmp(work.reason, "Out of memory") == 0;
}

// ------------------------------------------------------------------------------------------------- reading

struct PngReading : PngWork {
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
bool stated_size_fits(ImageReading &reading) {
    constexpr size_t type_at = 12, width_at = 16, height_at = 20, end = 24;
    if (!reading.input.peek(end) || std::memcmp(reading.input.next() + type_at, "IHDR", 4) != 0) return true;
    const png_uint_32 width = png_get_uint_32(reading.input.next() + width_at);
    const png_uint_32 height = png_get_uint_32(reading.input.next() + height_at);
    const auto sensible = [](png_uint_32 size) { return size >= 1 && size <= PNG_UINT_31_MAX; };
    return !sensible(width) || !sensible(height) || reading.size_fits(width, height);
}

// Reads up to the pixels and asks for exchange pixels, with alpha (where the file has any) in byte 0.
bool read_header(PngReading &work, bool &alpha, uint64_t &stored_row_bytes) {
    if (setjmp(png_jmpbuf(work.png))) return false;
    png_set_user_limits(work.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    // All that is not needed for the pixels is passed over, whatever its size.
    png_set_keep_unknown_chunks(work.png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_set_crc_action(work.png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
    png_read_info(work.png, work.info);
    stored_row_bytes = png_get_rowbytes(work.png, work.info);
    const int colour = png_get_color_type(work.png, work.info);
    alpha = (colour & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(work.png, work.info, PNG_INFO_tRNS) != 0;
    png_set_expand(work.png);
    png_set_scale_16(work.png);
    if (!(colour & PNG_COLOR_MASK_COLOR)) png_set_gray_to_rgb(work.png);
    if (alpha) {
        png_set_swap_alpha(work.png);
    } else {
        png_set_filler(work.png, 0, PNG_FILLER_BEFORE);
    }
    return true;
}

// The rows go straight into the world, an interlaced file's in several passes, and the file is read to its end.
bool read_rows(PngReading &work, GWorld &world) {
    if (setjmp(png_jmpbuf(work.png))) return false;
    const int passes = png_set_interlace_handling(work.png);
    png_read_update_info(work.png, work.info);
    if (png_get_rowbytes(work.png, work.info) != static_cast<size_t>(world.width) * 4) {
        png_error(work.png, "unexpected pixel size");
    }
    for (int pass = 0; pass < passes; ++pass) {
        for (kzb_word y = 0; y < world.height; ++y) png_read_row(work.png, world_row(world, y), nullptr);
    }
    png_read_end(work.png, nullptr);
    return true;
}

void move_alpha(GWorld &picture, GWorld &mask) {
    for (kzb_word y = 0; y < picture.height; ++y) {
        uint8_t *pixel = world_row(picture, y), *level = world_row(mask, y);
        for (kzb_word x = 0; x < picture.width; ++x, pixel += 4, level += 4) {
            level[1] = level[2] = level[3] = pixel[0];
            pixel[0] = 0;
        }
    }
}

bool fail_reading(ImageReading &reading, const PngReading &work) {
    if (out_of_memory(work)) return reading.fail(KZB_ERROR_MEMORY, "there is not enough memory to read it");
    return reading.fail_decoding(work.reason);
}

// ------------------------------------------------------------------------------------------------- writing

struct PngWriting : PngWork {
    ~PngWriting() { png_destroy_write_struct(&png, &info); }
};

void write_bytes(png_structp png, png_bytep bytes, size_t count) {
    if (!static_cast<OutputFile *>(png_get_io_ptr(png))->write(bytes, count)) png_error(png, "write error");
}

void flush_nothing(png_structp) {}

// `pixels` holds a row of exchange pixels, `levels` a row of the mask.
bool write_rows(PngWriting &work, const GWorld &picture, const GWorld *mask, uint8_t *pixels, uint8_t *levels) {
    if (setjmp(png_jmpbuf(work.png))) return false;
    const auto width = static_cast<png_uint_32>(picture.width), height = static_cast<png_uint_32>(picture.height);
    png_set_user_limits(work.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(work.png, work.info, width, height, 8, mask ? PNG_COLOR_TYPE_RGBA : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // On photographs the next level takes twice the time for 6 % less, and adaptive filters save nothing.
    png_set_compression_level(work.png, 2);
    png_set_filter(work.png, PNG_FILTER_TYPE_BASE, PNG_FILTER_UP);
    png_write_info(work.png, work.info);
    if (mask) {
        png_set_swap_alpha(work.png);
    } else {
        png_set_filler(work.png, 0, PNG_FILLER_BEFORE);
    }
    for (kzb_word y = 0; y < picture.height; ++y) {
        read_pixels(picture, 0, y, width, pixels);
        if (mask) {
            read_mask(*mask, 0, y, width, levels);
            for (size_t x = 0; x < width; ++x) pixels[x * 4] = levels[x];
        }
        png_write_row(work.png, pixels);
    }
    png_write_end(work.png, nullptr);
    return true;
}

} // namespace

bool read_png(ImageReading &reading, ImageWorlds &worlds) {
    if (!stated_size_fits(reading)) return false;
    PngReading work;
    work.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, static_cast<PngWork *>(&work), give_up, ignore_warning);
    work.info = work.png ? png_create_info_struct(work.png) : nullptr;
    if (!work.info) return reading.fail(KZB_ERROR_MEMORY, "there is not enough memory to read it");
    png_set_read_fn(work.png, &reading.input, read_bytes);
    bool alpha;
    uint64_t stored_row_bytes;
    if (!read_header(work, alpha, stored_row_bytes)) return fail_reading(reading, work);
    const uint64_t width = png_get_image_width(work.png, work.info);
    const uint64_t height = png_get_image_height(work.png, work.info);
    if (!reading.make_worlds(width, height, alpha, worlds)) return false;
    // No compressed byte can stand for more than 1032: a short file with a huge size in its header is not worth trying.
    if (stored_row_bytes * height / 1032 > reading.input.size()) {
        return reading.fail(KZB_ERROR_INPUT, "the PNG file is damaged: too short for the size that it states, " +
                                                 std::to_string(width) + " x " + std::to_string(height) + " pixels");
    }
    if (!read_rows(work, *worlds.picture)) return fail_reading(reading, work);
    if (alpha) move_alpha(*worlds.picture, *worlds.mask);
    return true;
}

bool write_png(ImageWriting &writing) {
    PngWriting work;
    work.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, static_cast<PngWork *>(&work), give_up, ignore_warning);
    work.info = work.png ? png_create_info_struct(work.png) : nullptr;
    if (!work.info) return writing.fail(KZB_ERROR_MEMORY, "there is not enough memory to write it");
    png_set_write_fn(work.png, &writing.output, write_bytes, flush_nothing);
    const auto width = static_cast<size_t>(writing.picture.width);
    std::vector<uint8_t> pixels(width * 4), levels(writing.mask ? width : 0);
    if (write_rows(work, writing.picture, writing.mask, pixels.data(), levels.data())) return true;
    if (out_of_memory(work)) return writing.fail(KZB_ERROR_MEMORY, "there is not enough memory to write it");
    return writing.fail_encoding(work.reason);
}

} // namespace kzb
