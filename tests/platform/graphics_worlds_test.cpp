// Host pictures over the system's own offscreen worlds.

#include "platform/simulated_host.h"

#include "host/classes.h"
#include "host/yield.h"
#include "image/format.h"
#include "image/lifecycle.h"
#include "interop/import_export.h"
#include "interop/picture_builder.h"
#include "interop/picture_reader.h"

#include <gtest/gtest.h>

namespace kzb::test::simulated {
namespace {

class Worlds : public testing::Test {
protected:
    void SetUp() override {
        start();
        picture_class.instance_data_offset = 0;
    }
    // The pictures that the host made are the tests' to give back.
    void TearDown() override {
        EXPECT_EQ(host_picture.locked, 0);
        EXPECT_EQ(left().locks, 0);
        EXPECT_EQ(left().mistakes, 0);
    }

    // Makes the host's picture one over a world of the system.
    static GWorldPtr picture_over_world(int32_t width, int32_t height, int16_t depth) {
        GWorldPtr world = world_of(width, height, depth);
        host_picture.description = {KZB_PICTURE_GWORLD, world, 0, width, height};
        return world;
    }
};

TEST_F(Worlds, ABuilderMakesAPictureThatTakesItsWorldOver) {
    {
        PictureBuilder builder;
        ASSERT_TRUE(builder.open(5, 3));
        EXPECT_EQ(left().locks, 1);
        EXPECT_EQ(builder.row(1) - builder.row(0), 48);
        auto picture = builder.finish();
        EXPECT_EQ(picture.get(), the_picture());
        EXPECT_EQ(left().locks, 0);
    }
    EXPECT_EQ(left().worlds, 1);
    EXPECT_EQ(host_picture.references, 0);
    PixMapHandle map = GetGWorldPixMap(host_picture.taken_over);
    EXPECT_EQ(GetPixDepth(map), 32);
}

TEST_F(Worlds, ABuilderThatIsNotFinishedDisposesOfItsWorld) {
    {
        PictureBuilder builder;
        ASSERT_TRUE(builder.open(5, 3));
    }
    EXPECT_EQ(left(), Left());
}

TEST_F(Worlds, ABuilderKeepsItsWorldWhenTheHostMakesNoPicture) {
    host_picture.building_fails = true;
    {
        PictureBuilder builder;
        ASSERT_TRUE(builder.open(5, 3));
        EXPECT_FALSE(builder.finish());
    }
    EXPECT_EQ(left(), Left());
}

TEST_F(Worlds, ABuilderFailsWithTheSystem) {
    for (const char *function : {"NewGWorld", "GetGWorldPixMap", "LockPixels", "GetPixBaseAddr"}) {
        start();
        fail(function);
        {
            PictureBuilder builder;
            EXPECT_FALSE(builder.open(5, 3)) << function;
        }
        EXPECT_EQ(left(), Left()) << function;
    }
}

TEST_F(Worlds, ABuilderRefusesSizesThatThePublishedRectangleCannotHold) {
    for (const auto &[width, height] : {std::pair{0, 3}, {3, 0}, {-1, 1}, {32768, 1}, {1, 32768}, {65537, 1}}) {
        PictureBuilder builder;
        EXPECT_FALSE(builder.open(width, height)) << width << " x " << height;
    }
    EXPECT_TRUE(calls().empty());
    PictureBuilder widest, tallest;
    EXPECT_TRUE(widest.open(2047, 1));
    EXPECT_TRUE(tallest.open(1, 32767));
}

TEST_F(Worlds, AReaderReadsTheWorldsPixels) {
    GWorldPtr world = picture_over_world(7, 4, 32);
    {
        PictureReader reader;
        ASSERT_TRUE(reader.open(the_picture()));
        EXPECT_EQ(reader.width(), 7);
        EXPECT_EQ(reader.height(), 4);
        PixMapHandle map = GetGWorldPixMap(world);
        EXPECT_EQ(reinterpret_cast<const char *>(reader.row(0)), GetPixBaseAddr(map));
        EXPECT_EQ(reader.row(2) - reader.row(0), 2 * 48) << "without the flags in the map's row bytes";
        EXPECT_EQ(left().locks, 1);
        EXPECT_EQ(host_picture.locked, 1);
        EXPECT_EQ(host_picture.references, 1);
    }
    EXPECT_EQ(left().locks, 0);
    EXPECT_EQ(host_picture.references, 0);
}

TEST_F(Worlds, AReaderFailsWithTheSystem) {
    for (const char *function : {"GetGWorldPixMap", "GetPixDepth", "LockPixels", "GetPixBaseAddr"}) {
        start();
        picture_over_world(7, 4, 32);
        fail(function);
        {
            PictureReader reader;
            EXPECT_FALSE(reader.open(the_picture())) << function;
        }
        EXPECT_EQ(left().locks, 0) << function;
        EXPECT_EQ(host_picture.locked, 0) << function;
        EXPECT_EQ(host_picture.references, 0) << function;
    }
}

TEST_F(Worlds, AReaderRefusesOtherDepthsAndKindsAndNoPort) {
    picture_over_world(7, 4, 16);
    EXPECT_FALSE(PictureReader().open(the_picture()));
    picture_over_world(7, 4, 32);
    host_picture.description.kind = 3;
    EXPECT_FALSE(PictureReader().open(the_picture()));
    host_picture.description = {KZB_PICTURE_GWORLD, nullptr, 0, 7, 4};
    EXPECT_FALSE(PictureReader().open(the_picture()));
}

// An image's record, as the host's object has it.
struct ImageHolder {
    ImageRecord record = {};
    ImageObject object() { return reinterpret_cast<ImageObject>(&record); }
    ~ImageHolder() { close_record(record); }
};

TEST_F(Worlds, AnImageLiesInAPicturesWorld) {
    GWorldPtr world = picture_over_world(7, 4, 32);
    {
        ImageHolder image;
        construct_on_picture(image.object(), the_picture(), 1);
        EXPECT_TRUE(image.record.Valid);
        EXPECT_EQ(image.record.ImageFormat, ImageFormatARGB);
        EXPECT_EQ(image.record.RowSize, 48);
        EXPECT_EQ(image.record.TotalSize, 4 * 48);
        EXPECT_EQ(reinterpret_cast<char *>(image.record.pixel_buffer), GetPixBaseAddr(GetPortPixMap(world)));
        EXPECT_EQ(host_picture.references, 1);
    }
    EXPECT_EQ(host_picture.references, 0);
    EXPECT_EQ(left().worlds, 1);
}

TEST_F(Worlds, AnImageIsNotValidWhereTheSystemFails) {
    for (const char *function : {"GetPortPixMap", "GetPixBaseAddr", "GetPixDepth"}) {
        start();
        picture_over_world(7, 4, 24);
        fail(function);
        ImageHolder image;
        construct_on_picture(image.object(), the_picture(), 0);
        EXPECT_FALSE(image.record.Valid) << function;
        EXPECT_EQ(host_picture.references, 0) << function;
    }
}

TEST_F(Worlds, AnImageIsNotValidOnAPictureOfAnotherKindOrSize) {
    GWorldPtr world = world_of(7, 4, 32);
    for (const PictureDescription &description : {PictureDescription{KZB_PICTURE_GWORLD, nullptr, 0, 7, 4},
                                                  {KZB_PICTURE_GWORLD + 1, world, 0, 7, 4},
                                                  {KZB_PICTURE_GWORLD, world, 0, -1, 4},
                                                  {KZB_PICTURE_GWORLD, world, 0, 7, -1}}) {
        host_picture.description = description;
        ImageHolder image;
        construct_on_picture(image.object(), the_picture(), 0);
        EXPECT_FALSE(image.record.Valid);
        EXPECT_EQ(host_picture.references, 0);
    }
}

TEST_F(Worlds, NilHasNoSizeAndIsNotDrawn) {
    EXPECT_EQ(picture_width(nullptr), 0);
    EXPECT_EQ(picture_height(nullptr), 0);
    draw_picture(as_object(the_picture()), nullptr, 1, 1);
    draw_picture(nullptr, the_picture(), 1, 1);
    EXPECT_TRUE(calls().empty());
}

TEST_F(Worlds, APictureOfAnImageIsDisposedOfWhereItFails) {
    for (const char *function : {"NewGWorld", "GetGWorldPixMap", "LockPixels", "GetPixBaseAddr"}) {
        start();
        ImageHolder image;
        construct_in_memory(image.object(), 5, 3, ImageFormatRGB);
        ASSERT_TRUE(image.record.Valid);
        fail(function);
        EXPECT_EQ(copy_picture(image.object()), nullptr) << function;
        EXPECT_EQ(left(), Left()) << function;
    }
}

TEST_F(Worlds, PacingGoesByTheSystemsTicks) {
    uint32_t last = 0;
    ticks = 9;
    pace(10, last);
    EXPECT_EQ(yields, 0);
    ticks = 10;
    pace(10, last);
    EXPECT_EQ(yields, 1);
    EXPECT_EQ(last, 10u);
}

} // namespace
} // namespace kzb::test::simulated
