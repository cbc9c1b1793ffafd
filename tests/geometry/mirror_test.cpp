// Mirrors and the half turn in place.

#include "fixtures/storages.h"
#include "geometry/plain_mirror.h"
#include "geometry/shapes.h"

#include <gtest/gtest.h>

#include <functional>

namespace kzb::test {
namespace {

// What an operation does to an image, pixel by pixel.
using InPlace = std::function<void(const PlainImage &image)>;

struct Operation {
    const char *name;
    InPlace reference;
};
const Operation operations[] = {
    {"HMirror", mirror_horizontally}, {"VMirror", mirror_vertically}, {"Rotate180", turn_around}};

void check(const Operation &operation, const Image &image, const std::string &label) {
    SCOPED_TRACE(std::string(operation.name) + ", " + label + " " + std::to_string(image.width()) + " x " +
                 std::to_string(image.height()));
    Snapshots snapshots;
    const PlainImage expected = snapshots.of(image);
    operation.reference(expected);
    EXPECT_TRUE(image.call(operation.name).is_nil());
    EXPECT_EQ(difference(image, expected), "");
}

struct Size {
    int32_t width, height;
};

TEST(Mirrors, MoveTheChannelsOfEveryLayoutInEveryStorage) {
    uint32_t seed = 0;
    for (const Operation &operation : operations)
        for (const Layout &of : layouts())
            for (Storage storage : every_storage)
                for (Size size : {Size{1, 1}, {2, 1}, {1, 3}, {3, 3}, {4, 2}, {5, 7}, {33, 5}, {70, 4}, {131, 2}}) {
                    const auto image = make_image(storage, size.width, size.height, of.code, ++seed);
                    if (!image) continue;
                    check(operation, *image, std::string(of.name) + " in " + name_of(storage));
                    if (testing::Test::HasFailure()) return;
                }
}

TEST(Mirrors, MoveViewsOfEveryKind) {
    for (const Operation &operation : operations)
        for (const Layout &of : layouts())
            for (Storage storage : {Storage::memory, Storage::file})
                for (const Shape &shape : shapes_of(*make_image(storage, 9, 8, of.code, 3)))
                    check(operation, shape.image, std::string(of.name) + " " + shape.name);
}

TEST(Mirrors, MoveAFileOfSeveralBlocksAndAViewAcrossThem) {
    for (const Operation &operation : operations) {
        for (int32_t code : {2, 1, 12, 20}) check(operation, make_tall_image(6, code, 7), layout(code).name);
        const Image tall = make_tall_image(6, 7, 8);
        check(operation, Image(tall.call("ClipImage", 1, 3000, 4, 5001)), "view of several blocks");
    }
}

// The numbers 1, 2, 3 ... in the pixels of a gray image, row by row.
Image numbered(int32_t width, int32_t height) {
    const Image image(width, height, 11);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) image.call("FillRect", x, y, 1, 1, y * width + x + 1);
    return image;
}

std::vector<int> pixels_of(const Image &image) {
    std::vector<int> pixels;
    for (int32_t y = 0; y < image.height(); ++y) {
        const Bytes row = image.row(y);
        pixels.insert(pixels.end(), row.begin(), row.begin() + image.width());
    }
    return pixels;
}

TEST(HMirror, ReversesEachRow) {
    const Image image = numbered(3, 2);
    image.call("HMirror");
    EXPECT_EQ(pixels_of(image), (std::vector<int>{3, 2, 1, 6, 5, 4}));
}

TEST(HMirror, LeavesAnImageOfOneColumn) {
    const Image image = numbered(1, 4);
    image.call("HMirror");
    EXPECT_EQ(pixels_of(image), (std::vector<int>{1, 2, 3, 4}));
}

TEST(VMirror, ReversesTheOrderOfTheRows) {
    const Image image = numbered(2, 3);
    image.call("VMirror");
    EXPECT_EQ(pixels_of(image), (std::vector<int>{5, 6, 3, 4, 1, 2}));
}

TEST(VMirror, LeavesAnImageOfOneRow) {
    const Image image = numbered(4, 1);
    image.call("VMirror");
    EXPECT_EQ(pixels_of(image), (std::vector<int>{1, 2, 3, 4}));
}

TEST(Rotate180InPlace, LeavesTheMiddleRowOfAnOddHeightAsItIs) {
    const Image image = numbered(3, 3);
    image.call("Rotate180");
    EXPECT_EQ(pixels_of(image), (std::vector<int>{9, 8, 7, 4, 5, 6, 3, 2, 1}));
}

TEST(Rotate180InPlace, LeavesAnImageOfOneRow) {
    const Image image = numbered(4, 1);
    image.call("Rotate180");
    EXPECT_EQ(pixels_of(image), (std::vector<int>{1, 2, 3, 4}));
}

TEST(Mirrors, LeaveAnImageThatIsNeitherGrayNorColour) {
    const Image image = *make_image(Storage::memory, 5, 4, 14, 1);
    const Bytes before = storage_of(image);
    for (const Operation &operation : operations) image.call(operation.name);
    EXPECT_EQ(storage_of(image), before);
}

TEST(Mirrors, DoNothingToImagesThatAreNotUsable) {
    const Image closed(3, 3, 1);
    closed.call("Close");
    for (const Image &image : {Image(3, 3, 99), Image(3, 0, 1), Image(0, 3, 1), closed})
        for (const Operation &operation : operations) EXPECT_TRUE(image.call(operation.name).is_nil());
    const Image parent(4, 4, 1);
    const Image view(parent.call("ClipImage", 1, 1, 2, 2));
    parent.call("Close");
    for (const Operation &operation : operations) EXPECT_TRUE(view.call(operation.name).is_nil());
}

TEST(Mirrors, TwiceGiveTheImageBack) {
    for (const Operation &operation : operations) {
        const Image image = *make_image(Storage::file_view, 13, 9, 3, 4);
        const Bytes before = storage_of(image);
        image.call(operation.name);
        EXPECT_NE(storage_of(image), before);
        image.call(operation.name);
        EXPECT_EQ(storage_of(image), before);
    }
}

// The pixels of rows of 12 bytes that start 5 bytes apart.
struct OverlappingRows {
    Bytes bytes = random_bytes(64, 9);
    Value memory = block_of(bytes);
    Image image{Object::make("PictureKZB", memory, 4, 6, 1, 5)};

