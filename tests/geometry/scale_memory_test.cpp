// The scalings when memory is short: the module asks this program for it.

#include "fixtures/scarce_memory.h"
#include "fixtures/storages.h"
#include "geometry/plain_scale.h"

#include <gtest/gtest.h>

namespace kzb::test {
namespace {

constexpr int32_t lanczos3 = 3;

// The requests of a scaling through a given intermediate image, in their order: of one that makes both passes at once,
// and of one that makes them one after the other, because it has to let the program run meanwhile.
enum Request { column_lists = 1, column_weights, row_lists, row_weights, of_lists = row_weights };
enum RequestAtOnce { ring = of_lists + 1, columns, means, bytes, list_rows, blocks, all_at_once = blocks };
enum RequestInTurn { source_row = of_lists + 1, sums, row_bytes, all_in_turn = row_bytes };

class ShortOfMemory : public testing::Test {
protected:
    void TearDown() override { denied = 0; }

    // Scales with one request denied.
    bool scale(const Value &through, int denied_request) {
        requests = 0;
        denied = denied_request;
        const bool done = image.call("Scale", source, through, lanczos3, 5, 4).boolean();
        denied = 0;
        return done;
    }

    const Image source = *make_image(Storage::memory, 7, 9, 2, 1);
    const Image image = *make_image(Storage::memory, 6, 6, 2, 2);
    const Image temp{5, 9, scaling_format};
};

TEST_F(ShortOfMemory, AScalingAsksForListsAndRowsToWorkIn) {
    ASSERT_TRUE(scale(temp, 0));
    EXPECT_EQ(requests, all_at_once);
    image.set("YieldTicks", 1000);
    ASSERT_TRUE(scale(temp, 0));
    EXPECT_EQ(requests, all_in_turn);
}

TEST_F(ShortOfMemory, WithoutAnIntermediateImageNothingIsDone) {
    const Bytes before = storage_of(image);
    EXPECT_FALSE(scale(nullptr, 1));
    EXPECT_EQ(storage_of(image), before);
    EXPECT_EQ(requests, 1);
}

TEST_F(ShortOfMemory, ListsThatCannotBeHadAreEmptyAndGiveZero) {
    for (Request request : {column_lists, column_weights, row_lists, row_weights}) {
        fill_storage(image, random_bytes(storage_of(image).size(), 2));
        Snapshots snapshots;
        const PlainImage expected = snapshots.of(image);
        for (int32_t y = 0; y < 4; ++y)
            for (int32_t x = 0; x < 5; ++x)
                for (Channel channel : expected.channels()) expected.set(x, y, channel, 0);
        EXPECT_TRUE(scale(temp, request));
        EXPECT_EQ(difference(image, expected), "") << request;
    }
}

TEST_F(ShortOfMemory, WithoutRowsToWorkInTheResultIsTheSame) {
    ASSERT_TRUE(scale(temp, 0));
    const Bytes expected = storage_of(image), expected_temp = storage_of(temp);
    const auto expect_the_same = [&](int request) {
        image.call("FillRect", 0, 0, 5, 4, 77);
        temp.call("ClearRect");
        EXPECT_TRUE(scale(temp, request));
        EXPECT_EQ(storage_of(temp), expected_temp) << request;
        for (int32_t y = 0; y < 4; ++y) {
            const Bytes row = image.row(y);
            EXPECT_TRUE(std::equal(row.begin(), row.begin() + 20, expected.begin() + y * 64)) << request;
        }
    };
    for (RequestAtOnce request : {ring, columns, means, bytes, list_rows, blocks}) expect_the_same(request);
    image.set("YieldTicks", 1000);
    for (RequestInTurn request : {source_row, sums, row_bytes}) expect_the_same(request);
}

TEST_F(ShortOfMemory, FastScalingNeedsNone) {
    requests = 0;
    EXPECT_TRUE(image.call("ScaleFast", source, 5, 4).boolean());
    EXPECT_EQ(requests, 0);
}

} // namespace
} // namespace kzb::test
