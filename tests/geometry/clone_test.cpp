// Clone.

#include "fixtures/storages.h"
#include "geometry/shapes.h"

#include <gtest/gtest.h>

namespace kzb::test {
namespace {

TEST(Clone, IsADeepCopyInMemory) {
    uint32_t seed = 1;
    for (const Layout &of : layouts()) {
        for (Storage storage : every_storage) {
            const auto image = make_image(storage, 7, 5, of.code, ++seed);
            if (!image || image->flag("IsMapping")) continue;
            image->set("YieldTicks", 3);
            image->set("DebugPictureEnabled", true);
            for (const Shape &shape : shapes_of(*image)) {
                SCOPED_TRACE(shape.name + " of " + of.name + " in " + name_of(storage));
                const Image copy(shape.image.call("Clone"));
                ASSERT_TRUE(copy);
                EXPECT_TRUE(copy.valid());
                for (const char *property :
                     {"TotalSize", "RowOffset", "RedOffset", "GreenOffset", "BlueOffset", "GrayOffset", "AlphaOffset",
                      "Width", "Height", "PixelSize", "RowSize", "ImageFormat"})
                    EXPECT_EQ(copy.integer(property), shape.image.integer(property)) << property;
                for (const char *flag : {"IsGray", "IsRGB", "HasRed", "HasGreen", "HasBlue", "HasGray", "HasAlpha"})
                    EXPECT_EQ(copy.flag(flag), shape.image.flag(flag)) << flag;
                for (const char *none : {"Parent", "MemoryTarget", "Target", "Factory"})
                    EXPECT_TRUE(copy.get(none).is_nil()) << none;
                EXPECT_EQ(copy.integer("YieldTicks"), 0);
                EXPECT_FALSE(copy.flag("DebugPictureEnabled"));
                for (int32_t y = 0; y < copy.height(); ++y) EXPECT_EQ(copy.row(y), shape.image.row(y));
                // Neither sees what happens to the other.
                const Bytes shown = shape.image.row(0);
                copy.call("Invert");
                copy.call("ClearRect");
                EXPECT_EQ(shape.image.row(0), shown);
                const Bytes cleared = copy.row(0);
                shape.image.call("Invert");
                EXPECT_EQ(copy.row(0), cleared);
                copy.call("Close");
                EXPECT_FALSE(shape.image.call("Row", 0).is_nil());
            }
        }
    }
}

TEST(Clone, OutlivesItsOriginal) {
    Image image = *make_image(Storage::picture, 7, 5, 4, 1);
    const Image copy(Image(image.call("ClipImage", 2, 2, 3, 2)).call("Clone"));
    const Bytes row = image.row(3);
    image = Image();
    EXPECT_EQ(copy.row(1), row);
}

TEST(Clone, OfAViewTakesTheRowsThatItNeeds) {
    const Image image = *make_image(Storage::memory, 10, 50, 1, 1);
    const Image view(image.call("ClipImage", 4, 30, 3, 5));
    const Image copy(view.call("Clone"));
    EXPECT_EQ(copy.integer("RowOffset"), 30);
    EXPECT_EQ(copy.call("DataStringInFormat", 1).bytes(), view.call("DataStringInFormat", 1).bytes());
    // Runs that go on beyond the last row end with the clone's own storage.
    copy.call("FillRect", 2, 0, 1, 5, 9);
    copy.call("ClearRect");
    const Image part(copy.call("ClipImage", 1, 1, 2, 4));
    part.call("FillRect", 1, 3, 1, 1, 9);
    EXPECT_EQ(part.integer("TotalSize"), image.integer("TotalSize"));
    const Image again(part.call("Clone"));
    EXPECT_EQ(again.row(3), copy.row(4));
    again.call("FillRect", 0, 0, 100, 100, 1);
    // Constructed anew it has a size of its own.
    again.call("Constructor", 2, 2, 1);
    EXPECT_EQ(again.integer("TotalSize"), 128);
}

TEST(Clone, OfAnImageWithoutRowsOrColumns) {
    const Image image(10, 8, 2);
    for (const Value &view : {image.call("ClipImage", 10, 3, 4, 4), image.call("ClipImage", 3, 8, 4, 4),
                              image.call("ClipImage", INT32_MAX, INT32_MAX, 4, 4)}) {
        const Image copy(Image(view).call("Clone"));
        ASSERT_TRUE(copy);
        EXPECT_TRUE(copy.valid());
        copy.call("FillRect", 3);
        copy.call("ClearRect");
    }
    EXPECT_TRUE(Image(Image(0, 4, 1).call("Clone")).valid());
    EXPECT_TRUE(Image(Image(4, 0, 1).call("Clone")).valid());
}

TEST(Clone, OfRowsShorterThanTheirPixelsHasRoomForTheLastOne) {
    Bytes memory = random_bytes(200, 3);
    const Image image(Object::make("PictureKZB", block_at(memory.data()), 10, 4, 2, 17));
    const Image copy(image.call("Clone"));
    for (int32_t y = 0; y < 4; ++y) EXPECT_EQ(copy.row(y), image.row(y));
    copy.call("Invert");
    copy.call("FillRectRGB", 1, 2, 3, 4);
    EXPECT_EQ(copy.row(3)[16], 1);
}

TEST(Clone, OfAFileOrOfAnImageThatIsNotValidGivesNil) {
    EXPECT_TRUE(make_image(Storage::file, 4, 4, 1, 1)->call("Clone").is_nil());
    EXPECT_TRUE(make_image(Storage::file_view, 4, 4, 1, 1)->call("Clone").is_nil());
    EXPECT_TRUE(Object::make("PictureKZB").call("Clone").is_nil());
    EXPECT_TRUE(Image(4, 4, 99).call("Clone").is_nil());
    const Image closed(4, 4, 1);
    closed.call("Close");
    EXPECT_TRUE(closed.call("Clone").is_nil());
}

} // namespace
} // namespace kzb::test
