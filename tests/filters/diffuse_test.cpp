// DiffuseFilter.

#include "filters/plain_diffuse.h"
#include "fixtures/filter_check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace kzb::test {
namespace {

FilterCheck check_of(int32_t level) {
    return {[=](const Image &source, const Value &dest) {
                std::srand(diffuse_seed);
                return source.call("DiffuseFilter", dest, level);
            },
            diffusion(level)};
}

TEST(DiffuseFilter, CopiesEveryChannelFromANearbyPixel) {
    check_filter(check_of(1));
    check_filter(check_of(4));
}

TEST(DiffuseFilter, LevelZeroCopies) {
    const Image source = *make_image(Storage::memory, 16, 9, 2, 1);
    EXPECT_EQ(storage_of(Image(source.call("DiffuseFilter", nullptr, 0))), storage_of(source));
}

TEST(DiffuseFilter, HugeLevelsReachTheWholeImage) {
    for (int32_t level : {6, 7, 8, 100, 1 << 30, INT32_MAX - 1, INT32_MAX}) {
        const Image source = *make_image(Storage::memory, 9, 7, 2, 3);
        check_one(check_of(level), source, Object(), "level " + std::to_string(level));
        check_one(check_of(level), source, source, "in place, level " + std::to_string(level));
        const Image file = *make_image(Storage::file, 9, 7, 2, 3);
        check_one(check_of(level), file, file, "a file in place, level " + std::to_string(level));
    }
}

TEST(DiffuseFilter, Level1KeepsEveryPixelWithinOnePixel) {
    // Each pixel tells its place.
    const Image source(16, 16, 11);
    for (int32_t y = 0; y < 16; ++y) {
        Bytes row(64);
        for (size_t x = 0; x < 16; ++x) row[x] = static_cast<uint8_t>(static_cast<size_t>(y) * 16 + x);
        source.assign("Row", block_of(row), y);
    }
    const Image out(source.call("DiffuseFilter", nullptr, 1));
    int moved = 0;
    for (int32_t y = 0; y < 16; ++y) {
        const Bytes row = out.row(y);
        for (int32_t x = 0; x < 16; ++x) {
            const int32_t from = row[static_cast<size_t>(x)];
            EXPECT_LE(std::abs(from % 16 - x), 1);
            EXPECT_LE(std::abs(from / 16 - y), 1);
            moved += from != y * 16 + x;
        }
    }
    EXPECT_GT(moved, 100);
}

TEST(DiffuseFilter, ASeededRunRepeatsAndAnotherSeedDiffers) {
    const Image source = *make_image(Storage::memory, 40, 30, 1, 1);
    const auto run = [&](unsigned with) {
        std::srand(with);
        return storage_of(Image(source.call("DiffuseFilter", nullptr, 3)));
    };
    const Bytes first = run(1);
    EXPECT_EQ(run(1), first);
    EXPECT_NE(run(2), first);
}

TEST(DiffuseFilter, DrawsTwoNumbersForEachPixel) {
    const Image source = *make_image(Storage::memory, 13, 7, 2, 1);
    std::srand(diffuse_seed);
    for (int i = 0; i < 2 * 13 * 7; ++i) std::rand();
    const int expected = std::rand();
    std::srand(diffuse_seed);
    source.call("DiffuseFilter", source, 5);
    EXPECT_EQ(std::rand(), expected);
}

TEST(DiffuseFilter, ANegativeLevelLeavesTheDestinationAloneAndDrawsNothing) {
    const Image source = *make_image(Storage::memory, 9, 5, 2, 1);
    const Image dest = *make_image(Storage::memory, 9, 5, 2, 2);
    const Bytes before = storage_of(dest);
    std::srand(diffuse_seed);
    const int expected = std::rand();
    std::srand(diffuse_seed);
    for (int32_t level : {-1, INT32_MIN})
        EXPECT_TRUE(dest.same(Object(source.call("DiffuseFilter", dest, level)))) << level;
    EXPECT_EQ(std::rand(), expected);
    EXPECT_EQ(storage_of(dest), before);
}

TEST(DiffuseFilter, GivesNilForAnImageThatIsNotUsable) {
    const Image invalid(3, 3, 99), low(3, 0, 1), good(3, 3, 1), closed(3, 3, 1);
    closed.call("Close");
    EXPECT_TRUE(invalid.call("DiffuseFilter", nullptr, 1).is_nil());
    EXPECT_TRUE(low.call("DiffuseFilter", nullptr, 1).is_nil());
    EXPECT_TRUE(good.call("DiffuseFilter", closed, 1).is_nil());
    EXPECT_TRUE(Image(Image(0, 3, 1).call("DiffuseFilter", nullptr, 1)).valid());
}

TEST(DiffuseFilter, LeavesTheDestinationOfANeitherGrayNorColourImageAlone) {
    const Image source(3, 2, 14);
    const Image dest = *make_image(Storage::memory, 3, 2, 2, 5);
    const Bytes before = storage_of(dest);
    EXPECT_TRUE(dest.same(Object(source.call("DiffuseFilter", dest, 1))));
    EXPECT_EQ(storage_of(dest), before);
}

} // namespace
} // namespace kzb::test
