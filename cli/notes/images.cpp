// Notes on pictures of the host, on making pictures, and on their rows.
#include "note_tables.h"

namespace kzb::cli {

namespace {

constexpr const char *unscaled =
    "Nothing is scaled, and alpha is left alone. A copy that reaches beyond either picture is cut.";

constexpr MethodNote pictures[] = {
    {.name = "CopyPicture",
     .sentence = "A rectangle's colours, or all, as a picture of the host.",
     .also = "opaque flatten alpha crop transparent",
     .remark = "Without alpha: what was transparent shows the colours beneath. An empty rectangle gives nil.",
     .example = "kzb photo.png : CopyPicture -o opaque.png"},
    {.name = "CopyMask",
     .sentence = "A rectangle's alpha, or all, as a gray picture of the host.",
     .also = "transparency",
     .remark = "Nil for a picture without alpha. 255 is opaque; nothing is inverted.",
     .example = "kzb photo.png : CopyMask -o mask.png"},
    {.name = "CopyPictureWithMask",
     .sentence = "A rectangle's colours, or all, as a picture of the host with the alpha as its mask.",
     .also = "transparency crop",
     .remark = "A picture without alpha gives one without a mask.",
     .example = "kzb photo.png : CopyPictureWithMask 20 20 300 130 -o part.png"},
    {.name = "DrawPictureRGB",
     .sentence = "Copies a rectangle of a host's picture into red, green and blue.",
     .remark = unscaled,
     .example = "kzb photo.jpg : =photo : Invert : DrawPictureRGB @photo 100 60 200 120 -o drawn.jpg",
     .program = "kzb_value arguments[] = {picture, integer(0), integer(0), integer(48), integer(32)};\n"
                "kzb_call(image, \"DrawPictureRGB\", arguments, 5, NULL, &error);"},
    {.name = "DrawPictureRedToGrayChannel",
     .sentence = "Copies a host's picture's red into gray.",
     .remark = unscaled,
     .example = "kzb photo.jpg : =photo : BlueChannel : Clone : DrawPictureRedToGrayChannel @photo 100 60 200 120 -o "
                "drawn-red.png",
     .program = "/* A mask's gray, which its red holds too, becomes the alpha. */\n"
                "kzb_value alpha, arguments[] = {picture, integer(0), integer(0), integer(48), integer(32)};\n"
                "kzb_call(image, \"AlphaChannel\", NULL, 0, &alpha, &error);\n"
                "kzb_call(alpha.object, \"DrawPictureRedToGrayChannel\", arguments, 5, NULL, &error);\n"
                "kzb_release(&alpha);"},
    {.name = "DrawPictureGreenToGrayChannel",
     .sentence = "Copies a host's picture's green into gray.",
     .remark = unscaled,
     .example = "kzb photo.jpg : =photo : BlueChannel : Clone : DrawPictureGreenToGrayChannel @photo 100 60 200 120 -o "
                "drawn-green.png",
     .program = "kzb_value gray, arguments[] = {picture, integer(0), integer(0), integer(48), integer(32)};\n"
                "kzb_call(image, \"GreenChannel\", NULL, 0, &gray, &error);\n"
                "kzb_call(gray.object, \"DrawPictureGreenToGrayChannel\", arguments, 5, NULL, &error);\n"
                "kzb_release(&gray);"},
    {.name = "DrawPictureBlueToGrayChannel",
     .sentence = "Copies a host's picture's blue into gray.",
     .remark = unscaled,
     .example = "kzb photo.jpg : =photo : RedChannel : Clone : DrawPictureBlueToGrayChannel @photo 100 60 200 120 -o "
                "drawn-blue.png",
     .program = "kzb_value gray, arguments[] = {picture, integer(0), integer(0), integer(48), integer(32)};\n"
                "kzb_call(image, \"BlueChannel\", NULL, 0, &gray, &error);\n"
                "kzb_call(gray.object, \"DrawPictureBlueToGrayChannel\", arguments, 5, NULL, &error);\n"
                "kzb_release(&gray);"},
};

constexpr MethodNote making[] = {
    {.name = "CreatePictureKZB",
     .sentence = "A new picture of a size and layout, all bytes 0.",
     .also = "blank canvas color border frame",
     .remark =
         "Comes from the picture's Factory, else from the process's, else from memory; what a factory gives is not "
         "compared with what was asked for. Nil when there is no such layout or not enough memory.",
     .example = "kzb photo.jpg : CreatePictureKZB 240 120 ImageFormatRGB : FillRectRGB '#FF8000' -o orange.png",
     .arguments = {{"width", "0 and more pixels"}, {"height", "0 and more pixels"}}},
    {.name = "Constructor",
     .sentence = "Sets up a picture in memory, over a memory block, in a file, or on a picture of the host.",
     .remark =
         "Reports failure by Valid alone, which stays false. In memory a picture has at most 2,147,483,647 bytes, its "
         "rows padded to a multiple of 64; one in a file has no such limit. The forms over a block trust the caller "
         "for its size. A picture of the host must have 24 or 32 bits.",
     .example = "kzb photo.jpg : Constructor 240 120 ImageFormatRGB : FillRectRGB '#203050' -o constructed.png",
     .program = "kzb_value arguments[] = {integer(640), integer(480), integer(2)}; /* 2: ImageFormatRGBA */\n"
                "kzb_value made = {.kind = KZB_OBJECT};\n"
                "made.object = kzb_new(\"PictureKZB\", arguments, 3, &error);\n"
                "kzb_value valid;\n"
                "kzb_get(made.object, \"Valid\", &valid, &error);\n"
                "if (!valid.integer) puts(\"not enough memory\");\n"
                "kzb_release(&made);",
     .arguments = {{"width", "0 and more pixels"},
                   {"height", "0 and more pixels"},
                   {"Buf", "the block whose bytes become the pixels; held as MemoryTarget"},
                   {"RowSize", "bytes from one row to the next, width x the pixel's size at least"},
                   {"BlockSize", "bytes of the file to map at a time; up to 16 MiB, 0 too, counts as 16 MiB"},
                   {"FilePath", "the scratch file; made, or emptied if it is there, and deleted by Close"},
                   {"pic", "the picture whose own pixels become this picture's; held as Target"},
                   {"UseAlpha", "true: the first byte of each pixel is alpha; false: it is unused"}}},
    {.name = "Close",
     .sentence = "Gives up what a picture holds: its memory, its file, its parent.",
     .remark =
         "The scratch file is deleted. Valid may stay true, but the picture must not be used any more; views of it "
         "cannot be used either. A picture that is released closes itself.",
     .example = "kzb photo.jpg : =photo : Clone : Close : @photo -o closed.jpg",
     .program = "kzb_call(image, \"Close\", NULL, 0, NULL, &error);"},
};

constexpr MethodNote rows[] = {
    {.name = "RawRow",
     .sentence = "One row's bytes, shared with the picture.",
     .remark =
         "The block has no size of its own, and is good until the picture is closed or, in a file, until another row "
         "is reached. Nil for a picture that is not Valid.",
     .example = "kzb photo.jpg : RawRow 120 =row : Row 200 value=@row : Row 201 value=@row : Row 202 value=@row -o "
                "raw-row.png",
     .program = "kzb_value row, index = integer(0);\n"
                "kzb_call(image, \"RawRow\", &index, 1, &row, &error);\n"
                "unsigned char *bytes = kzb_block_bytes((KZBMemoryBlock)row.object, NULL);\n"
                "bytes[0] = 255; /* the first pixel's red, in the picture itself */\n"
                "kzb_release(&row);"},
    {.name = "Row",
     .sentence = "A copy of one row's bytes; assigned to, it writes them.",
     .remark =
         "The block holds RowSize bytes, padding included. An assigned one must hold as many: no length is compared.",
     .example = "kzb photo.jpg : Row 20 =row : Row 60 value=@row : Row 61 value=@row : Row 62 value=@row -o row.png",
     .program = "kzb_value row, index = integer(0), last = integer(29);\n"
                "kzb_call(image, \"Row\", &index, 1, &row, &error);    /* block = image.Row(0) */\n"
                "kzb_assign(image, \"Row\", &last, 1, &row, &error);   /* image.Row(29) = block */\n"
                "kzb_release(&row);"},
    {.name = "RowInFormat",
     .sentence = "One row in a layout of your choice, read or written.",
     .also = "convert",
     .remark = "The block holds width x the layout's pixel size, without padding. Where the picture has no alpha, the "
               "alpha of what is read stays 0, and an assigned row without alpha leaves the picture's as it is.",
     .example = "kzb photo.jpg : RowInFormat 60 ImageFormatG =gray : RowInFormat 60 ImageFormatG value=@gray -o "
                "row-in-format.png",
     .program = "kzb_value row, arguments[] = {integer(0), integer(11)}; /* 11: ImageFormatG */\n"
                "kzb_call(image, \"RowInFormat\", arguments, 2, &row, &error);\n"
                "kzb_assign(image, \"RowInFormat\", arguments, 2, &row, &error);\n"
                "kzb_release(&row);",
     .arguments = {{"InvertAlpha", "true: alpha comes and goes as 255 - alpha"}}},
    {.name = "RowStringInFormat",
     .sentence = "One row in a layout of your choice as a string, read or written.",
     .also = "convert",
     .remark = "As RowInFormat. An assigned string must be long enough: no length is compared.",
     .example =
         "kzb photo.jpg : RowStringInFormat 60 ImageFormatRGB =row : RowStringInFormat 60 ImageFormatBGR value=@row "
         "-o row-string.png",
     .program = "kzb_value text, arguments[] = {integer(0), integer(7)}; /* 7: ImageFormatBGRA */\n"
                "kzb_call(image, \"RowStringInFormat\", arguments, 2, &text, &error);\n"
                "printf(\"%d bytes\\n\", (int)text.string->length);\n"
                "kzb_release(&text);"},
    {.name = "DataStringInFormat",
     .sentence = "All rows in a layout of your choice as a string, read or written.",
     .also = "convert raw export",
     .remark =
         "Rows follow one another without padding. An assigned string must be long enough: no length is compared.",
     .example =
         "kzb photo.jpg : DataStringInFormat ImageFormatRGB =data : DataStringInFormat ImageFormatBGR value=@data -o "
         "exchanged.jpg",
     .program = "kzb_value data, layout = integer(1); /* 1: ImageFormatRGB */\n"
                "kzb_call(image, \"DataStringInFormat\", &layout, 1, &data, &error);\n"
                "kzb_assign(image, \"DataStringInFormat\", &layout, 1, &data, &error);\n"
                "kzb_release(&data);"},
};

constexpr Family all[] = {
    {"Pictures of the host", "host-pictures", pictures},
    {"Making pictures", "making", making},
    {"Rows", "rows", rows},
};

} // namespace

std::span<const Family> image_families() {
    return all;
}

} // namespace kzb::cli
