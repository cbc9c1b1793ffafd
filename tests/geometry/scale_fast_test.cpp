// Fast scaling.

#include "fixtures/storages.h"
#include "geometry/plain_scale.h"
#include "geometry/shapes.h"

#include <gtest/gtest.h>

namespace kzb::test {
namespace {

struct Size {
    int32_t width, height;
};

uint32_t next_seed() {
    static uint32_t seed = 0;
    return ++seed;
}

Image made(Storage storage, Size size, int32_t format) {
    return *make_image(storage, size.width, size.height, format, next_seed());
}

Image in_memory(Size size, int32_t format) {
    return made(Storage::memory, size, format);
}

bool scale(const Image &image, const Value &source, int32_t width, int32_t height) {
    return image.call("ScaleFast", source, width, height).boolean();
}

// Scales and compares result and all bytes of the images' storages with the reference's.
void check_fast(const Image &image, const Image &source, Size size, const std::string &label) {
    SCOPED_TRACE(label + ", " + layout(source.format()).name + " " + std::to_string(source.width()) + " x " +
                 std::to_string(source.height()) + " to " + layout(image.format()).name + " " +
                 std::to_string(size.width) + " x " + std::to_string(size.height));
    Snapshots snapshots;
    const PlainImage plain_source = snapshots.of(source);
    const PlainImage plain = snapshots.of(image);
    const bool expected = plain_scale_fast(plain_source, plain, size.width, size.height);
    EXPECT_EQ(scale(image, source, size.width, size.height), expected);
    EXPECT_EQ(difference(image, plain), "") << "in the destination";
    EXPECT_EQ(difference(source, plain_source), "") << "in the source";
}

TEST(ScaleFast, EveryPairOfLayouts) {
    const struct {
        Size from, to;
    } cases[] = {{{1, 1}, {1, 1}}, {{1, 1}, {5, 3}},   {{5, 3}, {1, 1}},   {{6, 5}, {6, 5}},
                 {{6, 5}, {9, 4}}, {{33, 7}, {10, 9}}, {{7, 2}, {70, 31}}, {{70, 3}, {69, 2}}};
    for (const Layout &from : layouts())
        for (const Layout &to : layouts())
            for (const auto &[source_size, size] : cases) {
                if (HasFailure()) return;
                const Size larger = {size.width + 2, size.height + 1};
                check_fast(in_memory(larger, to.code), in_memory(source_size, from.code), size, "memory");
            }
}

TEST(ScaleFast, EveryStorage) {
    for (Storage storage : every_storage)
        for (const Layout &format : layouts()) {
            if (HasFailure()) return;
            const auto source = make_image(storage, 8, 7, format.code, next_seed());
            const auto image = make_image(storage, 7, 10, format.code, next_seed());
            if (!source || !image) continue;
            const std::string name = name_of(storage);
            check_fast(in_memory({7, 10}, 2), *source, {5, 9}, "from " + name);
            check_fast(*image, in_memory({8, 7}, 9), {5, 9}, "to " + name);
            check_fast(*image, *source, {7, 3}, "from and to " + name);
            check_fast(*source, *source, {5, 6}, name + " onto itself");
        }
}

TEST(ScaleFast, RowsOfSeveralStrips) {
    const Image source = in_memory({3000, 2}, 2);
    for (int32_t format : {2, 9, 1, 12}) {
        check_fast(in_memory({5000, 3}, format), source, {4999, 3}, "wide");
        check_fast(in_memory({5000, 3}, format), source, {2100, 1}, "wide");
    }
    check_fast(source, source, {2999, 2}, "wide, in place");
}

TEST(ScaleFast, EveryKindOfView) {
    for (int32_t format : {2, 9, 1, 12}) {
        const Image parent = in_memory({11, 9}, format);
        for (const Shape &from : shapes_of(parent))
            for (const Shape &to : shapes_of(in_memory({9, 10}, format))) {
                check_fast(to.image, from.image, {6, 5}, from.name + " to " + to.name);
                if (HasFailure()) return;
            }
        // Of one storage, overlapping in every way.
        for (const Shape &from : shapes_of(parent))
            for (const Shape &to : shapes_of(parent)) {
                check_fast(to.image, from.image, {10, 9}, from.name + " to " + to.name + " of the same image");
                if (HasFailure()) return;
            }
    }
}

TEST(ScaleFast, OverlappingViewsInTheStatedOrder) {
    for (Storage storage : {Storage::memory, Storage::file})
        for (const Layout &format : layouts()) {
            const Image parent = made(storage, {20, 16}, format.code);
            const Image low(parent.call("ClipImage", 5, 4, 9, 8)), high(parent.call("ClipImage", 3, 2, 9, 8));
            const Image beside(parent.call("ClipImage", 6, 4, 9, 8));
            check_fast(high, low, {9, 8}, "up and left");
            check_fast(low, high, {9, 8}, "down and right");
            check_fast(beside, low, {9, 8}, "one to the right");
            check_fast(low, beside, {7, 8}, "one to the left");
            check_fast(low, Image(low.call("ClipImage", 0, 0, 4, 3)), {9, 8}, "enlarged in place");
            if (HasFailure()) return;
        }
}

TEST(ScaleFast, OverOneBlockInAnyLayouts) {
    constexpr int32_t row_size = 70, rows = 20;
    Bytes bytes = random_bytes(row_size * rows, next_seed());
    const auto over = [&](int32_t width, int32_t format) {
        return Image(Object::make("PictureKZB", block_at(bytes.data()), width, rows, format, row_size));
    };
    for (const Layout &from : layouts())
        for (const Layout &to : layouts()) {
            const Image source(over(17, from.code).call("ClipImage", 2, 3, 11, 9));
            for (int32_t x : {0, 2, 4}) {
                const Image image(over(17, to.code).call("ClipImage", x, 3, 12, 10));
                check_fast(image, source, {12, 9}, "the same bytes");
                check_fast(image, source, {6, 10}, "the same bytes");
                if (HasFailure()) return;
            }
        }
}

TEST(ScaleFast, RowsThatRunIntoTheNext) {
    // Pixels of one row overlap those of the next in part; written and read ones meet where an enlarged row catches up.
    constexpr int32_t row_size = 67, rows = 20;
    for (int32_t format : {2, 7, 12}) {
        Bytes bytes = random_bytes(row_size * rows, next_seed());
        const int32_t width = 120 / layout(format).pixel_size;
        const Image all(Object::make("PictureKZB", block_at(bytes.data()), width, rows, format, row_size));
        const auto part = [&](int32_t y, int32_t w) { return Image(all.call("ClipImage", 0, y, w, rows - 2)); };
        for (int32_t source_width : {width, width / 3}) {
            check_fast(part(0, width), part(1, source_width), {width, rows - 2}, "up");
            check_fast(part(1, width), part(0, source_width), {width, rows - 2}, "down");
            check_fast(part(0, width), part(0, source_width), {width, rows - 2}, "in place");
        }
    }
}

TEST(ScaleFast, FilesOfSeveralBlocks) {
    const Image tall = make_tall_image(7, 2, next_seed()), other = make_tall_image(9, 6, next_seed());
    check_fast(in_memory({6, 100}, 9), tall, {6, 100}, "shrunk");
    check_fast(other, in_memory({5, 60}, 2), {9, tall_height}, "enlarged");
    check_fast(other, tall, {8, tall_height - 1}, "from file to file");
    check_fast(tall, tall, {7, 4000}, "onto itself");
    const Image low(tall.call("ClipImage", 0, 3000, 7, 5000));
    check_fast(tall, low, {7, 8000}, "a view of it onto itself");
}

TEST(ScaleFast, TheSizeIsCutToTheDestination) {
    const Image source = in_memory({60, 70}, 2), image(100, 100, 2);
    ASSERT_TRUE(scale(image, source, 200, 50));
    const Image expected(100, 50, 2);
    ASSERT_TRUE(scale(expected, source, 100, 50));
    for (int32_t y = 0; y < 50; ++y) EXPECT_EQ(image.row(y), expected.row(y)) << y;
    EXPECT_EQ(image.row(50), Bytes(448));
}

TEST(ScaleFast, ANegativeSizeIsTheDestinationsOwn) {
    const Image source = in_memory({6, 5}, 1);
    const Image image(9, 8, 1), expected(9, 8, 1);
    ASSERT_TRUE(scale(image, source, -1, INT32_MIN));
    ASSERT_TRUE(scale(expected, source, 9, 8));
    EXPECT_EQ(storage_of(image), storage_of(expected));
    EXPECT_NE(storage_of(image), storage_of(Image(9, 8, 1)));
}

TEST(ScaleFast, HalvingSamplesTheEvenRowsAndColumns) {
    const Image source(4, 4, 11), image(2, 2, 11);
    for (int32_t y = 0; y < 4; ++y) {
        Bytes row(64);
        for (int32_t x = 0; x < 4; ++x) row[static_cast<size_t>(x)] = static_cast<uint8_t>(10 * y + x);
        source.assign("Row", block_of(row), y);
    }
    ASSERT_TRUE(scale(image, source, 2, 2));
    EXPECT_EQ(image.row(0)[0], 0);
    EXPECT_EQ(image.row(0)[1], 2);
    EXPECT_EQ(image.row(1)[0], 20);
    EXPECT_EQ(image.row(1)[1], 22);
}

TEST(ScaleFast, NeverSamplesBeyondTheSource) {
    // The last pixels' steps, where the product comes nearest to the source's size. The fixtures' blocks end before a
    // page that cannot be read.
    for (int32_t from : {1, 3, 7, 49, 1000, 9973})
        for (int32_t to : {1, 3, 10, 49, 997, 30011}) {
            const Image source = made(Storage::block, {from, 1}, 11), image(to, 1, 11);
            check_fast(image, source, {to, 1}, "one row");
        }
}

TEST(ScaleFast, ColourIntoGrayIsWeighedInIntegers) {
    const Image source(1, 1, 1), image(1, 1, 11);
    const struct {
        int red, green, blue, gray;
    } cases[] = {{255, 255, 255, 255}, {255, 0, 0, 76}, {0, 255, 0, 150}, {0, 0, 255, 27}, {10, 20, 30, 18}};
    for (const auto &[red, green, blue, gray] : cases) {
        source.call("FillRectRGB", red, green, blue);
        ASSERT_TRUE(scale(image, source, 1, 1));
        EXPECT_EQ(image.row(0)[0], gray) << red << ' ' << green << ' ' << blue;
    }
}

TEST(ScaleFast, AGraySourceLeavesTheAlphaOfColourAlone) {
    for (int32_t format : {11, 12, 13}) {
        const Image source(2, 2, format), image(2, 2, 2);
        source.call("FillRect", 90);
        image.call("FillRectRGB", 1, 2, 3, 77);
        ASSERT_TRUE(scale(image, source, 2, 2));
        const Bytes row = image.row(1);
        EXPECT_EQ(Bytes(row.begin(), row.begin() + 8), (Bytes{90, 90, 90, 77, 90, 90, 90, 77})) << format;
    }
}

TEST(ScaleFast, WhatCannotBeScaledIsRefused) {
    const Image image = in_memory({4, 4}, 2), working(4, 4, scaling_format), bad(4, 4, 0), closed(4, 4, 2);
    closed.call("Close");
    const Bytes before = storage_of(image);
    EXPECT_FALSE(scale(image, nullptr, 4, 4));
    for (const Image &source : {working, bad, closed, Image(4, 0, 2)}) EXPECT_FALSE(scale(image, source, 4, 4));
    for (Size size : {Size{0, 4}, Size{4, 0}, Size{0, 0}}) EXPECT_FALSE(scale(image, image, size.width, size.height));
    EXPECT_EQ(storage_of(image), before);
    for (const Image &destination : {working, bad, closed, Image(0, 4, 2), Image(4, 0, 2)})
        EXPECT_FALSE(scale(destination, image, 4, 4));
}

TEST(ScaleFast, AViewWithoutColumnsIsSampledInsideItsStorageAlone) {
    for (Storage storage : {Storage::memory, Storage::block, Storage::file})
        for (int32_t format : {2, 11, 13, 6}) {
            const Image parent = made(storage, {4, 4}, format);
            const Image empty(parent.call("ClipImage", 4, 0, 4, 4));
            ASSERT_EQ(empty.width(), 0);
            for (int32_t to : {2, 11, 12}) check_fast(in_memory({5, 5}, to), empty, {4, 5}, name_of(storage));
        }
    check_fast(in_memory({5, 5}, 2), Image(0, 3, 2), {4, 5}, "no bytes at all");
}

} // namespace
} // namespace kzb::test