    Bytes row(size_t y) const { return Bytes(bytes.begin() + y * 5, bytes.begin() + y * 5 + 12); }
};

TEST(HMirror, OfRowsThatTheirCallerLaidOverEachOtherGoesRowByRow) {
    OverlappingRows rows;
    rows.image.call("HMirror");
    Bytes &expected = rows.bytes;
    for (size_t y = 0; y < 6; ++y)
        for (size_t x = 0; x < 2; ++x)
            for (size_t c = 0; c < 3; ++c) std::swap(expected[y * 5 + x * 3 + c], expected[y * 5 + (3 - x) * 3 + c]);
    EXPECT_EQ(rows.memory.bytes(), expected);
}

TEST(VMirror, OfRowsThatTheirCallerLaidOverEachOtherWritesTheUpperOneFirst) {
    OverlappingRows rows;
    rows.image.call("VMirror");
    for (size_t y = 0; y < 3; ++y) {
        const Bytes upper = rows.row(y), lower = rows.row(5 - y);
        std::copy(lower.begin(), lower.end(), rows.bytes.begin() + y * 5);
        std::copy(upper.begin(), upper.end(), rows.bytes.begin() + (5 - y) * 5);
    }
    EXPECT_EQ(rows.memory.bytes(), rows.bytes);
}

// Rows whose pixels end at the next row's first byte, and one byte beyond it.
TEST(Mirrors, OfRowsThatTouchAndThatLieOneByteOverEachOther) {
    for (const Operation &operation : operations)
        for (int32_t row_size : {12, 11})
            for (int32_t height : {2, 4, 5}) {
                SCOPED_TRACE(std::string(operation.name) + ", " + std::to_string(row_size) + " bytes a row");
                Bytes expected = random_bytes(64, 9);
                const Value memory = block_of(expected);
                const Image image(Object::make("PictureKZB", memory, 4, height, 1, row_size));
                const auto row = [&](int32_t y) {
                    const auto first = expected.begin() + y * row_size;
                    Bytes bytes(first, first + 12);
                    return bytes;
                };
                const auto put = [&](int32_t y, const Bytes &pixels, bool reversed) {
                    for (int32_t i = 0; i < 12; ++i)
                        expected[static_cast<size_t>(y * row_size + i)] =
                            pixels[static_cast<size_t>(reversed ? 9 - i / 3 * 3 + i % 3 : i)];
                };
                const std::string name = operation.name;
                for (int32_t y = 0; y < (name == "HMirror" ? height : height / 2); ++y) {
                    const int32_t opposite = name == "HMirror" ? y : height - 1 - y;
                    const Bytes upper = row(y), lower = row(opposite);
                    put(y, lower, name != "VMirror");
                    put(opposite, upper, name != "VMirror");
                }
                image.call(operation.name);
                EXPECT_EQ(memory.bytes(), expected);
            }
}

} // namespace
} // namespace kzb::test
