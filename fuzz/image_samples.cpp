// Writes small PNG and JPEG files of all kinds to a folder, for the image-file fuzzer to start from: image_samples
// FOLDER

#include "runtime/image_samples.h"

#include <fstream>
#include <iostream>
#include <string>

namespace {

using namespace kzb_test;

bool write(const std::string &path, const std::vector<uint8_t> &bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file.good();
}

bool write_pngs(const std::string &folder) {
    struct Kind {
        int colour, depth;
        bool transparency;
    };
    static constexpr Kind kinds[] = {{PNG_COLOR_TYPE_GRAY, 1, false},        {PNG_COLOR_TYPE_GRAY, 4, true},
                                     {PNG_COLOR_TYPE_GRAY, 8, true},         {PNG_COLOR_TYPE_GRAY, 16, false},
                                     {PNG_COLOR_TYPE_RGB, 8, false},         {PNG_COLOR_TYPE_RGB, 8, true},
                                     {PNG_COLOR_TYPE_RGB, 16, true},         {PNG_COLOR_TYPE_PALETTE, 2, false},
                                     {PNG_COLOR_TYPE_PALETTE, 8, true},      {PNG_COLOR_TYPE_GRAY_ALPHA, 8, false},
                                     {PNG_COLOR_TYPE_GRAY_ALPHA, 16, false}, {PNG_COLOR_TYPE_RGB_ALPHA, 8, false},
                                     {PNG_COLOR_TYPE_RGB_ALPHA, 16, false}};
    std::mt19937 random(1);
    for (const Kind &kind : kinds)
        for (const bool interlaced : {false, true}) {
            const auto sample = random_png(5, 4, kind.colour, kind.depth, interlaced, kind.transparency, random);
            const std::string name = "/png-" + std::to_string(kind.colour) + "-" + std::to_string(kind.depth) +
                                     (interlaced ? "-interlaced" : "") + (kind.transparency ? "-transparent" : "");
            if (!write(folder + name, png_bytes(sample))) return false;
        }
    return true;
}

bool write_jpegs(const std::string &folder) {
    struct Kind {
        J_COLOR_SPACE given, stored;
    };
    static constexpr Kind kinds[] = {{JCS_GRAYSCALE, JCS_GRAYSCALE},
                                     {JCS_RGB, JCS_YCbCr},
                                     {JCS_RGB, JCS_RGB},
                                     {JCS_CMYK, JCS_CMYK},
                                     {JCS_CMYK, JCS_YCCK}};
    int number = 0;
    for (const Kind &kind : kinds)
        for (const bool progressive : {false, true})
            for (const int restart_rows : {0, 1}) {
                auto sample = smooth_jpeg(9, 10, kind.given, kind.stored, number % 3 != 0);
                sample.progressive = progressive;
                sample.restart_rows = restart_rows;
                sample.quality = 60;
                if (!write(folder + "/jpeg-" + std::to_string(number++), jpeg_bytes(sample))) return false;
            }
    return true;
}

} // namespace

int main(int count, char **arguments) {
    if (count != 2) {
        std::cerr << "usage: image_samples FOLDER\n";
        return 2;
    }
    if (write_pngs(arguments[1]) && write_jpegs(arguments[1])) return 0;
    std::cerr << arguments[1] << ": cannot be written to\n";
    return 1;
}
