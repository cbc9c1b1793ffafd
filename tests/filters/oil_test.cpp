// OilFilter.

#include "filters/plain_oil.h"
#include "fixtures/filter_check.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kzb::test {
namespace {

FilterCheck check_of(int32_t levels, int32_t range) {
    return {[=](const Image &source, const Value &dest) { return source.call("OilFilter", dest, levels, range); },
            oil(levels, range), false, true};
}

// The first bytes of a gray image's rows, one row after the other.
Bytes pixels_of(const Image &image) {
    Bytes all;
    for (int32_t y = 0; y < image.height(); ++y) {
        const Bytes row = image.row(y);
        all.insert(all.end(), row.begin(), row.begin() + image.width());
    }
    return all;
}

Image gray_row(Bytes values) {
    const Image image(static_cast<int32_t>(values.size()), 1, 11);
    values.resize(static_cast<size_t>(image.integer("RowSize")));
    image.assign("Row", block_of(values), 0);
    return image;
}

TEST(OilFilter, TakesTheFullestBinOfEveryChannel) {
    check_filter(check_of(3, 1));
    check_filter(check_of(20, 2));
}

TEST(OilFilter, RangeZeroCopies) {
    const Image source = *make_image(Storage::memory, 13, 9, 11, 1);
    EXPECT_EQ(pixels_of(Image(source.call("OilFilter", nullptr, 5, 0))), pixels_of(source));
}

TEST(OilFilter, EveryRangeAroundTheImagesSize) {
    for (int32_t range : {0, 1, 2, 5, 6, 7, 8, 9, 20, 21, 22, 23, 40}) {
        for (int32_t format : {2, 6, 11, 12}) {
            for (int32_t levels : {1, 4, 37, 256}) {
                const Image source = *make_image(Storage::memory, 22, 8, format, 3);
                check_one(check_of(levels, range), source, Object(), "range " + std::to_string(range));
                check_one(check_of(levels, range), source, source, "in place, range " + std::to_string(range));
            }
        }
    }
}

TEST(OilFilter, ImagesOfSeveralBandsAndStrips) {
    // More than 64 rows, and more than 1024 bytes in a row.
    for (auto [format, width] : {std::pair(2, 300), std::pair(11, 1100)})
        for (auto [levels, range] : {std::pair(256, 1), std::pair(40, 2)})
            check_one(check_of(levels, range), *make_image(Storage::memory, width, 70, format, 3), Object(), "large");
}

TEST(OilFilter, AHugeRangeIsTheWholeImage) {
    for (int32_t range : {1000, 1 << 30, INT32_MAX}) {
        const Image source = *make_image(Storage::memory, 11, 7, 1, 9);
        const FilterCheck check = {
            [=](const Image &image, const Value &dest) { return image.call("OilFilter", dest, 16, range); },
            oil(16, 11)};
        check_one(check, source, Object(), "apart");
        check_one(check, source, source, "in place");
        const Image file = *make_image(Storage::file, 11, 7, 1, 9);
        check_one(check, file, file, "a file in place");
    }
}

TEST(OilFilter, NeighbourhoodsOfMillionsOfPixels) {
    // More of them, and larger sums, than half of 32 bits hold.
    const int32_t side = 2900;
    const Image source(side, side, 11);
    source.call("FillRect", 255);
    source.call("FillRect", 0, 0, side, 1000, 254);
    EXPECT_GT(int64_t{side} * side, INT32_MAX / 256);
    const Bytes out = pixels_of(Image(source.call("OilFilter", nullptr, 4, INT32_MAX)));
    // 1,000 rows of 254 and 1,900 of 255, all in the highest bin
    EXPECT_EQ(std::count(out.begin(), out.end(), 254), int64_t{side} * side);
}

TEST(OilFilter, MoreThan256LevelsAre256) {
    for (int32_t levels : {257, 300, INT32_MAX}) {
        const Image source = *make_image(Storage::memory, 23, 11, 2, 5);
        check_one(check_of(levels, 2), source, Object(), "many levels");
        EXPECT_EQ(storage_of(Image(source.call("OilFilter", nullptr, levels, 3))),
                  storage_of(Image(source.call("OilFilter", nullptr, 256, 3))));
    }
}

TEST(OilFilter, OfEquallyFullBinsTheLowestWins) {
    // Bins of 64: two each of the lowest, the second and the third.
    const Image source = gray_row({130, 1, 131, 70, 71, 3});
    EXPECT_EQ(pixels_of(Image(source.call("OilFilter", nullptr, 4, 5))), Bytes(6, 2));
    EXPECT_EQ(pixels_of(Image(gray_row({200, 70, 201, 71}).call("OilFilter", nullptr, 4, 3))), Bytes(4, 70));
}

TEST(OilFilter, OneLevelIsTheMeanOfTheNeighbourhood) {
    const Image source = gray_row({0, 255, 10, 20, 200});
    EXPECT_EQ(pixels_of(Image(source.call("OilFilter", nullptr, 1, 1))),
              (Bytes{255 / 2, 265 / 3, 285 / 3, 230 / 3, 220 / 2}));
}

TEST(OilFilter, OntoItselfItCountsWhatItHasWritten) {
    const Image image = gray_row({10, 20, 30, 40});
    image.call("OilFilter", image, 1, 1);
    EXPECT_EQ(pixels_of(image), (Bytes{15, (15 + 20 + 30) / 3, (21 + 30 + 40) / 3, (30 + 40) / 2}));
}

TEST(OilFilter, LevelsBelow1OrANegativeRangeLeaveTheDestinationAlone) {
    const Image source = *make_image(Storage::memory, 9, 5, 2, 1);
    const Image dest = *make_image(Storage::memory, 9, 5, 2, 2);
    const Bytes before = storage_of(dest);
    for (int32_t levels : {0, -1, INT32_MIN})
        EXPECT_TRUE(dest.same(Object(source.call("OilFilter", dest, levels, 1)))) << levels;
    for (int32_t range : {-1, INT32_MIN})
        EXPECT_TRUE(dest.same(Object(source.call("OilFilter", dest, 8, range)))) << range;
    EXPECT_EQ(storage_of(dest), before);
}

TEST(OilFilter, GivesNilForAnImageThatIsNotUsable) {
    const Image invalid(3, 3, 99), low(3, 0, 1), good(3, 3, 1), closed(3, 3, 1);
    closed.call("Close");
    EXPECT_TRUE(invalid.call("OilFilter", nullptr, 8, 1).is_nil());
    EXPECT_TRUE(low.call("OilFilter", nullptr, 8, 1).is_nil());
    EXPECT_TRUE(good.call("OilFilter", closed, 8, 1).is_nil());
    EXPECT_TRUE(good.call("OilFilter", closed, 0, -1).is_nil());
    EXPECT_TRUE(Image(Image(0, 3, 1).call("OilFilter", nullptr, 8, 1)).valid());
}

TEST(OilFilter, LeavesTheDestinationOfANeitherGrayNorColourImageAlone) {
    const Image source(3, 2, 14);
    const Image dest = *make_image(Storage::memory, 3, 2, 2, 5);
    const Bytes before = storage_of(dest);
    EXPECT_TRUE(dest.same(Object(source.call("OilFilter", dest, 8, 1))));
    EXPECT_EQ(storage_of(dest), before);
}

} // namespace
} // namespace kzb::test
