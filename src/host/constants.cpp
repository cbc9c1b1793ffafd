#include "host/constants.h"

#include "platform/buffer.h"

#include <charconv>
#include <cstring>

namespace kzb {

namespace {

constinit ConstantDefinition constants[] = {
    {"ImageFormatUnknown", 0, 0},
    {"ImageFormatRGB", 1, 0},
    {"ImageFormatRGBA", 2, 0},
    {"ImageFormatRGBX", 3, 0},
    {"ImageFormatARGB", 4, 0},
    {"ImageFormatXRGB", 5, 0},
    {"ImageFormatBGR", 6, 0},
    {"ImageFormatBGRA", 7, 0},
    {"ImageFormatBGRX", 8, 0},
    {"ImageFormatABGR", 9, 0},
    {"ImageFormatXBGR", 10, 0},
    {"ImageFormatG", 11, 0},
    {"ImageFormatGA", 12, 0},
    {"ImageFormatAG", 13, 0},
    {"ImageFormatScaling", 14, 0},
    {"ImageFormat1of3", 15, 0},
    {"ImageFormat2of3", 16, 0},
    {"ImageFormat3of3", 17, 0},
    {"ImageFormat1of4", 18, 0},
    {"ImageFormat2of4", 19, 0},
    {"ImageFormat3of4", 20, 0},
    {"ImageFormat4of4", 21, 0},
    {"ImageFormatRofRGB", 15, 0},
    {"ImageFormatGofRGB", 16, 0},
    {"ImageFormatBofRGB", 17, 0},
    {"ImageFormatRofRGBA", 18, 0},
    {"ImageFormatGofRGBA", 19, 0},
    {"ImageFormatBofRGBA", 20, 0},
    {"ImageFormatAofRGBA", 21, 0},
    {"ImageFormatRofARGB", 19, 0},
    {"ImageFormatGofARGB", 20, 0},
    {"ImageFormatBofARGB", 21, 0},
    {"ImageFormatAofARGB", 18, 0},
    {"ImageFormatRofBGR", 17, 0},
    {"ImageFormatGofBGR", 16, 0},
    {"ImageFormatBofBGR", 15, 0},
    {"ImageFormatRofBGRA", 20, 0},
    {"ImageFormatGofBGRA", 19, 0},
    {"ImageFormatBofBGRA", 18, 0},
    {"ImageFormatAofBGRA", 21, 0},
    {"ImageFormatRofABGR", 21, 0},
    {"ImageFormatGofABGR", 20, 0},
    {"ImageFormatBofABGR", 19, 0},
    {"ImageFormatAofABGR", 18, 0},
    {"ScaleTriangle", 1, 0},
    {"ScaleBox", 2, 0},
    {"ScaleLanczos3", 3, 0},
    {"ScaleLanczos8", 4, 0},
    {"ScaleMitchell", 5, 0},
    {"ScalePoly3", 6, 0},
    {"ScaleCubic", 7, 0},
    {"DitherMagic2x2Matrix", 1, 0},
    {"DitherMagic4x4Matrix", 2, 0},
    {"DitherOrdered4x4Matrix", 3, 0},
    {"DitherLines4x4Matrix", 4, 0},
    {"Dither90Halftone6x6Matrix", 5, 0},
    {"DitherOrdered6x6Matrix", 6, 0},
    {"DitherOrdered8x8Matrix", 7, 0},
    {"DitherCluster3Matrix", 8, 0},
    {"DitherCluster4Matrix", 9, 0},
    {"DitherCluster8Matrix", 10, 0},
};
static_assert(std::size(constants) == 61);

char *put(char *at, const char *text) {
    const size_t length = std::strlen(text);
    std::memcpy(at, text, length);
    return at + length;
}

void put_value(char *at, int32_t value, bool decimal) {
    // Room for a sign and ten digits, of which the buffer of a name has enough left.
    char digits[12] = {};
    if (decimal || (value >= 0 && value <= 9)) {
        std::to_chars(digits, digits + sizeof digits, value);
        put(put(at, " = "), digits);
        return;
    }
    at = put(at, " = &h");
    for (int shift = 28; shift >= 0; shift -= 4) *at++ = "0123456789ABCDEF"[static_cast<uint32_t>(value) >> shift & 15];
}

} // namespace

std::span<ConstantDefinition> picture_constants() { return constants; }

void build_constant_declarations(ConstantDefinition *table, int32_t count, int32_t first, bool prefix, bool decimal) {
    for (int32_t i = first; i < count; ++i) {
        ConstantDefinition &constant = table[i];
        Buffer<char> text(static_cast<int64_t>(std::strlen(constant.declaration)) + 16);
        if (!text) continue;
        char *at = prefix ? put(text.get(), "k") : text.get();
        put_value(put(at, constant.declaration), static_cast<int32_t>(constant.first), decimal);
        constant.declaration = text.release();
        constant.first = 0;
    }
}

} // namespace kzb
