// The box blur, once and repeated.

#include "filters/box_reference.h"
#include "filters/gray_lines.h"
#include "fixtures/filter_check.h"

#include <gtest/gtest.h>

#include <limits>

namespace kzb::test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

FilterCheck blur_of(double radius) {
    return {[=](const Image &source, const Value &dest) { return source.call("BoxBlurFilter", dest, radius); },
            [=](const PlainImage &source, const PlainImage &destination) { box_blur(source, destination, radius); },
            false, true};
}

Image random_image(int32_t width, int32_t height, int32_t format, uint32_t seed = 1) {
    return *make_image(Storage::memory, width, height, format, seed);
}

// Blurs new images and images in place, with nothing but the reference to tell what comes out.
void expect_stated_bytes(const Image &source, double radius) {
    check_one(blur_of(radius), source, Object(), "radius " + std::to_string(radius));
    check_one(blur_of(radius), source, source, "in place, radius " + std::to_string(radius));
}

TEST(BoxBlurFilter, ARadiusOfOneEverywhere) {
    check_filter(blur_of(1));
}

TEST(BoxBlurFilter, ALargerRadiusThanMostPicturesEverywhere) {
    check_filter(blur_of(12));
}

TEST(BoxBlurFilter, TheRadiusLosesItsFraction) {
    for (const Layout &of : layouts()) {
        const Image source = random_image(13, 9, of.code, 7);
        const Image two(source.call("BoxBlurFilter", nullptr, 2.0)), more(source.call("BoxBlurFilter", nullptr, 2.5));
        EXPECT_EQ(storage_of(two), storage_of(more)) << of.name;
        expect_stated_bytes(source, 2.5);
    }
}

TEST(BoxBlurFilter, ARadiusBelowOneCopiesTheChannels) {
    for (const Layout &of : layouts()) {
        const Image source = random_image(13, 9, of.code, 7);
        for (double radius : {0.0, 0.99}) {
            const Image copy(source.call("BoxBlurFilter", nullptr, radius));
            EXPECT_FALSE(copy.same(source));
            Snapshots snapshots;
            const PlainImage expected = PlainImage::in_memory(13, 9, of.code), from = snapshots.of(source);
            for (int32_t y = 0; y < 9; ++y)
                for (int32_t x = 0; x < 13; ++x)
                    for (Channel channel : from.channels()) expected.set(x, y, channel, from.get(x, y, channel));
            EXPECT_EQ(difference(copy, expected), "") << of.name << ", radius " << radius;
        }
    }
}

