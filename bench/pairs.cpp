#include "peers.h"

#include <cstring>

namespace kzb::bench {

namespace {

constexpr double same = 0.6;         // the same up to rounding
constexpr double near = 3.0;         // other weights or edges
constexpr double alike = 16.0;       // another kernel, or none against noise
constexpr double nearest = 70.0;     // the nearest that there is: another effect of the same cost
constexpr double two_levels = 128.0; // black and white against four levels: of the same mean, far apart in each pixel

} // namespace

const std::vector<Pair> &pairs() {
    static const std::vector<Pair> all = {
        {"GammaFilter", "OpenCV", "LUT", same},
        {"GainFilter", "OpenCV", "LUT", same},
        {"SolarizeFilter", "OpenCV", "LUT", same},
        {"TransferFilter", "OpenCV", "LUT", same},
        {"AutoLevel", "OpenCV", "calcHist + LUT", alike},
        {"Invert", "OpenCV", "bitwise_xor", same},
        {"FillRect", "OpenCV", "setTo", same},
        {"FillRectRGB", "OpenCV", "setTo", same},
        {"ClearRect", "OpenCV", "setTo", same},
        {"CopyPixels", "OpenCV", "copyTo", same},
        {"CopyPixels blue first", "OpenCV", "cvtColor", same},
        {"CopyPixels to gray", "OpenCV", "cvtColor gray", near},
        {"DataStringInFormat*", "OpenCV", "cvtColor to new", same},
        {"Clone", "OpenCV", "clone", same},
        {"HMirror", "OpenCV", "flip columns", same},
        {"VMirror", "OpenCV", "flip rows", same},
        {"Rotate180 in place", "OpenCV", "flip both", same},
        {"Rotate180", "OpenCV", "rotate 180", same},
        {"Rotate90*", "OpenCV", "rotate 90", same},
        {"Rotate270*", "OpenCV", "rotate 270", same},
        {"Rotate 17", "OpenCV", "warpAffine", alike},
        {"BoxBlurFilter*", "OpenCV", "blur", near},
        {"BoxBlurFractionalFilter", "OpenCV", "sepFilter2D", near},
        {"ApplyMatrix*", "OpenCV", "filter2D", near},
        {"UnsharpFilter", "OpenCV", "addWeighted", alike},
        {"EngraveFilter", "OpenCV", "shifted difference", near},
        {"NeonFilter", "OpenCV", "Sobel + magnitude", nearest},
        {"StampFilter", "OpenCV", "blur + LUT", nearest},
        {"OilFilter*", "OpenCV", "oilPainting", alike},
        {"Scale*", "OpenCV", "resize", alike},

        {"GammaFilter", "libvips", "maplut", same},
        {"GainFilter", "libvips", "maplut", same},
        {"SolarizeFilter", "libvips", "maplut", same},
        {"TransferFilter", "libvips", "maplut", same},
        {"Invert", "libvips", "invert", nearest}, // of four channels it inverts green too
        {"CopyPixels", "libvips", "copy", same},
        {"HMirror", "libvips", "flip columns", same},
        {"VMirror", "libvips", "flip rows", same},
        {"Rotate180", "libvips", "rot 180", same},
        {"Rotate90*", "libvips", "rot 90", same},
        {"Rotate270*", "libvips", "rot 270", same},
        {"BoxBlurFilter 5 x3", "libvips", "gaussblur", near},
        {"ApplyMatrix*", "libvips", "conv", near},
        {"NeonFilter", "libvips", "sobel", nearest},
        {"Scale Box*", "libvips", "shrink", near},
        {"Scale*", "libvips", "resize", alike},

        {"GammaFilter", "libvips-new", "maplut", same},
        {"GainFilter", "libvips-new", "maplut", same},
        {"SolarizeFilter", "libvips-new", "maplut", same},
        {"TransferFilter", "libvips-new", "maplut", same},
        {"Invert", "libvips-new", "invert", nearest}, // of four channels it inverts green too
        {"CopyPixels", "libvips-new", "copy", same},
        {"HMirror", "libvips-new", "flip columns", same},
        {"VMirror", "libvips-new", "flip rows", same},
        {"Rotate180", "libvips-new", "rot 180", same},
        {"Rotate90*", "libvips-new", "rot 90", same},
        {"Rotate270*", "libvips-new", "rot 270", same},
        {"BoxBlurFilter 5 x3", "libvips-new", "gaussblur", near},
        {"ApplyMatrix*", "libvips-new", "conv", near},
        {"NeonFilter", "libvips-new", "sobel", nearest},
        {"Scale Box*", "libvips-new", "shrink", near},
        {"Scale*", "libvips-new", "resize", alike},

        {"GammaFilter", "libyuv", "colour table", same},
        {"GainFilter", "libyuv", "colour table", same},
        {"SolarizeFilter", "libyuv", "colour table", same},
        {"TransferFilter", "libyuv", "colour table", same},
        {"FillRect", "libyuv", "fill", same},
        {"FillRectRGB", "libyuv", "fill", same},
        {"ClearRect", "libyuv", "fill", same},
        {"CopyPixels", "libyuv", "copy", same},
        {"CopyPixels blue first", "libyuv", "swap", same},
        {"CopyPixels to gray", "libyuv", "to gray", near},
        {"HMirror", "libyuv", "mirror", same},
        {"VMirror", "libyuv", "copy upside down", same},
        {"Rotate180", "libyuv", "rotate 180", same},
        {"Rotate90*", "libyuv", "rotate 270", same}, // clockwise
        {"Rotate270*", "libyuv", "rotate 90", same},
        {"BoxBlurFilter*", "libyuv", "blur", near},
        {"Scale Triangle*", "libyuv", "scale", alike},
        {"Scale Box*", "libyuv", "scale", alike},
        {"ScaleFast*", "libyuv", "scale", alike},

        {"Scale*", "zimg", "resize", alike},

        {"CopyPixels blue first", "libswscale", "swap", same},
        {"CopyPixels to gray", "libswscale", "to gray", alike},
        {"Scale*", "libswscale", "scale", alike},

        {"Invert", "libavfilter", "negate", nearest}, // of four channels it inverts green too
        {"HMirror", "libavfilter", "hflip", same},
        {"Rotate90*", "libavfilter", "transpose 90", same},
        {"Rotate270*", "libavfilter", "transpose 270", same},
        {"Rotate 17", "libavfilter", "rotate", alike},
        {"BoxBlurFilter*", "libavfilter", "boxblur", near},
        {"BoxBlurFilter*", "libavfilter", "avgblur", near},
        {"ApplyMatrix*", "libavfilter", "convolution", near},
        {"NeonFilter", "libavfilter", "sobel", nearest},

        {"GammaFilter", "GraphicsMagick", "gamma", same},
        {"AutoLevel", "GraphicsMagick", "normalize", nearest},
        {"DitherFilter", "GraphicsMagick", "ordered dither", two_levels},
        {"Invert", "GraphicsMagick", "negate", nearest}, // of four channels it inverts green too
        {"Rotate 17", "GraphicsMagick", "rotate", alike},
        {"ApplyMatrix*", "GraphicsMagick", "convolve", near},
        {"EngraveFilter", "GraphicsMagick", "emboss", nearest},
        {"NeonFilter", "GraphicsMagick", "edge", nearest},
        {"DiffuseFilter", "GraphicsMagick", "spread", alike},
        {"OilFilter*", "GraphicsMagick", "oil", alike},
        {"ScaleFast*", "GraphicsMagick", "sample", alike},
        {"Scale*", "GraphicsMagick", "resize", alike},

        {"FillRect", "pixman", "fill", same},
        {"FillRectRGB", "pixman", "fill", same},
        {"ClearRect", "pixman", "fill", same},
        {"CopyPixels", "pixman", "copy", same},
        {"CopyPixels blue first", "pixman", "swap", same},
        {"Rotate180", "pixman", "turn 2", same},
        {"Rotate90*", "pixman", "turn 1", same},
        {"Rotate270*", "pixman", "turn 3", same},
        {"Scale*", "pixman", "scale", alike},
    };
    return all;
}

bool Pair::stands_beside(const std::string &name) const {
    const size_t length = std::strlen(ours);
    if (ours[length - 1] == '*') return name.compare(0, length - 1, ours, length - 1) == 0;
    return name == ours;
}

} // namespace kzb::bench
