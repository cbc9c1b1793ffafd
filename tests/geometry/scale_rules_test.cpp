// Single rules of filtered scaling.

#include "geometry/scale_check.h"

#include <gtest/gtest.h>

namespace kzb::test {
namespace {

using namespace scale_mode;

Image gray_row(const Bytes &values) {
    const Image image(static_cast<int32_t>(values.size()), 1, 11);
    image.assign("Row", block_of([&] {
                     Bytes row = values;
                     row.resize(static_cast<size_t>(image.integer("RowSize")));
                     return row;
                 }()),
                 0);
    return image;
}

TEST(Scale, ToTheSameSizeWithBoxAndTriangleReproducesTheSource) {
    for (int32_t mode : {box, triangle})
        for (const Layout &format : layouts()) {
            const Image source = random_image({13, 9}, format.code), image(13, 9, format.code);
            ASSERT_TRUE(scale(image, source, nullptr, mode, {13, 9}));
            Snapshots snapshots;
            const PlainImage found = snapshots.of(image), expected = snapshots.of(source);
            for (int32_t y = 0; y < 9; ++y)
                for (int32_t x = 0; x < 13; ++x)
                    for (Channel channel : expected.channels())
                        ASSERT_EQ(found.get(x, y, channel), expected.get(x, y, channel)) << format.name;
        }
}

TEST(Scale, TruncatesWhatItComputes) {
    const Image image(1, 1, 11);
    Bytes nearly(10, 255);
    nearly[4] = 254;
    ASSERT_TRUE(scale(image, gray_row(nearly), nullptr, box, {1, 1}));
    EXPECT_EQ(image.row(0)[0], 254) << "the mean is 254.9";
    ASSERT_TRUE(scale(image, gray_row({100, 101}), nullptr, box, {1, 1}));
    EXPECT_EQ(image.row(0)[0], 100);
}

TEST(Scale, ClampsBetweenThePassesToo) {
    // Two levels with an edge between them.
    const Image source(20, 20, 16), image(30, 30, 11), temp(30, 20, scaling_format);
    source.call("FillRect", 0, 0, 10, 20, 255);
    for (int32_t mode = 3; mode <= 7; ++mode) {
        ASSERT_TRUE(scale(image, source, temp, mode, {30, 30}));
        Snapshots snapshots;
        const PlainImage kept = snapshots.of(temp);
        int32_t black = 0, white = 0;
        for (int32_t x = 0; x < 30; ++x) {
            const float value = float_of(kept, x, 3, 1);
            ASSERT_GE(value, 0.0f);
            ASSERT_LE(value, 255.0f);
            black += value == 0;
            white += value == 255;
        }
        // Overshoot on both sides of the edge: without clamping hardly a value would be at the end exactly.
        EXPECT_GT(black, 5) << mode;
        EXPECT_GT(white, 5) << mode;
    }
}

TEST(Scale, AnUnknownModeIsRefused) {
    for (int32_t mode : {0, 8, -1, INT32_MIN, INT32_MAX})
        check_refused(random_image({4, 4}, 1), random_image({4, 4}, 1), nullptr, mode, {4, 4}, std::to_string(mode));
}

TEST(Scale, AnEmptySizeIsRefused) {
    for (Size size : {Size{0, 4}, Size{4, 0}, Size{-1, 4}, Size{4, -1}, Size{INT32_MIN, INT32_MIN}})
        check_refused(random_image({4, 4}, 1), random_image({4, 4}, 1), nullptr, box, size, std::to_string(size.width));
}

TEST(Scale, ANilSourceIsRefused) {
    EXPECT_FALSE(Image(4, 4, 1).call("Scale", nullptr, nullptr, box, 4, 4).boolean());
}

TEST(Scale, ImagesThatAreNotValidAreRefused) {
    const Image good = random_image({4, 4}, 1), bad(4, 4, 0);
    check_refused(good, bad, nullptr, box, {4, 4}, "source");
    EXPECT_FALSE(scale(bad, good, nullptr, box, {4, 4}));
    check_refused(good, good, bad, box, {4, 4}, "intermediate image");
    const Image closed = random_image({4, 4}, 1), closed_temp(4, 4, scaling_format);
    closed.call("Close");
    closed_temp.call("Close");
    check_refused(good, closed, nullptr, box, {4, 4}, "closed source");
    EXPECT_FALSE(scale(closed, good, nullptr, box, {4, 4}));
    check_refused(good, good, closed_temp, box, {4, 4}, "closed intermediate image");
    check_refused(good, Image(4, 0, 1), nullptr, box, {4, 4}, "source without rows");
}

TEST(Scale, AnIntermediateImageOfAnotherLayoutIsRefused) {
    for (int32_t format : {1, 2, 11})
        check_refused(random_image({4, 4}, 1), random_image({4, 4}, 1), Image(40, 40, format), box, {4, 4}, "temp");
}

TEST(Scale, LayoutsWithoutChannelsAreRefused) {
    const Image working(4, 4, scaling_format);
    check_refused(working, random_image({4, 4}, 1), nullptr, box, {4, 4}, "destination");
    check_refused(random_image({4, 4}, 1), working, nullptr, box, {4, 4}, "source");
}

TEST(Scale, ImagesThatAreTooSmallAreRefused) {
    const Image source = random_image({4, 5}, 2);
    check_refused(random_image({4, 4}, 2), source, nullptr, box, {5, 4}, "destination too narrow");
    check_refused(random_image({4, 4}, 2), source, nullptr, box, {4, 5}, "destination too low");
    const Image image = random_image({7, 7}, 2);
    for (Size size : {Size{6, 5}, Size{7, 4}}) {
        const Image temp = random_image(size, scaling_format);
        const Bytes before = storage_of(temp);
        check_refused(image, source, temp, box, {7, 7}, "intermediate image too small");
        EXPECT_EQ(storage_of(temp), before);
    }
    check_scale(image, source, random_image({7, 5}, scaling_format), box, {7, 7}, "just large enough");
    check_refused(Image(image.call("ClipImage", 0, 0, 6, 7)), source, nullptr, box, {7, 7}, "a view too narrow");
}

TEST(Scale, AResultBeyondAllMemoryIsRefused) {
    check_refused(random_image({4, 4}, 2), random_image({4, 5}, 2), nullptr, box, {INT32_MAX, INT32_MAX},
                  "largest size");
}

TEST(Scale, ColourIntoGrayIsWeighedInDoubles) {
    const Image source(1, 1, 1), image(1, 1, 11);
    const struct {
        int red, green, blue, gray;
    } cases[] = {{255, 0, 0, 76}, {0, 255, 0, 150}, {0, 0, 255, 28}, {10, 20, 30, 18}, {0, 100, 0, 59}};
    for (const auto &[red, green, blue, gray] : cases) {
        source.call("FillRectRGB", red, green, blue);
        ASSERT_TRUE(scale(image, source, nullptr, box, {1, 1}));
        EXPECT_EQ(image.row(0)[0], gray) << red << ' ' << green << ' ' << blue;
    }
}

TEST(Scale, AGraySourceLeavesTheAlphaOfColourAlone) {
    for (int32_t format : {11, 12, 13}) {
        const Image source(2, 2, format), image(2, 2, 2);
        source.call("FillRect", 90);
        image.call("FillRectRGB", 1, 2, 3, 77);
        ASSERT_TRUE(scale(image, source, nullptr, box, {2, 2}));
        const Bytes row = image.row(1);
        EXPECT_EQ(Bytes(row.begin(), row.begin() + 8), (Bytes{90, 90, 90, 77, 90, 90, 90, 77})) << format;
    }
}

TEST(Scale, ColourWithAlphaIntoGrayWithAlphaResamplesAlpha) {
    const Image source(2, 1, 2), image(1, 1, 12);
    source.call("FillRectRGB", 0, 0, 1, 1, 40, 40, 40, 100);
    source.call("FillRectRGB", 1, 0, 1, 1, 40, 40, 40, 200);
    ASSERT_TRUE(scale(image, source, nullptr, box, {1, 1}));
    EXPECT_EQ(image.row(0)[1], 150);
}

TEST(Scale, AViewWithoutColumnsGivesZero) {
    const Image parent = random_image({4, 4}, 2);
    const Image empty(parent.call("ClipImage", 4, 0, 4, 4));
    ASSERT_EQ(empty.width(), 0);
    for (int32_t mode = 1; mode <= 7; ++mode)
        check_scale(random_image({5, 5}, 2), empty, Object(), mode, {4, 3}, "empty");
    check_refused(empty, parent, nullptr, box, {1, 1}, "into one");
}

} // namespace
} // namespace kzb::test
