// Host pictures drawn into channels.

#include "fixtures/plain_rectangle.h"
#include "fixtures/storages.h"

#include <gtest/gtest.h>

namespace kzb::test {
namespace {

struct Drawing {
    int32_t x, y, w, h, source_x, source_y;
};

GWorldPtr world_of(const Value &picture) {
    return kzb_picture_world(reinterpret_cast<KZBPicture>(picture.object()));
}

Value blank_picture(int32_t width, int32_t height, int32_t depth) {
    return Value::adopt(reinterpret_cast<KZBObject>(kzb_picture_new(width, height, depth)));
}

// A picture of random bytes.
Value make_picture(int32_t width, int32_t height, int32_t depth, uint32_t seed) {
    Value picture = blank_picture(width, height, depth);
    const GWorldPtr world = world_of(picture);
    const Bytes bytes = random_bytes(static_cast<size_t>(world->row_bytes * world->height), seed);
    std::copy(bytes.begin(), bytes.end(), static_cast<uint8_t *>(world->base_address));
    return picture;
}

// A copy of a picture of depth 8, 24 or 32 as a colour image.
PlainImage plain_picture(const Value &picture) {
    const GWorldPtr world = world_of(picture);
    PlainImage plain;
    plain.width = static_cast<int32_t>(world->width);
    plain.height = static_cast<int32_t>(world->height);
    plain.pixel_size = static_cast<int32_t>(world->depth / 8);
    plain.row_size = static_cast<int32_t>(world->row_bytes);
    const int32_t first = plain.pixel_size == 4 ? 1 : 0;
    const int32_t apart = plain.pixel_size == 1 ? 0 : 1;
    plain.offsets = {first, first + apart, first + 2 * apart, 0, 0};
    const auto *base = static_cast<const uint8_t *>(world->base_address);
    plain.storage = std::make_shared<Bytes>(base, base + world->row_bytes * world->height);
    return plain;
}

struct Form {
    const char *method;
    bool to_gray;
    Channel read;
};

constexpr Form forms[] = {{"DrawPictureRGB", false, Channel::red},
                          {"DrawPictureRedToGrayChannel", true, Channel::red},
                          {"DrawPictureGreenToGrayChannel", true, Channel::green},
                          {"DrawPictureBlueToGrayChannel", true, Channel::blue}};

void draw_plainly(const PlainImage &image, const PlainImage &picture, const Form &form, const Drawing &d) {
    if (form.to_gray ? !image.is_gray : !image.is_rgb) return;
    const PlainAxis columns = plain_cut(image.width, picture.width, d.x, d.w, d.source_x);
    const PlainAxis rows = plain_cut(image.height, picture.height, d.y, d.h, d.source_y);
    for (int64_t i = 0; i < rows.length; ++i)
        for (int64_t k = 0; k < columns.length; ++k) {
            const auto read = [&](Channel channel) {
                return picture.get(columns.source + k, rows.source + i, channel);
            };
            const auto write = [&](Channel channel, uint8_t value) {
                image.set(columns.dest + k, rows.dest + i, channel, value);
            };
            if (form.to_gray)
                write(Channel::gray, read(form.read));
            else
                for (Channel channel : {Channel::red, Channel::green, Channel::blue}) write(channel, read(channel));
        }
}

void call_draw(const Image &image, const Value &picture, const Form &form, const Drawing &d) {
    image.call(form.method, picture, d.x, d.y, d.w, d.h, d.source_x, d.source_y);
}

void expect_drawn(const Image &image, const Value &picture, const std::vector<Drawing> &drawings) {
    Snapshots snapshots;
    const PlainImage plain = snapshots.of(image);
    const PlainImage read = plain_picture(picture);
    for (const Form &form : forms) {
        for (const Drawing &d : drawings) {
            SCOPED_TRACE(std::string(form.method) + " " + std::to_string(d.x) + ", " + std::to_string(d.y) + ", " +
                         std::to_string(d.w) + ", " + std::to_string(d.h) + ", " + std::to_string(d.source_x) + ", " +
                         std::to_string(d.source_y));
            call_draw(image, picture, form, d);
            draw_plainly(plain, read, form, d);
            ASSERT_EQ(difference(image, plain), "");
        }
    }
}

TEST(DrawPicture, WritesItsChannelsInEveryLayoutAndStorage) {
    uint32_t seed = 1;
    std::vector<int32_t> codes = {14};
    for (const Layout &of : layouts()) codes.push_back(of.code);
    const Value picture = make_picture(9, 7, 32, 1);
    for (int32_t code : codes)
        for (Storage storage : every_storage) {
            const auto image = make_image(storage, 8, 6, code, ++seed);
            if (!image) continue;
            SCOPED_TRACE(std::string(layout(code).name) + " in " + name_of(storage));
            expect_drawn(*image, picture, {{1, 1, 5, 3, 2, 3}, {0, 0, 100, 100, 0, 0}});
        }
    const Image tall = make_tall_image(9, 4, 3);
    expect_drawn(tall, make_picture(5, tall_height, 32, 5), {{2, 1, 9, tall_height, 0, 0}});
}

TEST(DrawPicture, CutsTheRectangleInItsOrder) {
    const Value picture = make_picture(8, 10, 32, 1);
    for (int32_t code : {5, 6, 12}) {
        const Image image = *make_image(Storage::block, 12, 9, code, 2);
        std::vector<Drawing> drawings = {
            {10, 8, 5, 5, -2, 0}, {3, 8, 5, 5, 0, -2},  {-3, 0, 10, 10, 0, 0}, {0, -3, 10, 10, 0, 0},
            {6, 6, -4, -3, 1, 1}, {0, 0, 50, 50, 7, 9}, {0, 0, 50, 50, 8, 0},  {0, 0, 50, 50, 0, 10},
            {12, 0, 5, 5, 0, 0},  {0, 9, 5, 5, 0, 0},   {13, 0, 5, 5, 0, 0},   {1, 1, 0, 5, 0, 0},
            {1, 1, 5, 0, 0, 0},   {-10, 1, 5, 2, 0, 0}, {1, -10, 2, 5, 0, 0},
        };
        const int32_t extremes[] = {INT32_MIN, INT32_MIN + 1, -1, 0, 1, INT32_MAX};
        for (int32_t dest : extremes)
            for (int32_t length : extremes)
                for (int32_t from : extremes) {
                    drawings.push_back({dest, 1, length, 2, from, 1});
                    drawings.push_back({1, dest, 2, length, 1, from});
                }
        expect_drawn(image, picture, drawings);
    }
}

TEST(DrawPicture, FiveArgumentsDrawFromThePicturesCorner) {
    const Value picture = make_picture(6, 5, 32, 3);
    for (const Form &form : forms)
        for (int32_t code : {2, 13}) {
            const Image five = *make_image(Storage::memory, 9, 9, code, 4);
            const Image seven = *make_image(Storage::memory, 9, 9, code, 4);
            five.call(form.method, picture, 2, -1, 10, 4);
            seven.call(form.method, picture, 2, -1, 10, 4, 0, 0);
            EXPECT_EQ(storage_of(five), storage_of(seven));
            const bool fits = form.to_gray == (code == 13);
            EXPECT_EQ(storage_of(five) == storage_of(*make_image(Storage::memory, 9, 9, code, 4)), !fits);
        }
}

// The columns of row 0 of a gray image that a drawing of a picture of white changed.
std::vector<int32_t> columns_drawn(const Value &picture, const Drawing &d) {
    const Image image(40, 3, 11);
    call_draw(image, picture, forms[2], d);
    std::vector<int32_t> columns;
    const Bytes row = image.row(0);
    for (int32_t x = 0; x < 40; ++x)
        if (row[static_cast<size_t>(x)] != 0) columns.push_back(x);
    return columns;
}

std::vector<int32_t> range(int32_t first, int32_t last) {
    std::vector<int32_t> values;
    for (int32_t value = first; value <= last; ++value) values.push_back(value);
    return values;
}

TEST(DrawPicture, TakesNoMoreThanThePictureHas) {
    const Value picture = blank_picture(10, 10, 32);
    EXPECT_EQ(columns_drawn(picture, {5, 0, 30, 1, 0, 0}), range(5, 14));
    EXPECT_EQ(columns_drawn(picture, {5, 0, 30, 1, 4, 0}), range(5, 10));
}

TEST(DrawPicture, BeyondTheRightEdgeDrawsNothing) {
    EXPECT_EQ(columns_drawn(blank_picture(10, 10, 32), {40, 0, 5, 1, 0, 0}), range(0, -1));
    EXPECT_EQ(columns_drawn(blank_picture(10, 10, 32), {41, 0, 5, 1, 0, 0}), range(0, -1));
}

TEST(DrawPicture, ANegativeWidthReachesBack) {
    EXPECT_EQ(columns_drawn(blank_picture(10, 10, 32), {20, 0, -6, 1, 0, 0}), range(14, 19));
}

TEST(DrawPicture, ANegativeSourceMovesTheDestinationBackAndShortensIt) {
    const Value picture = make_picture(15, 2, 32, 7);
    EXPECT_EQ(columns_drawn(blank_picture(15, 2, 32), {10, 0, 20, 1, -5, 0}), range(5, 19));
    const Image image(40, 2, 11);
    image.call("DrawPictureRedToGrayChannel", picture, 10, 0, 20, 1, -5, 0);
    const auto *pixels = static_cast<const uint8_t *>(world_of(picture)->base_address);
    for (size_t k = 0; k < 15; ++k) EXPECT_EQ(image.row(0)[5 + k], pixels[4 * k + 1]);
}

TEST(DrawPicture, NothingIsScaled) {
    const Image image(300, 300, 2);
    image.call("DrawPictureRGB", blank_picture(100, 100, 32), 0, 0, 200, 200);
    for (int32_t y : {0, 99, 100, 199}) {
        const Bytes row = image.row(y);
        for (size_t x : {0u, 99u, 100u, 199u}) EXPECT_EQ(row[4 * x], x < 100 && y < 100 ? 255 : 0) << x << ' ' << y;
        EXPECT_EQ(row[3], 0) << "alpha is left alone";
    }
}

TEST(DrawPicture, NeedsTheChannelsThatItWrites) {
    const Value picture = blank_picture(4, 4, 32);
    const Image colours(4, 4, 2), gray(4, 4, 11);
    for (const Form &form : forms) call_draw(form.to_gray ? colours : gray, picture, form, {0, 0, 4, 4, 0, 0});
    // The colours without alpha carry no flags of their channels.
    const Image unflagged(colours.call("RGBChannels"));
    call_draw(unflagged, picture, forms[0], {0, 0, 4, 4, 0, 0});
    EXPECT_EQ(storage_of(colours), Bytes(4 * 64));
    EXPECT_EQ(storage_of(gray), Bytes(4 * 64));
}

TEST(DrawPicture, ReadsEveryDepth) {
    for (int32_t depth : {8, 24, 32}) {
        SCOPED_TRACE(depth);
        for (int32_t code : {2, 6, 11})
            expect_drawn(*make_image(Storage::memory, 12, 9, code, 2), make_picture(11, 8, depth, 5),
                         {{1, 1, 20, 20, 0, 0}, {0, 2, 5, 5, 3, 1}});
    }
    const Value picture = blank_picture(2, 1, 16);
    *static_cast<uint16_t *>(world_of(picture)->base_address) = 31 << 10 | 0 << 5 | 31;
    const Image image(2, 1, 1);
    image.call("DrawPictureRGB", picture, 0, 0, 2, 1);
    Bytes row = image.row(0);
    row.resize(6);
    EXPECT_EQ(row, (Bytes{255, 0, 255, 255, 255, 255}));
    EXPECT_EQ(kzb_live_count("Picture"), 1u) << "the copy for reading has gone";
}

TEST(DrawPicture, OntoItselfReadsEachByteAfterTheEarlierOnesWereWritten) {
    for (const bool alpha : {false, true})
        for (auto [dx, dy] : {std::pair(0, 0), {1, 0}, {-1, 0}, {2, 1}, {0, 1}, {-1, -1}}) {
            const Value picture = make_picture(9, 6, 32, 3);
            const Image image(Object::make("PictureKZB", picture, alpha));
            const PlainImage plain = Snapshots().of(image);
            PlainImage read = plain_picture(picture);
            read.storage = plain.storage;
            const Drawing d = {2 + dx, 2 + dy, 6, 3, 2, 2};
            call_draw(image, picture, forms[0], d);
            draw_plainly(plain, read, forms[0], d);
            EXPECT_EQ(difference(image, plain), "") << dx << ' ' << dy;
        }
}

TEST(DrawPicture, LeavesThePictureUnlocked) {
    const Value picture = blank_picture(4, 4, 32);
    const Image image(4, 4, 1);
    for (const Drawing &d : {Drawing{0, 0, 4, 4, 0, 0}, Drawing{9, 9, 4, 4, 0, 0}})
        call_draw(image, picture, forms[0], d);
    EXPECT_EQ(world_of(picture)->lock_count, 0);
}

TEST(DrawPicture, ANilPictureAndImagesThatAreNotUsableDoNothing) {
    const Value picture = blank_picture(4, 4, 32);
    const Image closed(4, 4, 1);
    closed.call("Close");
    for (const Form &form : forms) {
        for (const Image &image : {Image(Object::make("PictureKZB")), Image(4, 4, 0), Image(0, 4, 1), Image(4, 0, 1),
                                   Image(4, 4, 14), closed})
            call_draw(image, picture, form, {0, 0, 4, 4, 0, 0});
        const Image image(4, 4, form.to_gray ? 11 : 1);
        call_draw(image, nullptr, form, {0, 0, 4, 4, 0, 0});
        EXPECT_EQ(storage_of(image), Bytes(4 * 64));
    }
}

} // namespace
} // namespace kzb::test
