// NeonFilter.

#include "filters/plain_neon.h"
#include "fixtures/filter_check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace kzb::test {
namespace {

const FilterCheck check = {[](const Image &source, const Value &dest) { return source.call("NeonFilter", dest); },
                           neon};

TEST(NeonFilter, IsTwiceTheGradientOfEveryChannel) {
    check_filter(check);
}

TEST(NeonFilter, EveryDifference) {
    // The pixel, the one to its right, the one below.
    for (int32_t across = 0; across < 256; across += 3) {
        const Image source(512, 2, 11);
        Bytes row(512), below(512);
        for (size_t i = 0; i < 256; ++i) {
            row[2 * i] = static_cast<uint8_t>(255 - across);
            row[2 * i + 1] = 255;
            below[2 * i] = static_cast<uint8_t>(i);
        }
        source.assign("Row", block_of(row), 0);
        source.assign("Row", block_of(below), 1);
        check_one(check, source, Object(), "difference " + std::to_string(across));
    }
}

TEST(NeonFilter, AFlatImageIsBlackButForItsLastRowAndColumn) {
    const Image source(5, 4, 1);
    Bytes flat(64); // with padding of 0
    std::fill_n(flat.begin(), 15, 10);
    for (int32_t y = 0; y < 4; ++y) source.assign("Row", block_of(flat), y);
    const Image out(source.call("NeonFilter", nullptr));
    for (int32_t y = 0; y < 4; ++y) {
        const Bytes row = out.row(y);
        for (size_t x = 0; x < 5; ++x) {
            // 2 sqrt(10² + 10²) in the corner
            const int expected = x == 4 && y == 3 ? 28 : x == 4 || y == 3 ? 20 : 0;
            for (size_t i = 0; i < 3; ++i) EXPECT_EQ(row[3 * x + i], expected) << x << ", " << y;
        }
    }
}

TEST(NeonFilter, TheLastColumnsNeighbourIsWhatFollowsInTheRow) {
    // Padding.
    const Image source(4, 1, 11);
    source.assign("Row", block_of([] {
                      Bytes row(64, 9);
                      row[4] = 49;
                      return row;
                  }()),
                  0);
    EXPECT_EQ(Image(source.call("NeonFilter", nullptr)).row(0)[3], static_cast<int>(2 * std::sqrt(40 * 40 + 9 * 9)));
    // A view's neighbour in its parent.
    const Image view(source.call("ClipImage", 1, 0, 2, 1));
    const Image parent_pixel(view.call("NeonFilter", nullptr));
    EXPECT_EQ(parent_pixel.row(0)[1], 18);
}

TEST(NeonFilter, NothingFollowsAFullRow) {
    const Image source(64, 2, 11);
    source.call("FillRect", 50);
    const Image out(source.call("NeonFilter", nullptr));
    EXPECT_EQ(out.row(0)[62], 0);
    EXPECT_EQ(out.row(0)[63], 100);
}

TEST(NeonFilter, RowsThatTheBlockCutsShortEndIn0) {
    for (int32_t row_size : {1, 7, 19, 20, 23, 40}) {
        const Bytes bytes = random_bytes(static_cast<size_t>(2 * row_size + 80), 3);
        const Image source(Object::make("PictureKZB", block_of(bytes), 20, 3, 2, row_size));
        const Image dest(20, 3, 2);
        Snapshots snapshots;
        const PlainImage plain_dest = snapshots.of(dest);
        PlainImage plain = snapshots.of(source);
        neon(plain, plain_dest);
        source.call("NeonFilter", dest);
        EXPECT_EQ(difference(dest, plain_dest), "") << row_size;
    }
}

TEST(NeonFilter, OntoItselfItReadsWhatWasThere) {
    const Image source = *make_image(Storage::memory, 31, 17, 2, 4);
    const Bytes apart = storage_of(Image(source.call("NeonFilter", Image(source.call("Clone")))));
    source.call("NeonFilter", source);
    EXPECT_EQ(storage_of(source), apart);
}

TEST(NeonFilter, ChannelsOfDifferentPixelsMayBeTheSameByte) {
    const Image parent = *make_image(Storage::memory, 14, 6, 9, 3);
    for (int32_t format : {12, 13})
        check_one(check, *make_image(Storage::memory, 9, 4, format, 4), Object(parent.call("ClipImage", 2, 1, 9, 4)),
                  "crossing channels");
}

TEST(NeonFilter, GivesNilForAnImageThatIsNotUsable) {
    const Image invalid(3, 3, 99), low(3, 0, 1), good(3, 3, 1), closed(3, 3, 1);
    closed.call("Close");
    EXPECT_TRUE(invalid.call("NeonFilter", nullptr).is_nil());
    EXPECT_TRUE(low.call("NeonFilter", nullptr).is_nil());
    EXPECT_TRUE(good.call("NeonFilter", closed).is_nil());
    EXPECT_TRUE(Image(Image(0, 3, 1).call("NeonFilter", nullptr)).valid());
}

TEST(NeonFilter, LeavesTheDestinationOfANeitherGrayNorColourImageAlone) {
    const Image source(3, 2, 14);
    const Image dest = *make_image(Storage::memory, 3, 2, 2, 5);
    const Bytes before = storage_of(dest);
    EXPECT_TRUE(dest.same(Object(source.call("NeonFilter", dest))));
    EXPECT_EQ(storage_of(dest), before);
}

TEST(NeonFilter, LeavesTheDestinationOfAViewWithoutColumnsWhereverThatBegins) {
    const Image parent = *make_image(Storage::memory, 7, 6, 2, 1);
    for (const int32_t x : {7, 1 << 20, 1 << 29, 3 << 28}) {
        const Image view(parent.call("ClipImage", x, 0, 5, 5));
        ASSERT_EQ(view.width(), 0);
        ASSERT_EQ(view.height(), 5);
        const Image destination = *make_image(Storage::memory, 7, 6, 2, 2);
        const Bytes before = storage_of(destination);
        EXPECT_TRUE(Image(view.call("NeonFilter", destination)).same(destination));
        EXPECT_EQ(storage_of(destination), before) << x;
    }
}

} // namespace
} // namespace kzb::test
