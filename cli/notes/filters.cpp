// Notes on the filters.
#include "note_tables.h"

namespace kzb::cli {

namespace {

constexpr MethodNote tone[] = {
    {.name = "GammaFilter",
     .sentence = "Brightens (above 1) or darkens (below 1) along a power curve.",
     .also = "brightness lighter darker exposure tint warm color balance",
     .remark =
         "In a picture with alpha the forms without alphaGamma leave the new picture's alpha at 0: transparent. "
         "An alphaGamma of 1 keeps it. Of three gammas a gray picture takes a mean, which is cut to a whole number.",
     .example = "kzb photo.jpg : GammaFilter 1.6 -o brighter.jpg",
     .arguments = {{"gamma",
                    "above 0; 1 changes nothing, 2.2 brightens much, 0.5 darkens; 0 and less leave black and white"},
                   {"redGamma", "as gamma, for red"},
                   {"greenGamma", "as gamma, for green"},
                   {"blueGamma", "as gamma, for blue"},
                   {"alphaGamma", "as gamma, for alpha; 1 keeps it"}}},
    {.name = "GainFilter",
     .sentence = "Raises (above 0.5) or lowers contrast, then brightness; 0.5 and 0.5 change nothing.",
     .also = "contrast brightness",
     .remark = "Alpha goes through the same curve.",
     .example = "kzb photo.jpg : GainFilter gain=0.7 bias=0.55 -o crisp.jpg",
     .arguments = {{"gain", "above 0 and below 1; above 0.5 raises contrast, below lowers it"},
                   {"bias", "above 0 and below 1; above 0.5 brightens the middle tones, below darkens them"}}},
    {.name = "SolarizeFilter",
     .sentence = "Turns dark parts into their negative, as film does under stray light.",
     .also = "negative film",
     .remark = "Alpha goes through the same curve: transparent and opaque both become opaque, half transparent becomes "
               "transparent. 'RGBChannels' before it keeps the alpha out.",
     .example = "kzb photo.jpg : SolarizeFilter -o solarized.jpg"},
    {.name = "TransferFilter",
     .sentence = "Sends each channel through a table of values of your own.",
     .also = "curve lookup duotone posterize table tint levels color",
     .remark = "Values beyond the end of a short array are 0. In a picture with alpha the forms without an array for "
               "alpha leave the new picture's alpha at 0: transparent.",
     .example = "kzb photo.jpg : TransferFilter \"[$(seq -s, 255 -1 0)]\" -o transferred.jpg",
     .arguments = {{"red", "up to 256 values, what 0, 1, 2 ... become; of each the low byte counts"},
                   {"green", "as red; a gray picture takes these"},
                   {"blue", "as red"},
                   {"gray", "as red, for gray or for all three colours"},
                   {"alpha", "as red, for alpha"}}},
    {.name = "AutoLevel",
     .sentence = "Stretches the colours so that the darkest and the lightest half percent reach black and white.",
     .also = "contrast normalize haze brightness",
     .remark =
         "For coloured pictures only; false for others. The rectangle is both what is measured and what is "
         "changed. A rectangle of a single brightness has nothing to stretch: its channels become black or white.",
     .example = "kzb photo.jpg : AutoLevel -o leveled.jpg"},
};

constexpr MethodNote dither[] = {
    {.name = "DitherFilter",
     .sentence = "Reduces each channel to a few levels in a pattern of dots.",
     .also = "halftone posterize raster print black and white levels",
     .remark =
         "The levels come out inverted, dark for light; Invert afterwards turns them back. The cluster patterns make "
         "all that is brighter than the middle white, Ordered6x6 and Ordered8x8 make nothing quite white. Alpha is "
         "dithered too: CopyPicture before it leaves alpha behind. With other levels, or an unknown matrix, the new "
         "picture stays empty.",
     .example = "kzb photo.jpg : DitherFilter DitherOrdered4x4Matrix 2 : Invert -o dots.png",
     .arguments = {{"matrix", "the pattern: one of the constants"}, {"levels", "2 to 256 levels for each channel"}}},
};

constexpr MethodNote effects[] = {
    {.name = "OilFilter",
     .sentence = "Paints in blots: each point takes the most frequent shade around it.",
     .also = "paint",
     .remark = "With levels below 1 or a negative range the new picture stays empty.",
     .example = "kzb photo.jpg : OilFilter levels=32 range=3 -o painted.jpg",
     .arguments = {{"levels", "1 to 256 shades to tell apart, more counting as 256; fewer give flatter blots"},
                   {"range", "0 and more: (2 range + 1) x (2 range + 1) points are looked at; 0 changes nothing"}}},
    {.name = "DiffuseFilter",
     .sentence = "Takes each point from a random place up to a few points away.",
     .also = "scatter frosted noise",
     .remark = "The places are drawn anew in every run. With a negative level the new picture stays empty.",
     .example = "kzb photo.jpg : DiffuseFilter 3 -o frosted.jpg",
     .arguments = {{"level", "0 and more pixels; 0 changes nothing"}}},
    {.name = "EngraveFilter",
     .sentence = "Shows the differences to the point a few to the right and below, on gray.",
     .also = "emboss relief",
     .remark =
         "Alpha is treated like a colour, so that an opaque picture becomes half transparent; CopyPicture before it "
         "leaves alpha behind.",
     .example = "kzb photo.jpg : EngraveFilter 2 -o engraved.jpg",
     .arguments = {{"level", "how many pixels away; a negative one looks to the left and above; 0 gives plain gray"}}},
    {.name = "NeonFilter",
     .sentence = "Shows edges as glowing lines on black.",
     .also = "edge outline contour sketch drawing",
     .remark = "The last column and the last row are compared with what lies beyond the picture and are mostly bright; "
               "ClipImage cuts them off. Alpha is treated like a colour: inside an opaque picture it becomes 0.",
     .example = "kzb photo.jpg : NeonFilter -o glowing.jpg"},
    {.name = "StampFilter",
     .sentence = "Blurs, then pushes each channel to that of one of two colours, with a soft edge between.",
     .also = "threshold two colours print black and white color",
     .remark =
         "Each channel goes to its own part of the two colours: on gray made coloured, as by CopyPicture of a channel, "
         "the result has two clean colours, else up to eight. The alpha of the new picture is left at 0: transparent;"
         " CopyPicture before it leaves alpha behind. A dest "
         "receives only the first blur; the result is always a new picture.",
     .example = "kzb photo.jpg : GreenChannel : CopyPicture : StampFilter 6 0.5 0.2 '#203050' '#FFE0B0' -o stamp.jpg",
     .arguments = {{"radius", "0 and more pixels of blur; below 3 there is none"},
                   {"threshold", "0 to 1: the level between Black and White"},
                   {"softness", "0, a hard edge, to 1"},
                   {"Black", "the colour for levels below the threshold"},
                   {"White", "the colour for levels above it"}}},
};

constexpr MethodNote blur[] = {
    {.name = "BoxBlurFilter",
     .sentence = "Blurs by the mean of a square around each point, once or several times.",
     .also = "soften smooth gaussian",
     .remark = "A given dest receives the first pass only. With 0 iterations the result is the picture itself.",
     .example = "kzb photo.jpg : BoxBlurFilter 2 3 -o soft.jpg",
     .arguments = {{"Radius", "pixels to each side; the fraction is dropped, and below 1 nothing is blurred"},
                   {"Iterations", "0 and more passes, 1 when not given; 3 come close to a Gaussian blur"}}},
    {.name = "BoxBlurFractionalFilter",
     .sentence = "Blurs very slightly, by the fractional part of the radius.",
     .also = "soften smooth",
     .remark = "2.3 and 0.3 give the same. For a radius of 2.3, run BoxBlurFilter 2 and then this one.",
     .example = "kzb photo.jpg : BoxBlurFractionalFilter 0.5 -o softer.jpg",
     .arguments = {{"Radius", "only what stands behind the point counts; a whole number changes nothing"}}},
    {.name = "UnsharpFilter",
     .sentence = "Sharpens: moves each value away from that of a softened copy, origpixels.",
     .also = "sharpen mask detail",
     .remark = "Against the picture itself nothing changes.",
     .example = "kzb photo.jpg : =photo : BoxBlurFilter 2 3 : =soft : @photo : UnsharpFilter @soft 0.3 3 -o sharp.jpg",
     .arguments = {{"origpixels", "a picture of the same size and layout, such as the blurred one; false for another"},
                   {"Amount", "differences grow by 1 + 4 Amount: 0 changes nothing, 0.25 doubles them"},
                   {"Threshold", "0 to 255: smaller differences are left as they are"}}},
};

constexpr MethodNote convolution[] = {
    {.name = "ApplyMatrix",
     .sentence = "Weighs the 5 x 5 points around each point with 25 numbers: sharpen, emboss, find edges.",
     .also = "convolution kernel",
     .remark =
         "Each sum, plus delta, is multiplied by ScaleFactor; nothing is divided by the sum of the weights. Beyond "
         "an edge the point's own row or column stands in. Alpha is treated like a colour. With dest nil a program "
         "gets a new picture with width and height exchanged, which fits square pictures only: give one of the "
         "picture's own size.",
     .example =
         "kzb photo.jpg : ApplyMatrix '[0,0,0,0,0, 0,0,-1,0,0, 0,-1,5,-1,0, 0,0,-1,0,0, 0,0,0,0,0]' -o weighed.jpg",
     .arguments = {{"matrix", "25 weights, row by row, the point's own in the middle; one of 255 or more is left out"},
                   {"delta", "added to each sum; 0 when not given"},
                   {"ScaleFactor", "multiplies each sum; 1 when not given"}}},
};

constexpr Family all[] = {
    {"Tone", "tone", tone},
    {"Dithering", "dithering", dither},
    {"Effects", "effects", effects},
    {"Blur and sharpen", "blur", blur},
    {"Convolution", "convolution", convolution},
};

} // namespace

std::span<const Family> filter_families() {
    return all;
}

} // namespace kzb::cli