TEST(BoxBlurFilter, ANegativeOrNotFiniteRadiusCountsAsNone) {
    const Image source = random_image(9, 6, 2, 3);
    const Bytes copied = storage_of(Image(source.call("BoxBlurFilter", nullptr, 0.0)));
    for (double radius : {-0.5, -1.0, -7.0, -1e300, infinity, -infinity, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(storage_of(Image(source.call("BoxBlurFilter", nullptr, radius))), copied) << radius;
}

TEST(BoxBlurFilter, ARadiusAtTheEdgesOfThePicture) {
    for (int32_t radius = 1; radius <= 24; ++radius) expect_stated_bytes(random_image(11, 8, 2, 5), radius);
    for (int32_t radius = 1; radius <= 6; ++radius) {
        expect_stated_bytes(random_image(1, 5, 1, 5), radius);
        expect_stated_bytes(random_image(5, 1, 12, 5), radius);
        expect_stated_bytes(random_image(1, 1, 7, 5), radius);
        expect_stated_bytes(random_image(2, 2, 5, 5), radius);
    }
}

TEST(BoxBlurFilter, RadiiFarBeyondThePictureAreExact) {
    uint32_t seed = 1;
    for (double radius : {4095.0, 4096.0, 5000.0, 8e6, 9e6, 1e9, 2147483647.0, 4294967296.0, 1e12, 1e15, 1e300})
        for (int32_t code : {2, 5, 11}) expect_stated_bytes(random_image(9, 7, code, seed++), radius);
    // Nothing is lost to rounding where all sums are multiples of the divisor, or fall short of one by little.
    for (double radius : {4095.0, 5000.0, 1e9, 1e300}) {
        const Image white(9, 7, 11);
        fill_storage(white, Bytes(static_cast<size_t>(white.integer("TotalSize")), 255));
        EXPECT_EQ(Image(white.call("BoxBlurFilter", nullptr, radius)).row(3)[4], 255) << radius;
        EXPECT_EQ(column_of(Image(gray_column({255, 255, 254, 255, 255}).call("BoxBlurFilter", nullptr, radius))),
                  Bytes(5, 254))
            << radius;
    }
}

TEST(BoxBlurFilter, AHugeRadiusEverywhere) {
    check_filter(blur_of(1e9));
}

TEST(BoxBlurFilter, RowsOfAFileThatLieBlocksApart) {
    const Image tall = make_tall_image(3, 2, 7);
    check_one(blur_of(3000), tall, Object(), "from a file");
    check_one(blur_of(3000), tall, tall, "a file onto itself");
    const Image upper(tall.call("ClipImage", 1, 0, 2, 6000)), lower(tall.call("ClipImage", 0, 2000, 2, 6000));
    check_one(blur_of(2500), upper, lower, "between two views of a file");
    check_one(blur_of(2500), lower, upper, "between two views of a file");
}

TEST(BoxBlurFilter, AHugeRadiusTakesNoLongerThanASmallOne) {
    // Would not end in a lifetime if rows or columns were counted out.
    const Image source = random_image(300, 200, 2, 3);
    for (double radius : {1e9, 1e300}) EXPECT_TRUE(Image(source.call("BoxBlurFilter", nullptr, radius)).valid());
}

TEST(BoxBlurFilter, TheEdgesGoOnWithTheFirstAndLastRowAndColumn) {
    EXPECT_EQ(column_of(Image(gray_column({90, 0, 0, 30}).call("BoxBlurFilter", nullptr, 1.0))),
              (Bytes{60, 30, 10, 20}));
    EXPECT_EQ(row_of(Image(gray_row({90, 0, 0, 30}).call("BoxBlurFilter", nullptr, 1.0))), (Bytes{60, 30, 10, 20}));
}

TEST(BoxBlurFilter, InPlaceItReadsRowsThatAreAlreadyBlurred) {
    // Row 0 becomes 60 and is subtracted as 60 from the sum of row 1, then again from that of row 2.
    const Image image = gray_column({90, 0, 0, 30});
    image.call("BoxBlurFilter", image, 1.0);
    // 180 / 3; (180 - 60 + 0) / 3; (120 - 60 + 30) / 3; (90 - 40 + 30) / 3
    EXPECT_EQ(column_of(image), (Bytes{60, 40, 30, 26}));
}

TEST(BoxBlurFilter, ASumThatLeavesTheTableInPlaceGivesZero) {
    const Image image = gray_column({255, 0, 255, 255, 255, 255, 255});
    Snapshots snapshots;
    const PlainImage expected = snapshots.of(image);
    EXPECT_TRUE(box_blur(expected, expected, 1).beyond);
    image.call("BoxBlurFilter", image, 1.0);
    // The sum of row 5 is 776; the table ends at 3 * 256.
    EXPECT_EQ(column_of(image), (Bytes{170, 198, 226, 245, 255, 0, expected.get(0, 6, Channel::gray)}));
    EXPECT_EQ(difference(image, expected), "");
}

TEST(BoxBlurFilter, SumsBelowZeroInPlaceGiveZero) {
    // The means subtracted late overshoot after a bright start.
    Bytes values(500);
    std::fill_n(values.begin(), 51, uint8_t{255});
    const Image image = gray_column(values);
    Snapshots snapshots;
    const PlainImage expected = snapshots.of(image);
    EXPECT_TRUE(box_blur(expected, expected, 50).below);
    image.call("BoxBlurFilter", image, 50.0);
    EXPECT_EQ(difference(image, expected), "");
}

TEST(BoxBlurFilter, TheRowBufferIsWalkedInTheSourcesSteps) {
    // Four bytes a pixel through three: the walk leaves the row's 64 bytes and the zeros behind them.
    for (auto [from, to] : {std::pair(2, 1), std::pair(7, 1), std::pair(4, 6), std::pair(1, 2), std::pair(12, 11)}) {
        for (int32_t width : {21, 63, 64, 65}) {
            const Image source = random_image(width, 4, from, 3);
            check_one(blur_of(1), source, random_image(width, 4, to, 4), "to another pixel size");
            check_one(blur_of(1), source, random_image(width / 3, 4, to, 4), "to a third of the width");
        }
    }
}

TEST(BoxBlurFilter, InPlaceMillionsOfRowsDriveNoSumOutOfItsNumbers) {
    constexpr int32_t rows = (1 << 22) + 1;
    Bytes bytes = random_bytes(rows, 9);
    const Image image(Object::make("PictureKZB", block_at(bytes.data()), 1, rows, 11, 1));
    Snapshots snapshots;
    PlainImage expected = snapshots.of(image);
    expected.storage = std::make_shared<Bytes>(bytes);
    box_blur(expected, expected, 1);
    image.call("BoxBlurFilter", image, 1.0);
    EXPECT_TRUE(bytes == *expected.storage);
}

TEST(BoxBlurFilter, RowsThatOverlapKeepTheStatedOrder) {
    // 10 pixels of 3 bytes in rows 17 bytes apart: each row ends in the next one.
    for (bool in_place : {false, true}) {
        Bytes bytes = random_bytes(17 * 6 + 64, 9);
        const Bytes before = bytes;
        const Image image(Object::make("PictureKZB", block_at(bytes.data()), 10, 6, 1, 17));
        const Image other = random_image(10, 6, 1, 4);
        Snapshots snapshots;
        PlainImage expected = snapshots.of(image);
        expected.storage = std::make_shared<Bytes>(before);
        const PlainImage plain_source = in_place ? expected : snapshots.of(other);
        box_blur(plain_source, expected, 1);
        (in_place ? image : other).call("BoxBlurFilter", image, 1.0);
        EXPECT_EQ(bytes, *expected.storage) << in_place;
        EXPECT_NE(bytes, before);
    }
}

TEST(BoxBlurFilter, TwoImagesOverTheSameBytesKeepTheStatedOrder) {
    Bytes bytes = random_bytes(40 * 12, 9);
    const Value block = block_at(bytes.data());
    const Image source(Object::make("PictureKZB", block, 9, 11, 2, 40));
    for (auto [code, row_size] : {std::pair(2, 40), std::pair(7, 40), std::pair(1, 40), std::pair(2, 43)}) {
        const Image destination(Object::make("PictureKZB", block, 9, 11, code, row_size));
        fill_storage(source, random_bytes(40 * 11, 5));
        Snapshots snapshots;
        const PlainImage from = snapshots.of(source), to = snapshots.of(destination);
        from.storage->assign(bytes.begin(), bytes.end());
        box_blur(from, to, 1);
        source.call("BoxBlurFilter", destination, 1.0);
        EXPECT_EQ(bytes, *to.storage) << code << ' ' << row_size;
    }
}

TEST(BoxBlurFilter, ADestinationWithoutTheChannelsKeepsTheLastOneWritten) {
    // Pixels of the source's size, with every colour's offset 0.
    for (auto [from, to] : {std::pair(2, 18), std::pair(4, 21), std::pair(9, 20), std::pair(6, 16)})
        check_one(blur_of(1), random_image(17, 9, from, 3), random_image(17, 9, to, 4), "to a single channel");
}

TEST(BoxBlurFilter, GivesNilForAnImageThatIsNotUsable) {
    const Image invalid(3, 3, 99), flat(3, 0, 1), source(3, 3, 1), closed(3, 3, 1);
    closed.call("Close");
    EXPECT_TRUE(invalid.call("BoxBlurFilter", nullptr, 1.0).is_nil());
    EXPECT_TRUE(flat.call("BoxBlurFilter", nullptr, 1.0).is_nil());
    EXPECT_TRUE(closed.call("BoxBlurFilter", nullptr, 1.0).is_nil());
    EXPECT_TRUE(source.call("BoxBlurFilter", invalid, 1.0).is_nil());
    EXPECT_TRUE(source.call("BoxBlurFilter", flat, 1.0).is_nil());
    EXPECT_TRUE(source.call("BoxBlurFilter", closed, 1.0).is_nil());
}

TEST(BoxBlurFilter, ALayoutNeitherGrayNorColourLeavesTheDestinationAlone) {
    const Image source(3, 2, 14), destination = random_image(3, 2, 2, 5);
    const Bytes before = storage_of(destination);
    EXPECT_TRUE(destination.same(Object(source.call("BoxBlurFilter", destination, 1.0))));
    EXPECT_EQ(storage_of(destination), before);
}

TEST(BoxBlurFilter, AnImageWithoutColumnsLeavesTheDestinationAlone) {
    const Image source(0, 2, 2), destination = random_image(3, 2, 2, 5);
    const Bytes before = storage_of(destination);
    const Value result = source.call("BoxBlurFilter", destination, 1.0);
    EXPECT_EQ(storage_of(destination), before);
    EXPECT_EQ(result.is_nil(), source.call("SolarizeFilter", destination).is_nil());
}

// The blur repeated, on models: what the last of `iterations` images holds.
void repeated(const PlainImage &source, const PlainImage &destination, double radius, int iterations) {
    PlainImage from = source;
    for (int i = 1; i < iterations; ++i) {
        const PlainImage to = PlainImage::in_memory(source.width, source.height, source.format);
        box_blur(from, to, radius);
        from = to;
    }
    box_blur(from, destination, radius);
}

TEST(RepeatedBoxBlur, ThreePassesEverywhere) {
    for (const Layout &of : layouts()) {
        for (double radius : {0.99, 1.0, 2.5, 40.0, 1e300}) {
            const Image source = random_image(17, 9, of.code, 11);
            check_one(
                {[=](const Image &image, const Value &) { return image.call("BoxBlurFilter", nullptr, radius, 3); },
                 [=](const PlainImage &from, const PlainImage &to) { repeated(from, to, radius, 3); }},
                source, Object(), "radius " + std::to_string(radius));
        }
    }
}

TEST(RepeatedBoxBlur, AnyNumberOfPassesOfLargerImages) {
    for (int32_t code : {1, 2, 3, 5, 11, 12}) {
        for (double radius : {0.0, 1.0, 9.0, 70.0, 127.0, 128.0}) {
            for (int32_t passes : {1, 2, 3, 4, 5, 7}) {
                const Image source = random_image(83, 41, code, 11);
                const FilterCheck check = {
                    [=](const Image &image, const Value &dest) {
                        return image.call("BoxBlurFilter", dest, radius, passes);
                    },
                    [=](const PlainImage &from, const PlainImage &to) { repeated(from, to, radius, passes); }};
                check_one(check, source, Object(), "radius " + std::to_string(radius));
            }
        }
    }
}

TEST(RepeatedBoxBlur, UserCodeBetweenThePassesMeetsTheirImages) {
    const Image source = random_image(40, 30, 2, 11);
    const Bytes expected = storage_of(Image(source.call("BoxBlurFilter", nullptr, 2.0, 3)));
    // A factory that supplies nothing might supply any of the images.
    source.set("Factory", Object::make("PictureFactoryKZB"));
    EXPECT_EQ(storage_of(Image(source.call("BoxBlurFilter", nullptr, 2.0, 3))), expected);
    source.set("Factory", nullptr);
    source.set("YieldTicks", 1);
    EXPECT_EQ(storage_of(Image(source.call("BoxBlurFilter", nullptr, 2.0, 3))), expected);
}

TEST(RepeatedBoxBlur, ThePassedDestinationReceivesTheFirstPassAlone) {
    for (const Layout &of : layouts()) {
        const Image source = random_image(17, 9, of.code, 11), destination = random_image(17, 9, of.code, 12);
        Snapshots snapshots;
        const PlainImage from = snapshots.of(source), first = snapshots.of(destination);
        const PlainImage third = PlainImage::in_memory(17, 9, of.code);
        box_blur(from, first, 1);
        repeated(first, third, 1, 2);
        const Image result(source.call("BoxBlurFilter", destination, 1.0, 3));
        EXPECT_FALSE(result.same(destination));
        EXPECT_EQ(difference(destination, first), "") << of.name;
        EXPECT_EQ(difference(result, third), "") << of.name;
        EXPECT_EQ(difference(source, from), "") << of.name;
    }
}

TEST(BoxBlurFilter, WritesNothingForADestinationWithoutColumnsWhereverThatBegins) {
    const Image source = random_image(7, 6, 2, 3);
    const Image parent = random_image(7, 6, 2, 4);
    const Bytes before = storage_of(parent);
    for (const int32_t x : {1 << 20, 1 << 29, 3 << 28}) {
        const Image destination(parent.call("ClipImage", x, 0, 5, 6));
        ASSERT_EQ(destination.width(), 0);
        EXPECT_TRUE(destination.same(Object(source.call("BoxBlurFilter", destination, 1.0))));
        EXPECT_EQ(storage_of(parent), before) << x;
    }
}

TEST(RepeatedBoxBlur, OnePassGivesTheDestination) {
    const Image source = random_image(5, 4, 2, 3), destination(5, 4, 2);
    EXPECT_TRUE(destination.same(Object(source.call("BoxBlurFilter", destination, 1.0, 1))));
    EXPECT_EQ(storage_of(destination), storage_of(Image(source.call("BoxBlurFilter", nullptr, 1.0))));
}

TEST(RepeatedBoxBlur, InPlaceTheImageHoldsTheFirstPass) {
    const Image source = random_image(9, 7, 2, 3);
    Snapshots snapshots;
    const PlainImage from = snapshots.of(source), third = PlainImage::in_memory(9, 7, 2);
    box_blur(from, from, 1);
    repeated(from, third, 1, 2);
    const Image result(source.call("BoxBlurFilter", source, 1.0, 3));
    EXPECT_FALSE(result.same(source));
    EXPECT_EQ(difference(source, from), "");
    EXPECT_EQ(difference(result, third), "");
}

TEST(RepeatedBoxBlur, BelowOneIterationGivesTheImageItself) {
    const Image source = random_image(5, 4, 2, 3), destination = random_image(5, 4, 2, 4), invalid(3, 3, 99);
    const Bytes before = storage_of(destination);
    for (int32_t iterations : {0, -1, INT32_MIN}) {
        EXPECT_TRUE(source.same(Object(source.call("BoxBlurFilter", destination, 1.0, iterations))));
        EXPECT_TRUE(source.same(Object(source.call("BoxBlurFilter", nullptr, 1.0, iterations))));
        EXPECT_TRUE(invalid.same(Object(invalid.call("BoxBlurFilter", nullptr, 1.0, iterations))));
    }
    EXPECT_EQ(storage_of(destination), before);
}

TEST(RepeatedBoxBlur, GivesNilWhenTheFirstPassDoes) {
    const Image invalid(3, 3, 99), source(3, 3, 1);
    EXPECT_TRUE(invalid.call("BoxBlurFilter", nullptr, 1.0, 3).is_nil());
    EXPECT_TRUE(source.call("BoxBlurFilter", invalid, 1.0, 3).is_nil());
}

} // namespace
} // namespace kzb::test
