// EngraveFilter.

#include "filters/plain_engrave.h"
#include "fixtures/filter_check.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kzb::test {
namespace {

FilterCheck check_of(int32_t level) {
    return {[=](const Image &source, const Value &dest) { return source.call("EngraveFilter", dest, level); },
            engraving(level)};
}

TEST(EngraveFilter, ComparesEveryChannelWithItsDiagonalNeighbour) {
    check_filter(check_of(1));
    check_filter(check_of(-2));
}

TEST(EngraveFilter, EveryLevelAroundTheImagesSize) {
    for (int32_t level : {2, 4, 5, 6, 7, 8, 9, 10, 100, INT32_MAX}) {
        for (int32_t sign : {1, -1}) {
            const std::string label = "level " + std::to_string(sign * level);
            for (int32_t format : {1, 2, 8, 11, 13}) {
                const Image source = *make_image(Storage::memory, 9, 6, format, 3);
                check_one(check_of(sign * level), source, Object(), label);
                check_one(check_of(sign * level), source, source, "in place, " + label);
                const Image file = *make_image(Storage::file, 9, 6, format, 3);
                check_one(check_of(sign * level), file, file, "a file in place, " + label);
            }
        }
    }
    const Image source = *make_image(Storage::memory, 9, 6, 2, 4);
    check_one(check_of(INT32_MIN), source, Object(), "the lowest level");
    check_one(check_of(INT32_MIN), source, source, "the lowest level in place");
}

TEST(EngraveFilter, NeighboursFarApartInAFile) {
    const Image tall = make_tall_image(4, 2, 6);
    check_one(check_of(5000), tall, Object(), "down");
    check_one(check_of(-5000), tall, tall, "up, in place");
}

TEST(EngraveFilter, AFlatImageBecomesMiddleGray) {
    for (int32_t level : {0, 1, -1, 3}) {
        const Image source(16, 4, 2);
        source.call("FillRect", 200);
        const Bytes out = storage_of(Image(source.call("EngraveFilter", nullptr, level)));
        EXPECT_EQ(out, Bytes(16 * 4 * 4, 128)) << level;
    }
}

TEST(EngraveFilter, LevelZeroGivesMiddleGray) {
    const Image source = *make_image(Storage::memory, 16, 5, 2, 8);
    EXPECT_EQ(storage_of(Image(source.call("EngraveFilter", nullptr, 0))), Bytes(16 * 5 * 4, 128));
    source.call("EngraveFilter", source, 0);
    EXPECT_EQ(storage_of(source), Bytes(16 * 5 * 4, 128));
}

TEST(EngraveFilter, DifferencesAreClamped) {
    const Image source(3, 1, 11);
    Bytes values(64);
    values[1] = 255;
    source.assign("Row", block_of(values), 0);
    const Bytes row = Image(source.call("EngraveFilter", nullptr, 1)).row(0);
    EXPECT_EQ(Bytes(row.begin(), row.begin() + 3), (Bytes{0, 255, 128}));
}

TEST(EngraveFilter, GivesNilForAnImageThatIsNotUsable) {
    const Image invalid(3, 3, 99), low(3, 0, 1), good(3, 3, 1), closed(3, 3, 1);
    closed.call("Close");
    EXPECT_TRUE(invalid.call("EngraveFilter", nullptr, 1).is_nil());
    EXPECT_TRUE(low.call("EngraveFilter", nullptr, 1).is_nil());
    EXPECT_TRUE(good.call("EngraveFilter", closed, 1).is_nil());
    EXPECT_TRUE(Image(Image(0, 3, 1).call("EngraveFilter", nullptr, -1)).valid());
}

TEST(EngraveFilter, LeavesTheDestinationOfANeitherGrayNorColourImageAlone) {
    const Image source(3, 2, 14);
    const Image dest = *make_image(Storage::memory, 3, 2, 2, 5);
    const Bytes before = storage_of(dest);
    EXPECT_TRUE(dest.same(Object(source.call("EngraveFilter", dest, 1))));
    EXPECT_EQ(storage_of(dest), before);
}

} // namespace
} // namespace kzb::test
