// The blur by the fraction of a pixel.

#include "filters/gray_lines.h"
#include "filters/plain_fractional_blur.h"
#include "fixtures/filter_check.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

namespace kzb::test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

FilterCheck blur_of(double radius) {
    return {
        [=](const Image &source, const Value &dest) { return source.call("BoxBlurFractionalFilter", dest, radius); },
        [=](const PlainImage &source, const PlainImage &destination) { fractional_blur(source, destination, radius); },
        false, true};
}

Image random_image(int32_t width, int32_t height, int32_t format, uint32_t seed = 1) {
    return *make_image(Storage::memory, width, height, format, seed);
}

Bytes blurred_row(const Bytes &values, double radius) {
    return row_of(Image(gray_row(values).call("BoxBlurFractionalFilter", nullptr, radius)));
}

Bytes blurred_column(const Bytes &values, double radius) {
    return column_of(Image(gray_column(values).call("BoxBlurFractionalFilter", nullptr, radius)));
}

TEST(BoxBlurFractionalFilter, HalfAPixelEverywhere) {
    check_filter(blur_of(0.5));
}

TEST(BoxBlurFractionalFilter, AFractionThatIsNoBinaryOneEverywhere) {
    check_filter(blur_of(4.3));
}

TEST(BoxBlurFractionalFilter, HalfAPixelSpreadsARowButNotToItsEnd) {
    EXPECT_EQ(blurred_row({0, 255, 0}, 0.5), (Bytes{63, 127, 0}));
}

TEST(BoxBlurFractionalFilter, TheLastColumnIgnoresItsNeighbourTheFirstDoesNot) {
    EXPECT_EQ(blurred_row({200, 0, 0, 0, 200}, 0.5), (Bytes{150, 50, 0, 50, 200}));
}

TEST(BoxBlurFractionalFilter, TheFirstRowIgnoresItsNeighbourTheLastDoesNot) {
    EXPECT_EQ(blurred_column({200, 0, 0, 0, 200}, 0.5), (Bytes{200, 50, 0, 50, 150}));
    EXPECT_EQ(blurred_column({0, 255, 0}, 0.5), (Bytes{0, 127, 63}));
}

TEST(BoxBlurFractionalFilter, OneRowFollowsTheFirstAndOneColumnTheLast) {
    EXPECT_EQ(blurred_row({200}, 0.5), (Bytes{200}));
    EXPECT_EQ(blurred_row({200, 100}, 0.5), (Bytes{175, 100}));
    EXPECT_EQ(blurred_column({200, 100}, 0.5), (Bytes{200, 125}));
}

TEST(BoxBlurFractionalFilter, AWholeNumberCopiesTheChannels) {
    for (const Layout &of : layouts()) {
        const Image source = random_image(13, 9, of.code, 7);
        const Bytes copied = storage_of(Image(source.call("BoxBlurFilter", nullptr, 0.0)));
        for (double radius : {0.0, 1.0, 3.0, 1e9, 1e300}) {
            const Image copy(source.call("BoxBlurFractionalFilter", nullptr, radius));
            EXPECT_FALSE(copy.same(source));
            EXPECT_EQ(storage_of(copy), copied) << of.name << ", radius " << radius;
        }
    }
}

TEST(BoxBlurFractionalFilter, OnlyTheFractionActs) {
    const Image source = random_image(13, 9, 2, 7);
    const Bytes quarter = storage_of(Image(source.call("BoxBlurFractionalFilter", nullptr, 0.25)));
    for (double radius : {2.25, 1000000.25})
        EXPECT_EQ(storage_of(Image(source.call("BoxBlurFractionalFilter", nullptr, radius))), quarter) << radius;
    EXPECT_NE(storage_of(Image(source.call("BoxBlurFractionalFilter", nullptr, 0.75))), quarter);
    for (double radius : {0.3, 2.3, 0.999999, 1e-9})
        check_one(blur_of(radius), source, Object(), "radius " + std::to_string(radius));
}

TEST(BoxBlurFractionalFilter, ANegativeRadiusActsByWhatItExceedsTheWholeNumberBelow) {
    const Image source = random_image(9, 6, 2, 3);
    for (const auto &[negative, positive] : {std::pair(-0.5, 0.5), std::pair(-2.75, 0.25), std::pair(-7.0, 0.0)}) {
        const Image blurred(source.call("BoxBlurFractionalFilter", nullptr, positive));
        EXPECT_EQ(storage_of(Image(source.call("BoxBlurFractionalFilter", nullptr, negative))), storage_of(blurred))
            << negative;
    }
    for (double radius : {-0.3, -1e-300, -1e300})
        check_one(blur_of(radius), source, Object(), "radius " + std::to_string(radius));
}

