#include "peers.h"

#include <cstring>

namespace kzb::bench {

namespace {

constexpr double same = 0.6;     // the same up to rounding
constexpr double near = 3.0;     // other weights or edges
constexpr double alike = 16.0;   // another kernel, or none against noise
constexpr double nearest = 60.0; // the nearest that there is: another effect of the same cost

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
    };
    return all;
}

bool Pair::stands_beside(const std::string &name) const {
    const size_t length = std::strlen(ours);
    if (ours[length - 1] == '*') return name.compare(0, length - 1, ours, length - 1) == 0;
    return name == ours;
}

} // namespace kzb::bench
