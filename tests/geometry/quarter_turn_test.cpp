// The half turn and the quarter turns into a destination.

#include "fixtures/filter_check.h"
#include "geometry/plain_turns.h"
#include "geometry/shapes.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kzb::test {
namespace {

FilterCheck check_of(const char *method) {
    FilterCheck check;
    const std::string name = method;
    check.operation = [name](const Image &source, const Value &dest) { return source.call(name.c_str(), dest); };
    check.transposed = name != "Rotate180";
    const Target target = name.starts_with("Rotate90") ? counter_clockwise : clockwise;
    if (!check.transposed)
        check.reference = turn_half;
    else if (name.ends_with("slow"))
        check.reference = [target](const PlainImage &s, const PlainImage &d) { turn_by_rows(target, s, d); };
    else
        check.reference = [target](const PlainImage &s, const PlainImage &d) { turn_by_tiles(target, s, d); };
    return check;
}

const char *const methods[] = {"Rotate180", "Rotate90slow", "Rotate270slow", "Rotate90", "Rotate270"};

class EveryTurn : public testing::TestWithParam<const char *> {};

INSTANTIATE_TEST_SUITE_P(, EveryTurn, testing::ValuesIn(methods), [](const auto &method) { return method.param; });

TEST_P(EveryTurn, MoveEachPixelInTheStatedOrder) {
    check_filter(check_of(GetParam()));
}

TEST_P(EveryTurn, MoveViewsOfEveryKindAndIntoThem) {
    const FilterCheck check = check_of(GetParam());
    for (const Layout &of : layouts()) {
        for (Storage storage : {Storage::memory, Storage::file}) {
            if (storage == Storage::file && of.code != 4) continue;
            for (const Shape &shape : shapes_of(*make_image(storage, 9, 8, of.code, 3))) {
                check_one(check, shape.image, Object(), shape.name);
                check_one(check, shape.image, *make_image(storage, 9, 9, 7, 4), shape.name + " into BGRA");
                check_one(check, *make_image(storage, 5, 6, 12, 5), shape.image, "gray with alpha into " + shape.name);
                check_one(check, *make_image(storage, 5, 6, 4, 6), shape.image, "ARGB into " + shape.name);
                check_one(check, shape.image, shape.image, shape.name + " onto itself");
            }
        }
    }
}

TEST_P(EveryTurn, GiveNilForImagesThatAreNotUsable) {
    const Image closed(3, 3, 1), source(3, 3, 1);
    closed.call("Close");
    for (const Image &image : {Image(3, 3, 99), Image(3, 0, 1), closed}) {
        EXPECT_TRUE(image.call(GetParam(), nullptr).is_nil());
        EXPECT_TRUE(image.call(GetParam(), source).is_nil());
        EXPECT_TRUE(source.call(GetParam(), image).is_nil()) << "as a destination";
    }
}

TEST_P(EveryTurn, ReturnTheDestinationUntouchedForAnImageThatIsNeitherGrayNorColour) {
    const Image source = *make_image(Storage::memory, 5, 4, 14, 1);
    const Image dest = *make_image(Storage::memory, 5, 5, 2, 2);
    const Bytes before = storage_of(dest);
    EXPECT_TRUE(dest.same(Object(source.call(GetParam(), dest))));
    EXPECT_EQ(storage_of(dest), before);
    const Image made(source.call(GetParam(), nullptr));
    EXPECT_EQ(made.format(), 14);
    EXPECT_EQ(storage_of(made), Bytes(storage_of(made).size()));
}

TEST_P(EveryTurn, WorkWithoutAnArgumentWhereItIsOptional) {
    const Image source = *make_image(Storage::memory, 5, 3, 1, 1);
    // The half turn without an argument is the one in place.
    if (std::string(GetParam()) == "Rotate180")
        EXPECT_TRUE(source.call(GetParam()).is_nil());
    else
        EXPECT_EQ(storage_of(Image(source.call(GetParam()))), storage_of(Image(source.call(GetParam(), nullptr))));
}

TEST_P(EveryTurn, KeepColoursRightBetweenOrders) {
    const Image source(2, 2, 2);
    source.call("FillRectRGB", 10, 20, 30, 40);
    const Image dest(2, 2, 7);
    source.call(GetParam(), dest);
    const Bytes row = dest.row(1);
    EXPECT_EQ(Bytes(row.begin(), row.begin() + 8), (Bytes{30, 20, 10, 40, 30, 20, 10, 40}));
}

TEST_P(EveryTurn, GiveNilWhereTheResultIsTooLarge) {
    // Turned upright each of the 33,554,432 rows takes 64 bytes.
    const Image wide(1 << 25, 1, 11);
    ASSERT_TRUE(wide.valid());
    EXPECT_EQ(wide.call(GetParam(), nullptr).is_nil(), std::string(GetParam()) != "Rotate180");
}

Image corners() {
    const Image image(3, 2, 11);
    image.call("FillRect", 0, 0, 1, 1, 1); // top left
    image.call("FillRect", 2, 0, 1, 1, 2); // top right
    image.call("FillRect", 0, 1, 1, 1, 3); // bottom left
    image.call("FillRect", 2, 1, 1, 1, 4); // bottom right
    return image;
}

TEST(Rotate90, BringsTheTopRightPixelToTheTopLeft) {
    for (const char *method : {"Rotate90", "Rotate90slow"}) {
        const Image turned(corners().call(method, nullptr));
        EXPECT_EQ(turned.width(), 2);
        EXPECT_EQ(turned.height(), 3);
        EXPECT_EQ(turned.row(0)[0], 2);
        EXPECT_EQ(turned.row(0)[1], 4);
        EXPECT_EQ(turned.row(2)[0], 1);
    }
}

TEST(Rotate270, BringsTheBottomLeftPixelToTheTopLeft) {
    for (const char *method : {"Rotate270", "Rotate270slow"}) {
        const Image turned(corners().call(method, nullptr));
        EXPECT_EQ(turned.width(), 2);
        EXPECT_EQ(turned.height(), 3);
        EXPECT_EQ(turned.row(0)[0], 3);
        EXPECT_EQ(turned.row(0)[1], 1);
        EXPECT_EQ(turned.row(2)[1], 2);
    }
}

TEST(Turns, ReachAllBlocksOfFilesOnBothSides) {
    // 40,960 bytes a row are 409 rows a block, 4,096 bytes a row 4,096.
    const Image wide = *make_image(Storage::file, 10000, 420, 2, 1);
    check_one(check_of("Rotate180"), wide, *make_image(Storage::file, 10000, 420, 2, 2), "file to file");
    const Image tall = *make_image(Storage::file, 420, 10000, 7, 2);
    check_one(check_of("Rotate90"), wide, tall, "file to file");
    check_one(check_of("Rotate270slow"), tall, wide, "file to file");
}

TEST(QuarterTurns, SlowAndTiledGiveTheSameBytes) {
    for (const Layout &of : layouts()) {
        const Image source = *make_image(Storage::memory, 75, 41, of.code, 5);
        for (const char *method : {"Rotate90", "Rotate270"}) {
            const std::string slow = std::string(method) + "slow";
            EXPECT_EQ(storage_of(Image(source.call(method, nullptr))),
                      storage_of(Image(source.call(slow.c_str(), nullptr))));
        }
    }
}

// Turns a copy of a square into itself and gives its storage.
Bytes turned_into_itself(const char *method, int32_t edge) {
    const Image image = *make_image(Storage::memory, edge, edge, 1, 6);
    image.call(method, image);
    return storage_of(image);
}

TEST(QuarterTurns, OfASquareIntoItselfFollowTheOrderOfTheirTiles) {
    EXPECT_NE(turned_into_itself("Rotate90", 9), turned_into_itself("Rotate90slow", 9)) << "two tiles each way";
    EXPECT_NE(turned_into_itself("Rotate270", 9), turned_into_itself("Rotate270slow", 9));
    for (int32_t edge : {3, 4, 5, 9, 20, 37}) {
        for (const char *method : methods) {
            const Image image = *make_image(Storage::memory, edge, edge, 2, 6);
            check_one(check_of(method), image, image, method);
        }
    }
}

TEST(QuarterTurns, WithATileEdgeBelowOneDoAsTheSlowOnes) {
    for (int32_t edge : {1, 2}) {
        EXPECT_EQ(turned_into_itself("Rotate90", edge), turned_into_itself("Rotate90slow", edge));
        EXPECT_EQ(turned_into_itself("Rotate270", edge), turned_into_itself("Rotate270slow", edge));
    }
    // Blocks of other sizes than the images, as user code may set them.
    for (int32_t blocks : {0, 1 << 30}) {
        const Image image = *make_image(Storage::memory, 12, 12, 1, 6);
        const Image other = *make_image(Storage::memory, 12, 12, 1, 6);
        image.set("MappingBlockSize", blocks);
        image.call("Rotate90", image);
        other.call("Rotate90slow", other);
        EXPECT_EQ(storage_of(image), storage_of(other)) << "one tile";
    }
}

TEST(Turns, IntoRowsThatTheirCallerLaidOverEachOtherGoInTheStatedOrder) {
    const Image source = *make_image(Storage::memory, 6, 4, 1, 3);
    for (const char *method : methods) {
        const bool half = std::string(method) == "Rotate180";
        const int32_t width = half ? 6 : 4, height = half ? 4 : 6;
        const Value memory = block_of(random_bytes(128, 4));
        Bytes expected = memory.bytes();
        const Image dest(Object::make("PictureKZB", memory, width, height, 1, 7));
        const auto put = [&](int64_t x, int64_t y, int64_t to_x, int64_t to_y) {
            const Bytes row = source.row(static_cast<int32_t>(y));
            std::copy_n(row.begin() + x * 3, 3, expected.begin() + to_y * 7 + to_x * 3);
        };
        for (int64_t y = 0; y < 4; ++y) {
            for (int64_t i = 0; i < 6; ++i) {
                if (half)
                    put(5 - i, y, i, 3 - y);
                else if (std::string(method).starts_with("Rotate90slow"))
                    put(i, y, y, 5 - i);
                else if (std::string(method) == "Rotate270slow")
                    put(i, y, 3 - y, i);
            }
        }
        if (std::string(method) == "Rotate90" || std::string(method) == "Rotate270") {
            // Tiles of two.
            for (int64_t top = 0; top < 4; top += 2)
                for (int64_t left = 0; left < 6; left += 2)
                    for (int64_t y = top; y < top + 2; ++y)
                        for (int64_t x = left; x < left + 2; ++x)
                            if (std::string(method) == "Rotate90")
                                put(x, y, y, 5 - x);
                            else
                                put(x, y, 3 - y, x);
        }
        source.call(method, dest);
        EXPECT_EQ(memory.bytes(), expected) << method;
    }
}

} // namespace
} // namespace kzb::test