TEST(BoxBlurFractionalFilter, ARadiusThatIsNotFiniteCountsAsNone) {
    const Image source = random_image(9, 6, 2, 3);
    const Bytes copied = storage_of(Image(source.call("BoxBlurFractionalFilter", nullptr, 0.0)));
    for (double radius : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(storage_of(Image(source.call("BoxBlurFractionalFilter", nullptr, radius))), copied) << radius;
}

TEST(BoxBlurFractionalFilter, InPlaceGivesTheSameAsIntoANewImage) {
    for (const Layout &of : layouts()) {
        const Image source = random_image(13, 9, of.code, 7), same(13, 9, of.code);
        fill_storage(same, storage_of(source));
        const Image made(source.call("BoxBlurFractionalFilter", nullptr, 0.4));
        same.call("BoxBlurFractionalFilter", same, 0.4);
        for (int32_t y = 0; y < 9; ++y)
            for (int32_t x = 0; x < 13; ++x)
                for (Channel channel : every_channel)
                    if (const int32_t offset = of.offset(channel); offset >= 0) {
                        const auto at = static_cast<size_t>(x * of.pixel_size + offset);
                        ASSERT_EQ(same.row(y)[at], made.row(y)[at]) << of.name << ' ' << x << ' ' << y;
                    }
    }
}

TEST(BoxBlurFractionalFilter, TheRowBuffersHoldTheLongerRow) {
    for (auto [from, to] : {std::pair(2, 1), std::pair(1, 2), std::pair(7, 6), std::pair(12, 11), std::pair(11, 12)}) {
        for (int32_t width : {21, 63, 64, 65}) {
            const Image source = random_image(width, 4, from, 3);
            check_one(blur_of(0.5), source, random_image(width, 4, to, 4), "to another pixel size");
            check_one(blur_of(0.5), source, random_image(width / 3, 4, to, 4), "to a third of the width");
            check_one(blur_of(0.5), source, random_image(width * 3, 4, to, 4), "to three times the width");
        }
    }
}

TEST(BoxBlurFractionalFilter, RowsThatOverlapKeepTheStatedOrder) {
    // 10 pixels of 3 bytes in rows 17 bytes apart: each row ends in the next one.
    for (bool in_place : {false, true}) {
        Bytes bytes = random_bytes(17 * 6 + 64, 9);
        const Bytes before = bytes;
        const Image image(Object::make("PictureKZB", block_at(bytes.data()), 10, 6, 1, 17));
        const Image other = random_image(10, 6, 1, 4);
        Snapshots snapshots;
        PlainImage expected = snapshots.of(image);
        expected.storage = std::make_shared<Bytes>(before);
        fractional_blur(in_place ? expected : snapshots.of(other), expected, 0.5);
        (in_place ? image : other).call("BoxBlurFractionalFilter", image, 0.5);
        EXPECT_EQ(bytes, *expected.storage) << in_place;
        EXPECT_NE(bytes, before);
    }
}

TEST(BoxBlurFractionalFilter, ADestinationWithoutTheChannelsKeepsTheLastOneWritten) {
    for (auto [from, to] : {std::pair(2, 18), std::pair(4, 21), std::pair(9, 20), std::pair(6, 16)})
        check_one(blur_of(0.5), random_image(17, 9, from, 3), random_image(17, 9, to, 4), "to a single channel");
}

TEST(BoxBlurFractionalFilter, GivesNilForAnImageThatIsNotUsable) {
    const Image invalid(3, 3, 99), flat(3, 0, 1), source(3, 3, 1), closed(3, 3, 1);
    closed.call("Close");
    EXPECT_TRUE(invalid.call("BoxBlurFractionalFilter", nullptr, 0.5).is_nil());
    EXPECT_TRUE(flat.call("BoxBlurFractionalFilter", nullptr, 0.5).is_nil());
    EXPECT_TRUE(closed.call("BoxBlurFractionalFilter", nullptr, 0.5).is_nil());
    EXPECT_TRUE(source.call("BoxBlurFractionalFilter", invalid, 0.5).is_nil());
    EXPECT_TRUE(source.call("BoxBlurFractionalFilter", flat, 0.5).is_nil());
    EXPECT_TRUE(source.call("BoxBlurFractionalFilter", closed, 0.5).is_nil());
}

TEST(BoxBlurFractionalFilter, ALayoutNeitherGrayNorColourLeavesTheDestinationAlone) {
    const Image source(3, 2, 14), destination = random_image(3, 2, 2, 5);
    const Bytes before = storage_of(destination);
    EXPECT_TRUE(destination.same(Object(source.call("BoxBlurFractionalFilter", destination, 0.5))));
    EXPECT_EQ(storage_of(destination), before);
}

} // namespace
} // namespace kzb::test
