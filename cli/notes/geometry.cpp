// Notes on size, turns, fills, copies and views.
#include "note_tables.h"

namespace kzb::cli {

namespace {

constexpr MethodNote scaling[] = {
    {.name = "Scale",
     .sentence = "Changes the size, each point being a weighed mean of those around it.",
     .also = "resize resample thumbnail smaller larger",
     .remark =
         "Is called on the picture that receives the result, which must be at least that large. Values are cut, not "
         "rounded: 254.9 becomes 254. Alpha is resampled by itself; colours under transparent points count.",
     .example = "kzb photo.jpg : Scale ScaleLanczos3 160 100 -o thumbnail.jpg",
     .arguments = {{"temp", "a picture of ImageFormatScaling, width x the source's height at least; nil makes one"},
                   {"mode", "the filter: one of the constants"},
                   {"source", "the picture to read"},
                   {"width", "1 and more pixels"},
                   {"height", "1 and more pixels"}}},
    {.name = "ScaleFast",
     .sentence = "Changes the size by taking the nearest points.",
     .also = "resize resample thumbnail pixelate nearest",
     .remark = "Is called on the picture that receives the result; a larger size is cut to its own.",
     .example = "kzb photo.jpg : ScaleFast 40 25 : ScaleFast 400 250 -o mosaic.png",
     .arguments = {{"source", "the picture to read"},
                   {"width", "1 and more pixels; a negative number counts as the destination's own width"},
                   {"height", "1 and more pixels; a negative number counts as the destination's own height"}}},
};

constexpr MethodNote turns[] = {
    {.name = "HMirror",
     .sentence = "Exchanges left and right.",
     .also = "flip",
     .example = "kzb photo.jpg : HMirror -o mirrored.jpg"},
    {.name = "VMirror",
     .sentence = "Exchanges top and bottom.",
     .also = "flip",
     .example = "kzb photo.jpg : VMirror -o reflected.jpg"},
    {.name = "Rotate90",
     .sentence = "Turns by 90 degrees, counter-clockwise.",
     .also = "portrait landscape",
     .example = "kzb photo.jpg : Rotate90 -o upright.jpg"},
    {.name = "Rotate180",
     .sentence = "Turns by 180 degrees.",
     .also = "upside down",
     .remark = "In place, the middle row of an odd height stays as it is; 'Rotate180 dest=nil' turns that too.",
     .example = "kzb photo.jpg : Rotate180 dest=nil -o turned.jpg"},
    {.name = "Rotate270",
     .sentence = "Turns by 90 degrees, clockwise.",
     .also = "portrait landscape",
     .example = "kzb photo.jpg : Rotate270 -o clockwise.jpg"},
    {.name = "Rotate90slow",
     .sentence = "The same as Rotate90, with the pixels moved row by row.",
     .remark = "The result is the same, unless the two pictures share pixels or dest is too small.",
     .example = "kzb photo.jpg : Rotate90slow -o upright-slowly.jpg"},
    {.name = "Rotate270slow",
     .sentence = "The same as Rotate270, with the pixels moved row by row.",
     .remark = "The result is the same, unless the two pictures share pixels or dest is too small.",
     .example = "kzb photo.jpg : Rotate270slow -o clockwise-slowly.jpg"},
    {.name = "Rotate",
     .sentence = "Turns by any angle in degrees, counter-clockwise, and fills the corners with a colour.",
     .also = "straighten horizon",
     .remark =
         "The new picture is larger, so that all of the old one fits. Angle 0 gives the picture itself; 90, 180 and "
         "270 lose nothing; others are three shears, which leave thin dark lines at some "
         "edges and across a corner. The alpha of gray pictures with alpha is left at 0.",
     .example = "kzb photo.jpg : Rotate 3.5 Red=255 Green=255 Blue=255 Alpha=255 Gray=255 -o tilted.jpg",
     .arguments = {{"angle", "degrees, positive ones counter-clockwise; 370 is 10"},
                   {"Red", "0 to 255, for the corners of coloured pictures"},
                   {"Green", "as Red"},
                   {"Blue", "as Red"},
                   {"Alpha", "0 to 255, for the corners of coloured pictures with alpha"},
                   {"Gray", "0 to 255, for the corners of gray pictures"}}},
};

constexpr MethodNote fill[] = {
    {.name = "Invert",
     .sentence = "Makes a negative of the picture or a rectangle.",
     .also = "negative",
     .remark =
         "In coloured pictures with alpha only red and blue are inverted; RGBChannels before it gives all three. In "
         "gray pictures alpha is inverted too. A rectangle that lies wholly to the left of the picture takes its "
         "whole width, one wholly above it its whole height.",
     .example = "kzb photo.jpg : Invert -o negative.jpg"},
    {.name = "ClearRect",
     .sentence = "Sets every byte of the picture or a rectangle to 0, alpha too.",
     .also = "black erase transparent",
     .example = "kzb photo.jpg : ClearRect 40 30 120 80 -o hidden.jpg"},
    {.name = "FillRect",
     .sentence = "Sets every channel of the picture or a rectangle to one value, alpha too.",
     .also = "gray box color",
     .remark = "In layouts without unused bytes a rectangle is filled on to the end of its rows, and a little beyond; "
               "FillRectRGB and ClearRect keep to the rectangle.",
     .example = "kzb photo.jpg : FillRect 128 -o gray.jpg",
     .arguments = {{"value", "0 to 255; of other numbers the low byte counts"}}},
    {.name = "FillRectRGB",
     .sentence = "Fills the picture or a rectangle with a colour.",
     .also = "colour box paint color border frame",
     .remark =
         "Gray pictures are left as they are. Without an alpha argument alpha stays; in a picture without alpha the "
         "argument is dropped. The result of RGBChannels is left as it is too.",
     .example = "kzb photo.jpg : FillRectRGB 40 30 120 80 '#FF8000' -o labelled.jpg"},

};

constexpr MethodNote copies[] = {
    {.name = "ClipImage",
     .sentence = "A rectangle of the picture, sharing its pixels.",
     .also = "crop cut trim view",
     .remark =
         "What is changed in it is changed in the picture. A rectangle to the right of or below the picture gives "
         "a picture without columns or rows.",
     .example = "kzb photo.jpg : ClipImage x=60 y=20 width=240 height=130 -o cropped.jpg"},
    {.name = "Clone",
     .sentence = "A copy that shares nothing with the picture.",
     .also = "duplicate copy",
     .remark =
         "Nil for a picture in a file. Its RowOffset and channel offsets are those of the picture, of a ClipImage too.",
     .example = "kzb photo.jpg : Clone -o clone.jpg"},
    {.name = "CopyPixels",
     .sentence = "Copies a rectangle, or all, of another picture into this one.",
     .also = "paste watermark compose montage gray crop merge overlay border frame grayscale monochrome",
     .remark =
         "Between gray and colours it converts: gray is (77 red + 151 green + 28 blue) / 256. Alpha is copied where "
         "both pictures have it and else left alone; it is no blending. A negative source corner moves the copy to "
         "the left or upwards.",
     .example = "kzb photo.jpg : =photo : Invert : CopyPixels 100 60 200 120 100 60 source=@photo -o pasted.jpg",
     .arguments = {{"source", "the picture to read"}}},
    {.name = "RedChannel",
     .sentence = "The red channel as a gray picture, sharing its pixels.",
     .also = "view channel color",
     .remark = "Nil for a picture without red.",
     .example = "kzb photo.jpg : RedChannel -o red.png"},
    {.name = "GreenChannel",
     .sentence = "The green channel as a gray picture, sharing its pixels.",
     .also = "view grayscale monochrome",
     .remark = "Nil for a picture without green.",
     .example = "kzb photo.jpg : GreenChannel -o green.png"},
    {.name = "BlueChannel",
     .sentence = "The blue channel as a gray picture, sharing its pixels.",
     .also = "view",
     .remark = "Nil for a picture without blue.",
     .example = "kzb photo.jpg : BlueChannel -o blue.png"},
    {.name = "GrayChannel",
     .sentence = "The gray channel as a gray picture, sharing its pixels.",
     .also = "view",
     .remark = "Nil for coloured pictures: it does not convert. CopyPixels into a gray picture does.",
     .example = "kzb photo.jpg : RedChannel : GrayChannel -o gray.png"},
    {.name = "AlphaChannel",
     .sentence = "The alpha channel as a gray picture, sharing its pixels.",
     .also = "view transparency mask transparent",
     .remark = "Nil for a picture without alpha.",
     .example = "kzb photo.png : AlphaChannel -o alpha.png"},
    {.name = "RGBChannels",
     .sentence = "The colours without the alpha, sharing their pixels.",
     .also = "view transparency opaque flatten color",
     .remark = "Its HasRed, HasGreen and HasBlue are false: filters, CopyPixels and Invert work on it, FillRectRGB, "
               "DrawPictureRGB and ClipImage do not. Clip first.",
     .example = "kzb photo.png : RGBChannels : Invert -o negative-colours.png"},
};

constexpr Family all[] = {
    {"Size", "size", scaling},
    {"Mirror and turn", "turns", turns},
    {"Fill, clear and invert", "fill", fill},
    {"Copies, channels and crops", "copies", copies},
};

} // namespace

std::span<const Family> geometry_families() {
    return all;
}

} // namespace kzb::cli
