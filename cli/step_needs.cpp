#include "step_needs.h"

#include "runtime/names.h"

namespace kzb::cli {

namespace {

struct Need {
    const char *method;
    const char *need;
};

constexpr const char *new_picture = "a gray or coloured picture, and memory for a new one or a folder by --scratch";
constexpr const char *row = "a row of the picture, counted from 0, and a layout from ImageFormatRGB to ImageFormat4of4";
constexpr const char *rectangle = "a rectangle that shares a point with the picture, and memory for what it gives";

constexpr Need needs[] = {
    {"Constructor", "a size of at least 1 x 1, a known layout, and memory for the picture"},
    {"CreatePictureKZB", "a size of at least 1 x 1, a known layout, and memory for the picture"},
    {"Row", "a row of the picture, counted from 0"},
    {"RawRow", "a row of the picture, counted from 0"},
    {"RowInFormat", row},
    {"RowStringInFormat", row},
    {"DataStringInFormat", "a layout from ImageFormatRGB to ImageFormat4of4, and memory for all pixels"},
    {"CopyPicture", rectangle},
    {"CopyPictureWithMask", rectangle},
    {"CopyMask", "a picture with alpha, a rectangle that shares a point with it, and memory for what it gives"},
    {"AlphaChannel", "a picture with alpha"},
    {"RedChannel", "a picture in red, green and blue; of a gray one, use GrayChannel"},
    {"GreenChannel", "a picture in red, green and blue; of a gray one, use GrayChannel"},
    {"BlueChannel", "a picture in red, green and blue; of a gray one, use GrayChannel"},
    {"GrayChannel", "a gray picture; of a coloured one, use RedChannel, GreenChannel or BlueChannel"},
    {"RGBChannels", "a picture in red, green and blue"},
    {"Clone", "a picture in memory, not one in a file as --scratch makes them; ': =name' keeps either kind"},
    {"ClipImage", "memory for the view"},
    {"Rotate90", new_picture},
    {"Rotate180", new_picture},
    {"Rotate270", new_picture},
    {"Rotate90slow", new_picture},
    {"Rotate270slow", new_picture},
    {"Rotate", new_picture},
    {"Scale",
     "a mode from ScaleTriangle to ScaleCubic, a width and height of at least 1, and a gray or coloured picture "
     "to read that is not empty"},
    {"ScaleFast", "a width and height other than 0, and a gray or coloured picture to read that is not empty"},
    {"ApplyMatrix", "25 whole numbers, row by row, and a gray or coloured picture"},
    {"SolarizeFilter", new_picture},
    {"GammaFilter", new_picture},
    {"GainFilter", new_picture},
    {"TransferFilter", new_picture},
    {"AutoLevel", "a picture in red, green and blue, and a rectangle that shares a point with it"},
    {"DitherFilter", new_picture},
    {"OilFilter", new_picture},
    {"DiffuseFilter", new_picture},
    {"EngraveFilter", new_picture},
    {"NeonFilter", new_picture},
    {"StampFilter", new_picture},
    {"BoxBlurFilter", new_picture},
    {"BoxBlurFractionalFilter", new_picture},
    {"UnsharpFilter", "origpixels of the same size and layout as the picture"},
};

} // namespace

const char *need_of(std::string_view method) {
    for (const Need &known : needs)
        if (same_name(known.method, method)) return known.need;
    return nullptr;
}

} // namespace kzb::cli
