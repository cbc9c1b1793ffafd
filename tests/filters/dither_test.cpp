// DitherFilter.

#include "filters/dither_matrices.h"
#include "filters/plain_dither.h"
#include "fixtures/filter_check.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kzb::test {
namespace {

FilterCheck check_of(const DitherMatrix &matrix, int32_t levels) {
    const int32_t code = matrix.code;
    return {[code, levels](const Image &source, const Value &dest) {
                return source.call("DitherFilter", dest, code, levels);
            },
            dithering(matrix, levels)};
}

// A gray image of one value.
Image flat(int32_t width, int32_t height, uint8_t value) {
    const Image image(width, height, 11);
    image.call("FillRect", value);
    return image;
}

TEST(DitherFilter, EveryMatrixAtEveryNumberOfLevels) {
    // Each row holds all bytes, 37 apart.
    const Image image(64, 33, 2);
    Bytes row(256);
    for (size_t i = 0; i < row.size(); ++i) row[i] = static_cast<uint8_t>(i * 37);
    for (int32_t y = 0; y < 33; ++y) {
        std::rotate(row.begin(), row.begin() + 13, row.end());
        image.assign("Row", block_of(row), y);
    }
    for (const DitherMatrix &matrix : dither_matrices()) {
        for (int32_t levels : {2, 3, 7, 16, 256}) {
            SCOPED_TRACE(matrix.constant + (" at " + std::to_string(levels)));
            check_one(check_of(matrix, levels), image, Object(), "apart");
            check_one(check_of(matrix, levels), Image(image.call("Clone")), Object(), "clone");
            const Image own(image.call("Clone"));
            check_one(check_of(matrix, levels), own, own, "in place");
        }
    }
}

TEST(DitherFilter, TheClassConstantsSelectTheMatrices) {
    ASSERT_EQ(dither_matrices().size(), 10u);
    for (const DitherMatrix &matrix : dither_matrices()) {
        int64_t value = 0;
        EXPECT_TRUE(kzb_constant("PictureKZB", matrix.constant, &value, nullptr));
        EXPECT_EQ(value, matrix.code);
    }
}

TEST(DitherFilter, EveryChannelInEveryStorage) {
    check_filter(check_of(dither_matrices()[9], 5));
    check_filter(check_of(dither_matrices()[5], 2));
}

TEST(DitherFilter, AnUnknownCodeLeavesTheDestinationAlone) {
    const Image source = *make_image(Storage::memory, 9, 5, 2, 1);
    const Image dest = *make_image(Storage::memory, 9, 5, 2, 2);
    const Bytes before = storage_of(dest);
    for (int32_t code : {0, 11, -1, 256, INT32_MAX, INT32_MIN})
        EXPECT_TRUE(dest.same(Object(source.call("DitherFilter", dest, code, 4)))) << code;
    EXPECT_EQ(storage_of(dest), before);
    const Image made(source.call("DitherFilter", nullptr, 11, 4));
    EXPECT_EQ(storage_of(made), Bytes(storage_of(made).size()));
}

TEST(DitherFilter, LevelsBelow2OrAbove256LeaveTheDestinationAlone) {
    const Image source = *make_image(Storage::memory, 9, 5, 2, 1);
    const Image dest = *make_image(Storage::memory, 9, 5, 2, 2);
    const Bytes before = storage_of(dest);
    for (int32_t levels : {1, 0, -1, 257, 65536, INT32_MAX, INT32_MIN})
        EXPECT_TRUE(dest.same(Object(source.call("DitherFilter", dest, 3, levels)))) << levels;
    EXPECT_EQ(storage_of(dest), before);
}

TEST(DitherFilter, HalfGrayAtTwoLevelsIsHalfAndHalf) {
    const Image out(flat(4, 4, 128).call("DitherFilter", nullptr, 3, 2));
    const int32_t ordered[] = {0, 8, 2, 10, 12, 4, 14, 6, 3, 11, 1, 9, 15, 7, 13, 5};
    for (int32_t y = 0; y < 4; ++y) {
        const Bytes row = out.row(y);
        for (int32_t x = 0; x < 4; ++x)
            EXPECT_EQ(row[static_cast<size_t>(x)], ordered[y * 4 + x] < 8 ? 0 : 255) << x << ", " << y;
    }
}

TEST(DitherFilter, TwoLevelsInvert) {
    for (int32_t code : {2, 3, 4}) {
        const Bytes black = Image(flat(4, 1, 0).call("DitherFilter", nullptr, code, 2)).row(0);
        const Bytes white = Image(flat(4, 1, 255).call("DitherFilter", nullptr, code, 2)).row(0);
        EXPECT_EQ(Bytes(black.begin(), black.begin() + 4), Bytes(4, 255));
        EXPECT_EQ(Bytes(white.begin(), white.begin() + 4), Bytes(4, 0));
    }
}

TEST(DitherFilter, ThresholdsBeyondTheNumberOfCellsSplitBrightValues) {
    const Bytes row = Image(flat(8, 1, 255).call("DitherFilter", nullptr, 7, 2)).row(0);
    // 1 235 59 219 15 231 55 215, against a fraction of 64
    EXPECT_EQ(Bytes(row.begin(), row.begin() + 8), (Bytes{0, 255, 0, 255, 0, 255, 0, 255}));
}

TEST(DitherFilter, At256LevelsEveryByteIsALevel) {
    const Image image(16, 16, 11);
    for (int32_t y = 0; y < 16; ++y) {
        Bytes row(64);
        for (size_t x = 0; x < 16; ++x) row[x] = static_cast<uint8_t>(static_cast<size_t>(y) * 16 + x);
        image.assign("Row", block_of(row), y);
    }
    const Image out(image.call("DitherFilter", nullptr, 1, 256));
    const int32_t magic[] = {0, 2, 3, 1};
    for (int32_t y = 0; y < 16; ++y) {
        const Bytes row = out.row(y);
        for (int32_t x = 0; x < 16; ++x) {
            const int32_t v = y * 16 + x;
            const int32_t level = v * 255 / 256 + (magic[y % 2 * 2 + x % 2] < v * 5 / 256 ? 0 : 1);
            EXPECT_EQ(row[static_cast<size_t>(x)], level) << v;
        }
    }
}

TEST(DitherFilter, ChannelsOfDifferentPixelsMayBeTheSameByte) {
    // The view's gray lies at offset 0, its alpha two whole pixels on.
    const Image parent = *make_image(Storage::memory, 14, 6, 9, 3);
    const Object view(parent.call("ClipImage", 2, 1, 9, 4));
    for (int32_t format : {12, 13})
        check_one(check_of(dither_matrices()[2], 6), *make_image(Storage::memory, 9, 4, format, 4), view,
                  "crossing channels");
}

TEST(DitherFilter, GivesNilForAnImageThatIsNotUsable) {
    const Image invalid(3, 3, 99), low(3, 0, 1), good(3, 3, 1), closed(3, 3, 1);
    closed.call("Close");
    EXPECT_TRUE(invalid.call("DitherFilter", nullptr, 1, 2).is_nil());
    EXPECT_TRUE(low.call("DitherFilter", nullptr, 1, 2).is_nil());
    EXPECT_TRUE(closed.call("DitherFilter", nullptr, 1, 2).is_nil());
    EXPECT_TRUE(good.call("DitherFilter", closed, 1, 2).is_nil());
    EXPECT_TRUE(good.call("DitherFilter", invalid, 0, 0).is_nil());
}

TEST(DitherFilter, LeavesTheDestinationOfANeitherGrayNorColourImageAlone) {
    const Image source(3, 2, 14);
    const Image dest = *make_image(Storage::memory, 3, 2, 2, 5);
    const Bytes before = storage_of(dest);
    EXPECT_TRUE(dest.same(Object(source.call("DitherFilter", dest, 3, 4))));
    EXPECT_EQ(storage_of(dest), before);
}

} // namespace
} // namespace kzb::test
