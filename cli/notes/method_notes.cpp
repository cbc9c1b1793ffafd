#include "method_notes.h"

#include "runtime/names.h"

namespace kzb::cli {

namespace {

constexpr const char *alpha_unwritten =
    "In a picture with alpha the forms without an argument for alpha leave the new picture's alpha at 0: transparent.";

constexpr MethodNote tone[] = {
    {"GammaFilter", "Brightens (above 1) or darkens (below 1) along a power curve.",
     "In a picture with alpha the forms without alphaGamma leave the new picture's alpha at 0: transparent. "
     "An alphaGamma of 1 keeps it."},
    {"GainFilter", "Raises (above 0.5) or lowers contrast, then brightness; 0.5 and 0.5 change nothing.",
     "Alpha goes through the same curve."},
    {"SolarizeFilter", "Turns dark parts into their negative, as film does under stray light.",
     "Alpha goes through the same curve: transparent and opaque both become opaque, half transparent becomes "
     "transparent."},
    {"TransferFilter", "Sends each channel through a table of 256 values of your own.", alpha_unwritten},
    {"AutoLevel", "Stretches the colours so that the darkest and the lightest half percent reach black and white.",
     "For coloured pictures only."},
};

constexpr MethodNote dither[] = {
    {"DitherFilter", "Reduces each channel to a few levels in a pattern of dots.",
     "The levels come out inverted, dark for light; Invert afterwards turns them back. Levels are 2 to 256; others, "
     "and an unknown matrix, give an empty picture."},
};

constexpr MethodNote effects[] = {
    {"OilFilter", "Paints in blots: each point takes the most frequent shade around it.",
     "Levels are 1 to 256; a range of r looks at (2r + 1) x (2r + 1) points."},
    {"DiffuseFilter", "Takes each point from a random place up to a few points away.", nullptr},
    {"EngraveFilter", "Shows the differences to the point a few to the right and below, on gray.",
     "Alpha is treated like a colour."},
    {"NeonFilter", "Shows edges as glowing lines on black.", "Alpha is treated like a colour."},
    {"StampFilter", "Blurs, then pushes each channel to that of one of two colours, with a soft edge between.",
     "The alpha of the new picture is left at 0: transparent."},
};

constexpr MethodNote blur[] = {
    {"BoxBlurFilter", "Blurs by the mean of a square around each point, once or several times.", nullptr},
    {"BoxBlurFractionalFilter", "Blurs very slightly, by the fractional part of the radius.", nullptr},
    {"UnsharpFilter", "Moves each value away from that of another picture, origpixels.",
     "Against the picture itself, which is what a chain supplies, nothing changes."},
};

constexpr MethodNote convolution[] = {
    {"ApplyMatrix", "Weighs the 5 x 5 points around each point with 25 numbers: sharpen, emboss, find edges.",
     "The matrix has 25 numbers, row by row; one of 255 or more is left out. Each sum, plus delta, is multiplied by ScaleFactor. Alpha is treated like a "
     "colour."},
};

constexpr MethodNote scaling[] = {
    {"Scale", "Changes the size, each point being a weighed mean of those around it.", nullptr},
    {"ScaleFast", "Changes the size by taking the nearest points.", nullptr},
};

constexpr MethodNote turns[] = {
    {"HMirror", "Exchanges left and right.", nullptr},
    {"VMirror", "Exchanges top and bottom.", nullptr},
    {"Rotate90", "Turns by 90 degrees, counter-clockwise.", nullptr},
    {"Rotate180", "Turns by 180 degrees.",
     "In place, the middle row of an odd height stays as it is; 'Rotate180 dest=nil' turns that too."},
    {"Rotate270", "Turns by 90 degrees, clockwise.", nullptr},
    {"Rotate90slow", "The same as Rotate90, by rows.", nullptr},
    {"Rotate270slow", "The same as Rotate270, by rows.", nullptr},
    {"Rotate", "Turns by any angle in degrees, counter-clockwise, and fills the corners with a colour.", nullptr},
};

constexpr MethodNote fill[] = {
    {"Invert", "Makes a negative of the picture or a rectangle.",
     "In coloured pictures with alpha only red and blue are inverted; RGBChannels before it gives all three."},
    {"ClearRect", "Sets every byte of the picture or a rectangle to 0, alpha too.", nullptr},
    {"FillRect", "Sets every channel of the picture or a rectangle to one value, alpha too.",
     "In layouts without unused bytes a rectangle is filled on to the end of its rows, and a little beyond."},
    {"FillRectRGB", "Fills the picture or a rectangle with a colour.", "Gray pictures are left as they are."},
};

constexpr MethodNote views[] = {
    {"ClipImage", "A rectangle of the picture, sharing its pixels.", nullptr},
    {"Clone", "A copy that shares nothing with the picture.", nullptr},
    {"CopyPixels", "Copies a rectangle of the current picture into a new one of the same size.", nullptr},
    {"RedChannel", "The red channel as a gray picture, sharing its pixels.", nullptr},
    {"GreenChannel", "The green channel as a gray picture, sharing its pixels.", nullptr},
    {"BlueChannel", "The blue channel as a gray picture, sharing its pixels.", nullptr},
    {"GrayChannel", "The gray channel as a gray picture, sharing its pixels.", nullptr},
    {"AlphaChannel", "The alpha channel as a gray picture, sharing its pixels.", nullptr},
    {"RGBChannels", "The colours without the alpha, sharing their pixels.", nullptr},
};

constexpr MethodNote pictures[] = {
    {"CopyPicture", "A rectangle's colours, or all, as a picture of the host.", nullptr},
    {"CopyMask", "A rectangle's alpha, or all, as a gray picture of the host.", nullptr},
    {"CopyPictureWithMask", "A rectangle's colours, or all, as a picture of the host with the alpha as its mask.",
     nullptr},
    {"DrawPictureRGB", "Copies a rectangle of a host's picture into red, green and blue.", nullptr},
    {"DrawPictureRedToGrayChannel", "Copies a host's picture's red into gray.", nullptr},
    {"DrawPictureGreenToGrayChannel", "Copies a host's picture's green into gray.", nullptr},
    {"DrawPictureBlueToGrayChannel", "Copies a host's picture's blue into gray.", nullptr},
};

constexpr MethodNote making[] = {
    {"CreatePictureKZB", "A new picture of a size and layout, all bytes 0.", nullptr},
    {"Constructor", "Sets up a picture in memory, over a memory block, in a file, or on a picture of the host.",
     nullptr},
    {"Close", "Gives up what a picture holds.", nullptr},
};

constexpr MethodNote rows[] = {
    {"RawRow", "One row's bytes, shared with the picture.", nullptr},
    {"Row", "A copy of one row's bytes; assigned to, it writes them.", nullptr},
    {"RowInFormat", "One row in a layout of your choice, read or written.", nullptr},
    {"RowStringInFormat", "One row in a layout of your choice as a string, read or written.", nullptr},
    {"DataStringInFormat", "All rows in a layout of your choice as a string, read or written.", nullptr},
};

constexpr Family all_families[] = {
    {"Tone", tone},
    {"Dithering", dither},
    {"Effects", effects},
    {"Blur and sharpen", blur},
    {"Convolution", convolution},
    {"Size", scaling},
    {"Mirror and turn", turns},
    {"Fill, clear and invert", fill},
    {"Copies, channels and crops", views},
    {"Pictures of the host", pictures},
    {"Making pictures", making},
    {"Rows", rows},
};

} // namespace

std::span<const Family> families() {
    return all_families;
}

const MethodNote *note_on(std::string_view method) {
    for (const Family &family : all_families)
        for (const MethodNote &note : family.methods)
            if (same_name(note.name, method)) return &note;
    return nullptr;
}

const char *constants_for(std::string_view method, std::string_view argument) {
    if (same_name(argument, "ImageFormat")) return "ImageFormat";
    if (same_name(method, "Scale") && same_name(argument, "mode")) return "Scale";
    if (same_name(method, "DitherFilter") && same_name(argument, "matrix")) return "Dither";
    return nullptr;
}

} // namespace kzb::cli
