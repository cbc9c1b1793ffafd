// Layout codes, the descriptors they give an image, and their names.

#include "fixtures/plain_image.h"

#include <gtest/gtest.h>

namespace kzb::test {
namespace {

std::string format_string(int32_t code) {
    const Value name = Image(1, 1, code).get("ImageFormatString");
    if (name.is_nil()) return "";
    const Bytes bytes = name.bytes();
    return std::string(bytes.begin(), bytes.end());
}

TEST(ImageFormat, EveryLayoutHasItsDescriptor) {
    for (const Layout &expected : layouts()) {
        SCOPED_TRACE(expected.name);
        const Image image(2, 3, expected.code);
        EXPECT_TRUE(image.valid());
        EXPECT_EQ(image.integer("PixelSize"), expected.pixel_size);
        EXPECT_EQ(image.integer("RedOffset"), std::max(expected.red, 0));
        EXPECT_EQ(image.integer("GreenOffset"), std::max(expected.green, 0));
        EXPECT_EQ(image.integer("BlueOffset"), std::max(expected.blue, 0));
        EXPECT_EQ(image.integer("GrayOffset"), std::max(expected.gray, 0));
        EXPECT_EQ(image.integer("AlphaOffset"), std::max(expected.alpha, 0));
        EXPECT_EQ(image.flag("IsRGB"), expected.is_rgb());
        EXPECT_EQ(image.flag("HasRed"), expected.is_rgb());
        EXPECT_EQ(image.flag("HasGreen"), expected.is_rgb());
        EXPECT_EQ(image.flag("HasBlue"), expected.is_rgb());
        EXPECT_EQ(image.flag("IsGray"), expected.is_gray());
        EXPECT_EQ(image.flag("HasGray"), expected.is_gray());
        EXPECT_EQ(image.flag("HasAlpha"), expected.has_alpha());
    }
}

TEST(ImageFormat, TheWorkingLayoutHasSixteenBytesAndNoChannels) {
    const Image image(2, 3, 14);
    EXPECT_TRUE(image.valid());
    EXPECT_EQ(image.integer("PixelSize"), 16);
    for (const char *flag : {"IsRGB", "IsGray", "HasRed", "HasGreen", "HasBlue", "HasGray", "HasAlpha"})
        EXPECT_FALSE(image.flag(flag)) << flag;
}

TEST(ImageFormat, AnUnknownCodeFailsAndIsKept) {
    for (int32_t code : {0, 22, -1, INT32_MIN, INT32_MAX}) {
        const Image image(2, 3, code);
        EXPECT_FALSE(image.valid());
        EXPECT_EQ(image.format(), code);
        EXPECT_EQ(image.integer("PixelSize"), 0);
        EXPECT_EQ(image.width(), 2);
        EXPECT_EQ(image.height(), 3);
    }
}

TEST(ImageFormat, NamesAreAsTheyHaveAlwaysBeen) {
    const char *names[] = {"Unknown", "RGB",  "RBBA", "RGBX", "ARGB", "XRGB", "BGR",    "BGRA",
                           "BGRX",    "ABGR", "XBGR", "G",    "GA",   "AG",   "Scaling"};
    for (int32_t code = 0; code < 15; ++code) EXPECT_EQ(format_string(code), names[code]);
    for (int32_t code : {15, 16, 17, 18, 19, 20, 21, 22, -1, INT32_MAX}) {
        EXPECT_EQ(format_string(code), "") << code;
        EXPECT_TRUE(Image(1, 1, code).get("ImageFormatString").is_nil()) << code;
    }
    EXPECT_EQ(Image(1, 1, 1).get("ImageFormatString").raw().string->encoding, 0x0600);
}

TEST(ImageFormat, AnAliasNamesTheByteOfItsChannel) {
    const auto constant = [](const char *name) {
        int64_t value = 0;
        kzb_error error = {};
        EXPECT_TRUE(kzb_constant("PictureKZB", name, &value, &error)) << error.message;
        return static_cast<int32_t>(value);
    };
    EXPECT_EQ(constant("ImageFormatAofARGB"), constant("ImageFormat1of4"));
    const Image image(1, 1, constant("ImageFormatARGB"));
    Bytes row(64);
    row[0] = 200;
    image.assign("Row", block_of(row), 0);
    const Image alpha(Object::make("PictureKZB", block_of(row), 1, 1, constant("ImageFormatAofARGB"), 64));
    EXPECT_EQ(alpha.call("RowInFormat", 0, constant("ImageFormatG")).bytes(), Bytes{200});
}

} // namespace
} // namespace kzb::test
