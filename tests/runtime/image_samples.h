// PNG and JPEG files made with the libraries themselves, from samples that the tests know.
#ifndef KZB_TESTS_RUNTIME_IMAGE_SAMPLES_H
#define KZB_TESTS_RUNTIME_IMAGE_SAMPLES_H

#include <array>
#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

#include <jpeglib.h>
#include <png.h>

namespace kzb_test {

struct PngSample {
    int width, height;
    int colour; // PNG_COLOR_TYPE_...
    int depth;
    bool interlaced = false;
    bool transparency = false;      // a tRNS chunk: `transparent`, or the palette's first entries' alpha
    std::vector<uint16_t> samples;  // all channels of a pixel, pixel by pixel; palette indexes
    std::vector<png_color> palette; // for palette files
    std::vector<uint8_t> palette_alpha;
    std::array<uint16_t, 3> transparent{};

    int channels() const;
};

// Random samples; a third of the pixels has the transparent colour, where there is one.
PngSample random_png(int width, int height, int colour, int depth, bool interlaced, bool transparency,
                     std::mt19937 &random);
std::vector<uint8_t> png_bytes(const PngSample &sample);

// A pixel of a sample as red, green, blue, alpha.
std::array<uint8_t, 4> expected_pixel(const PngSample &sample, int x, int y);

// Replaces the size in a PNG file's header, its check sum included.
void set_png_size(std::vector<uint8_t> &bytes, uint32_t width, uint32_t height);

// Puts a chunk after a PNG file's header.
void insert_chunk(std::vector<uint8_t> &bytes, const char *type, const std::vector<uint8_t> &data);

struct JpegSample {
    int width, height;
    J_COLOR_SPACE given, stored;
    std::vector<uint8_t> samples; // as given, pixel by pixel
    bool adobe_marker = true;     // of CMYK and YCCK files
    bool progressive = false;
    int restart_rows = 0;
    int quality = 100;
    std::vector<jpeg_scan_info> scans{}; // in place of the usual ones
};

// A smooth picture; ink values are stored as files with an Adobe marker have them (255 no ink), or the other way.
JpegSample smooth_jpeg(int width, int height, J_COLOR_SPACE given, J_COLOR_SPACE stored, bool adobe_marker = true);
std::array<uint8_t, 3> smooth_pixel(int x, int y, int width, int height);
std::vector<uint8_t> jpeg_bytes(const JpegSample &sample);

// Replaces the size in a JPEG file's frame header.
void set_jpeg_size(std::vector<uint8_t> &bytes, uint16_t width, uint16_t height);

} // namespace kzb_test

#endif
