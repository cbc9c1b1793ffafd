// Images over host pictures, and host pictures made from images.

#include "fixtures/storages.h"

#include <gtest/gtest.h>

#include <cstring>

namespace kzb::test {
namespace {

KZBPicture picture_of(const Value &value) { return reinterpret_cast<KZBPicture>(value.object()); }

Value new_picture(int32_t width, int32_t height, int32_t depth) {
    return Value::adopt(reinterpret_cast<KZBObject>(kzb_picture_new(width, height, depth)));
}

Value mask_of(const Value &picture) {
    // The picture's own reference: taken along.
    Value mask = Value::adopt(reinterpret_cast<KZBObject>(kzb_picture_mask(picture_of(picture))));
    return mask;
}

struct Pixel {
    int red, green, blue;
    bool operator==(const Pixel &) const = default;
};

Pixel pixel_of(const Value &picture, int32_t x, int32_t y) {
    const GWorldPtr world = kzb_picture_world(picture_of(picture));
    const auto *pixel = static_cast<const uint8_t *>(world->base_address) + y * world->row_bytes + 4 * x;
    EXPECT_EQ(world->depth, 32);
    EXPECT_EQ(pixel[0], 0) << "the first byte is unused";
    return {pixel[1], pixel[2], pixel[3]};
}

int32_t width_of(const Value &picture) { return static_cast<int32_t>(kzb_picture_world(picture_of(picture))->width); }
int32_t height_of(const Value &picture) { return static_cast<int32_t>(kzb_picture_world(picture_of(picture))->height); }

// The picture shows the image's rectangle from (x, y).
void expect_shows(const Value &picture, const PlainImage &image, int32_t x, int32_t y, int32_t w, int32_t h) {
    ASSERT_FALSE(picture.is_nil());
    ASSERT_EQ(width_of(picture), w);
    ASSERT_EQ(height_of(picture), h);
    for (int32_t v = 0; v < h; ++v)
        for (int32_t u = 0; u < w; ++u) {
            const auto at = [&](Channel channel) {
                return image.get(x + u, y + v, image.is_gray ? Channel::gray : channel);
            };
            EXPECT_EQ(pixel_of(picture, u, v), (Pixel{at(Channel::red), at(Channel::green), at(Channel::blue)}))
                << u << ',' << v;
        }
}

PlainImage plain(const Image &image) { return Snapshots().of(image); }

TEST(CopyPicture, ShowsColourAndGrayLayoutsInEveryStorage) {
    uint32_t seed = 1;
    for (const Layout &of : layouts()) {
        for (Storage storage : every_storage) {
            const auto image = make_image(storage, 9, 6, of.code, seed++);
            if (!image) continue;
            SCOPED_TRACE(std::string(of.name) + " in " + name_of(storage));
            expect_shows(image->call("CopyPicture"), plain(*image), 0, 0, 9, 6);
            expect_shows(image->call("CopyPicture", 2, 1, 5, 4), plain(*image), 2, 1, 5, 4);
        }
    }
}

TEST(CopyPicture, OfGrayHasEqualColours) {
    const Image image = *make_image(Storage::memory, 4, 4, 13, 1);
    const Value picture = image.call("CopyPicture");
    for (int32_t x = 0; x < 4; ++x) {
        const Pixel pixel = pixel_of(picture, x, 2);
        EXPECT_EQ(pixel.red, pixel.green);
        EXPECT_EQ(pixel.green, pixel.blue);
    }
}

TEST(CopyPicture, CutsTheRectangleToTheImage) {
    const Image image = *make_image(Storage::memory, 30, 20, 2, 1);
    expect_shows(image.call("CopyPicture", -10, -10, 20, 20), plain(image), 0, 0, 10, 10);
    expect_shows(image.call("CopyPicture", 5, 5, -5, -5), plain(image), 0, 0, 5, 5);
    expect_shows(image.call("CopyPicture", 25, 15, 100, 100), plain(image), 25, 15, 5, 5);
    expect_shows(image.call("CopyPicture", 29, 19, INT32_MAX, INT32_MAX), plain(image), 29, 19, 1, 1);
}

TEST(CopyPicture, AnEmptyRectangleGivesNil) {
    const Image image = *make_image(Storage::memory, 30, 20, 2, 1);
    for (auto [x, y, w, h] : std::vector<std::array<int32_t, 4>>{{30, 0, 5, 5},
                                                                 {0, 20, 5, 5},
                                                                 {0, 0, 0, 5},
                                                                 {0, 0, 5, 0},
                                                                 {-5, 0, 5, 5},
                                                                 {0, 0, INT32_MIN, 5},
                                                                 {INT32_MIN, 0, INT32_MIN, 5},
                                                                 {INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX}}) {
        EXPECT_TRUE(image.call("CopyPicture", x, y, w, h).is_nil()) << x << ' ' << y << ' ' << w << ' ' << h;
        EXPECT_TRUE(image.call("CopyMask", x, y, w, h).is_nil());
        EXPECT_TRUE(image.call("CopyPictureWithMask", x, y, w, h).is_nil());
    }
}

TEST(CopyPicture, GivesNilForOtherLayoutsAndImagesThatAreNotUsable) {
    EXPECT_TRUE(Image(3, 3, 14).call("CopyPicture").is_nil());
    EXPECT_TRUE(Image(3, 3, 99).call("CopyPicture").is_nil());
    EXPECT_TRUE(Image(3, 0, 1).call("CopyPicture").is_nil());
}

TEST(CopyMask, ShowsAlphaAsItIs) {
    for (int32_t code : {2, 4, 9, 12, 13}) {
        const Image image = *make_image(Storage::memory, 6, 5, code, 4);
        const PlainImage expected = plain(image);
        const Value mask = image.call("CopyMask", 1, 2, 4, 3);
        for (int32_t v = 0; v < 3; ++v)
            for (int32_t u = 0; u < 4; ++u) {
                const int alpha = expected.get(1 + u, 2 + v, Channel::alpha);
                EXPECT_EQ(pixel_of(mask, u, v), (Pixel{alpha, alpha, alpha}));
            }
    }
}

TEST(CopyMask, WithoutAlphaThereIsNone) {
    for (int32_t code : {1, 3, 5, 11, 18, 14}) EXPECT_TRUE(Image(4, 4, code).call("CopyMask").is_nil()) << code;
}

TEST(CopyPictureWithMask, AttachesTheAlpha) {
    const Image image = *make_image(Storage::memory, 6, 5, 2, 4);
    const Value picture = image.call("CopyPictureWithMask");
    expect_shows(picture, plain(image), 0, 0, 6, 5);
    const Value mask = mask_of(picture);
    ASSERT_FALSE(mask.is_nil());
    EXPECT_EQ(pixel_of(mask, 3, 2).green, plain(image).get(3, 2, Channel::alpha));
}

TEST(CopyPictureWithMask, WithoutAlphaIsThePlainPicture) {
    const Image image = *make_image(Storage::memory, 6, 5, 1, 4);
    const Value picture = image.call("CopyPictureWithMask", 1, 1, 3, 3);
    expect_shows(picture, plain(image), 1, 1, 3, 3);
    EXPECT_TRUE(mask_of(picture).is_nil());
}

TEST(DebugPicture, IsOffByDefault) {
    const Image image = *make_image(Storage::memory, 6, 5, 1, 4);
    EXPECT_TRUE(image.get("DebugPicture").is_nil());
    image.set("DebugPictureEnabled", true);
    expect_shows(image.get("DebugPicture"), plain(image), 0, 0, 6, 5);
}

TEST(DebugPicture, ShowsAtMost512By512) {
    const Image large(1000, 800, 2), small(100, 100, 2);
    large.set("DebugPictureEnabled", true);
    small.set("DebugPictureEnabled", true);
    EXPECT_EQ(width_of(large.get("DebugPicture")), 512);
    EXPECT_EQ(height_of(large.get("DebugPicture")), 512);
    EXPECT_EQ(width_of(small.get("DebugPicture")), 100);
    EXPECT_EQ(height_of(small.get("DebugPicture")), 100);
    EXPECT_FALSE(mask_of(large.get("DebugPicture")).is_nil());
}

TEST(OnAPicture, IsThePicturesOwnPixels) {
    const Value picture = new_picture(5, 4, 32);
    const Image image(Object::make("PictureKZB", picture, false));
    EXPECT_TRUE(image.valid());
    EXPECT_EQ(image.format(), 5);
    EXPECT_FALSE(image.flag("HasAlpha"));
    EXPECT_EQ(image.width(), 5);
    EXPECT_EQ(image.height(), 4);
    EXPECT_EQ(image.get("Target").object(), picture.object());
    const GWorldPtr world = kzb_picture_world(picture_of(picture));
    EXPECT_EQ(image.integer("RowSize"), world->row_bytes);
    EXPECT_EQ(image.integer("TotalSize"), world->row_bytes * 4);
    Bytes row(static_cast<size_t>(world->row_bytes), 33);
    image.assign("Row", block_of(row), 2);
    EXPECT_EQ(static_cast<const uint8_t *>(world->base_address)[2 * world->row_bytes + 7], 33);
}

TEST(OnAPicture, TakesAlphaWhenAskedTo) {
    const Image image(Object::make("PictureKZB", new_picture(5, 4, 32), true));
    EXPECT_EQ(image.format(), 4);
    EXPECT_TRUE(image.flag("HasAlpha"));
    EXPECT_EQ(image.integer("AlphaOffset"), 0);
    EXPECT_EQ(image.integer("RedOffset"), 1);
}

TEST(OnAPicture, TheAlphaArgumentHasADefault) {
    EXPECT_EQ(Image(Object::make("PictureKZB", new_picture(5, 4, 32))).format(), 5);
}

TEST(OnAPicture, Of24BitsIsRgb) {
    const Image image(Object::make("PictureKZB", new_picture(5, 4, 24), true));
    EXPECT_TRUE(image.valid());
    EXPECT_EQ(image.format(), 1);
    EXPECT_EQ(image.integer("PixelSize"), 3);
    EXPECT_FALSE(image.flag("HasAlpha"));
}

TEST(OnAPicture, OfOtherDepthsIsNotValid) {
    for (int32_t depth : {8, 16}) {
        const Image image(Object::make("PictureKZB", new_picture(5, 4, depth), false));
        EXPECT_FALSE(image.valid());
        EXPECT_TRUE(image.get("Target").is_nil());
    }
}

TEST(OnAPicture, HoldsThePictureUntilItIsClosed) {
    Value picture = new_picture(5, 4, 32);
    const Image image(Object::make("PictureKZB", picture, true));
    picture = Value();
    EXPECT_EQ(image.row(3).size(), static_cast<size_t>(image.integer("RowSize")));
    EXPECT_EQ(kzb_live_count("Picture"), 1u);
    image.call("Close");
    EXPECT_EQ(kzb_live_count("Picture"), 0u);
    EXPECT_TRUE(image.get("Target").is_nil());
}

TEST(OnAPicture, ANilPictureLeavesItNotValid) {
    const Image image(Object::make("PictureKZB", nullptr, true));
    EXPECT_FALSE(image.valid());
}

} // namespace
} // namespace kzb::test
