#include "image_samples.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace kzb_test {

namespace {

void append(png_structp png, png_bytep bytes, size_t count) {
    auto *file = static_cast<std::vector<uint8_t> *>(png_get_io_ptr(png));
    file->insert(file->end(), bytes, bytes + count);
}

// A row of samples packed as PNG stores them.
std::vector<uint8_t> packed_row(const PngSample &sample, int y) {
    const int count = sample.width * sample.channels();
    std::vector<uint8_t> row(static_cast<size_t>(count * sample.depth + 7) / 8);
    for (int i = 0; i < count; ++i) {
        const uint16_t value = sample.samples[static_cast<size_t>(y * count + i)];
        if (sample.depth == 16) {
            row[static_cast<size_t>(i) * 2] = static_cast<uint8_t>(value >> 8);
            row[static_cast<size_t>(i) * 2 + 1] = static_cast<uint8_t>(value);
        } else {
            const int bit = i * sample.depth;
            row[static_cast<size_t>(bit / 8)] |= static_cast<uint8_t>(value << (8 - sample.depth - bit % 8));
        }
    }
    return row;
}

void set_transparency(png_structp png, png_infop info, const PngSample &sample) {
    if (sample.colour == PNG_COLOR_TYPE_PALETTE) {
        png_set_tRNS(png, info, sample.palette_alpha.data(), static_cast<int>(sample.palette_alpha.size()), nullptr);
        return;
    }
    png_color_16 colour{};
    colour.gray = sample.transparent[0];
    colour.red = sample.transparent[0];
    colour.green = sample.transparent[1];
    colour.blue = sample.transparent[2];
    png_set_tRNS(png, info, nullptr, 0, &colour);
}

uint8_t to_byte(uint16_t value, int depth) {
    const int most = (1 << depth) - 1;
    return static_cast<uint8_t>((value * 255 * 2 + most) / (most * 2));
}

void put_number(uint8_t *bytes, uint32_t value) {
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<uint8_t>(value >> (24 - 8 * i));
}

// A PNG chunk's check sum, over its type and data.
uint32_t check_sum(const uint8_t *first, const uint8_t *last) {
    uint32_t rest = 0xFFFFFFFF;
    for (; first < last; ++first) {
        rest ^= *first;
        for (int bit = 0; bit < 8; ++bit) rest = rest >> 1 ^ (rest & 1 ? 0xEDB88320u : 0u);
    }
    return ~rest;
}

} // namespace

int PngSample::channels() const {
    if (colour == PNG_COLOR_TYPE_PALETTE) return 1;
    return ((colour & PNG_COLOR_MASK_COLOR) ? 3 : 1) + ((colour & PNG_COLOR_MASK_ALPHA) ? 1 : 0);
}

PngSample random_png(int width, int height, int colour, int depth, bool interlaced, bool transparency,
                     std::mt19937 &random) {
    PngSample sample{width, height, colour, depth, interlaced, transparency, {}, {}, {}, {}};
    const int most = (1 << depth) - 1;
    for (uint16_t &channel : sample.transparent)
        channel = static_cast<uint16_t>(random() & static_cast<unsigned>(most));
    for (int i = 0; i < width * height; ++i) {
        const bool clear = transparency && colour != PNG_COLOR_TYPE_PALETTE && random() % 3 == 0;
        for (int c = 0; c < sample.channels(); ++c) {
            const auto value = static_cast<uint16_t>(random() & static_cast<unsigned>(most));
            sample.samples.push_back(clear ? sample.transparent[static_cast<size_t>(c)] : value);
        }
    }
    if (colour != PNG_COLOR_TYPE_PALETTE) return sample;
    const auto any = [&] { return static_cast<uint8_t>(random()); };
    for (int i = 0; i <= most; ++i) sample.palette.push_back({any(), any(), any()});
    for (int i = 0; i < most; ++i) sample.palette_alpha.push_back(any());
    return sample;
}

std::vector<uint8_t> png_bytes(const PngSample &sample) {
    std::vector<uint8_t> file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &file, append, nullptr);
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(png, info, static_cast<png_uint_32>(sample.width), static_cast<png_uint_32>(sample.height),
                 sample.depth, sample.colour, sample.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!sample.palette.empty())
        png_set_PLTE(png, info, sample.palette.data(), static_cast<int>(sample.palette.size()));
    if (sample.transparency) set_transparency(png, info, sample);
    png_write_info(png, info);
    const int passes = png_set_interlace_handling(png);
    for (int pass = 0; pass < passes; ++pass) {
        for (int y = 0; y < sample.height; ++y) png_write_row(png, packed_row(sample, y).data());
    }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return file;
}

std::array<uint8_t, 4> expected_pixel(const PngSample &sample, int x, int y) {
    const auto channels = static_cast<size_t>(sample.channels());
    const uint16_t *pixel = sample.samples.data() + static_cast<size_t>(y * sample.width + x) * channels;
    if (sample.colour == PNG_COLOR_TYPE_PALETTE) {
        const png_color &entry = sample.palette[pixel[0]];
        const bool listed = sample.transparency && pixel[0] < sample.palette_alpha.size();
        return {entry.red, entry.green, entry.blue, listed ? sample.palette_alpha[pixel[0]] : uint8_t{255}};
    }
    const size_t colours = sample.colour & PNG_COLOR_MASK_COLOR ? 3 : 1;
    std::array<uint8_t, 4> result{};
    for (size_t c = 0; c < 3; ++c) result[c] = to_byte(pixel[c % colours], sample.depth);
    const bool clear = sample.transparency && std::equal(pixel, pixel + colours, sample.transparent.begin());
    result[3] = channels > colours ? to_byte(pixel[colours], sample.depth) : clear ? uint8_t{0} : uint8_t{255};
    return result;
}

void set_png_size(std::vector<uint8_t> &bytes, uint32_t width, uint32_t height) {
    constexpr size_t type = 12, data = 16, sum = 29; // of the header chunk, which is the first
    put_number(&bytes[data], width);
    put_number(&bytes[data + 4], height);
    put_number(&bytes[sum], check_sum(&bytes[type], &bytes[sum]));
}

void insert_chunk(std::vector<uint8_t> &bytes, const char *type, const std::vector<uint8_t> &data) {
    std::vector<uint8_t> chunk(4);
    put_number(chunk.data(), static_cast<uint32_t>(data.size()));
    chunk.insert(chunk.end(), type, type + 4);
    chunk.insert(chunk.end(), data.begin(), data.end());
    const uint32_t sum = check_sum(chunk.data() + 4, chunk.data() + chunk.size());
    chunk.resize(chunk.size() + 4);
    put_number(chunk.data() + chunk.size() - 4, sum);
    bytes.insert(bytes.begin() + 33, chunk.begin(), chunk.end());
}

std::array<uint8_t, 3> smooth_pixel(int x, int y, int width, int height) {
    const double u = (x + 0.5) / width, v = (y + 0.5) / height;
    return {static_cast<uint8_t>(40 + 180 * u), static_cast<uint8_t>(40 + 180 * v),
            static_cast<uint8_t>(128 + 60 * std::sin(3 * u + 2 * v))};
}

JpegSample smooth_jpeg(int width, int height, J_COLOR_SPACE given, J_COLOR_SPACE stored, bool adobe_marker) {
    JpegSample sample{width, height, given, stored, {}, adobe_marker};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto pixel = smooth_pixel(x, y, width, height);
            if (given == JCS_GRAYSCALE) {
                sample.samples.push_back(pixel[0]);
            } else if (given == JCS_RGB) {
                sample.samples.insert(sample.samples.end(), pixel.begin(), pixel.end());
            } else {
                // A constant black of a tenth, and the three inks that give the pixel with it.
                const double black = 0.9;
                for (const uint8_t channel : pixel) {
                    const double left = std::min(1.0, channel / 255.0 / black);
                    sample.samples.push_back(static_cast<uint8_t>(std::lround((adobe_marker ? left : 1 - left) * 255)));
                }
                sample.samples.push_back(static_cast<uint8_t>(std::lround((adobe_marker ? black : 1 - black) * 255)));
            }
        }
    }
    return sample;
}

std::vector<uint8_t> jpeg_bytes(const JpegSample &sample) {
    jpeg_compress_struct codec;
    jpeg_error_mgr errors;
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char *buffer = nullptr;
    unsigned long count = 0;
    jpeg_mem_dest(&codec, &buffer, &count);
    const int channels = sample.given == JCS_GRAYSCALE ? 1 : sample.given == JCS_RGB ? 3 : 4;
    codec.image_width = static_cast<JDIMENSION>(sample.width);
    codec.image_height = static_cast<JDIMENSION>(sample.height);
    codec.input_components = channels;
    codec.in_color_space = sample.given;
    jpeg_set_defaults(&codec);
    jpeg_set_colorspace(&codec, sample.stored);
    if (channels == 4) codec.write_Adobe_marker = sample.adobe_marker;
    jpeg_set_quality(&codec, sample.quality, TRUE);
    if (sample.progressive) jpeg_simple_progression(&codec);
    if (!sample.scans.empty()) {
        codec.scan_info = sample.scans.data();
        codec.num_scans = static_cast<int>(sample.scans.size());
    }
    codec.restart_in_rows = sample.restart_rows;
    jpeg_start_compress(&codec, TRUE);
    for (int y = 0; y < sample.height; ++y) {
        auto *row = const_cast<uint8_t *>(sample.samples.data()) + static_cast<size_t>(y * sample.width * channels);
        jpeg_write_scanlines(&codec, &row, 1);
    }
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
    std::vector<uint8_t> file(buffer, buffer + count);
    std::free(buffer);
    return file;
}

void set_jpeg_size(std::vector<uint8_t> &bytes, uint16_t width, uint16_t height) {
    size_t at = 2;
    while (bytes[at + 1] != 0xC0 && bytes[at + 1] != 0xC2) at += 2u + bytes[at + 2] * 256u + bytes[at + 3];
    bytes[at + 5] = static_cast<uint8_t>(height >> 8);
    bytes[at + 6] = static_cast<uint8_t>(height);
    bytes[at + 7] = static_cast<uint8_t>(width >> 8);
    bytes[at + 8] = static_cast<uint8_t>(width);
}

} // namespace kzb_test
