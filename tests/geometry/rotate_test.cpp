// Rotation by any angle.

#include "fixtures/storages.h"
#include "geometry/plain_rotation.h"
#include "geometry/shapes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace kzb::test {
namespace {

constexpr Colours background = {200, 100, 50, 77, 30};

Value rotate(const Image &image, double angle, const Colours &colours = background) {
    return image.call("Rotate", angle, colours[0], colours[1], colours[2], colours[4], colours[3]);
}

// Rotates an image into a new one in memory.
void check(const Image &image, double angle, const std::string &label) {
    SCOPED_TRACE(label + ", " + std::to_string(image.width()) + " x " + std::to_string(image.height()) + " by " +
                 std::to_string(angle));
    Snapshots snapshots;
    const PlainImage source = snapshots.of(image);
    const PlainImage expected = rotated(source, angle, background);
    const Image result(rotate(image, angle));
    ASSERT_TRUE(result);
    EXPECT_EQ(result.format(), image.format());
    EXPECT_EQ(result.width(), expected.width);
    EXPECT_EQ(result.height(), expected.height);
    EXPECT_EQ(difference(result, expected), "");
    EXPECT_EQ(difference(image, source), "") << "in the source";
}

struct Size {
    int32_t width, height;
};

const double angles[] = {1e-9,  0.5, 1,     17,  30,    44.999, 45,    45.001, 60,  89,  89.999,  91,     133,
                         134.9, 135, 135.1, 170, 179.5, 180.25, 200,   225,    226, 260, 269.999, 271,    300,
                         314.9, 315, 315.5, 330, 343,   359,    359.9, -17,    -60, 400, 1000.5,  -1234.5};

TEST(Rotate, ShearsEveryLayoutByEveryAngle) {
    uint32_t seed = 0;
    for (const Layout &of : layouts()) {
        for (Size size : {Size{1, 1}, {2, 1}, {1, 3}, {3, 2}, {5, 7}, {16, 3}, {33, 20}}) {
            const Image image = *make_image(Storage::memory, size.width, size.height, of.code, ++seed);
            for (double angle : angles) check(image, angle, of.name);
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(Rotate, ShearsEveryStorage) {
    uint32_t seed = 0;
    for (const Layout &of : layouts())
        for (Storage storage : every_storage)
            for (Size size : {Size{1, 1}, {5, 7}, {35, 4}})
                if (const auto image = make_image(storage, size.width, size.height, of.code, ++seed))
                    for (double angle : {17.0, 100.0, 200.0, 300.0, 343.0})
                        check(*image, angle, std::string(of.name) + " in " + name_of(storage));
}

TEST(Rotate, ShearsViewsOfEveryKind) {
    for (const Layout &of : layouts())
        for (const Shape &shape : shapes_of(*make_image(Storage::memory, 9, 8, of.code, 3)))
            for (double angle : {17.0, 100.0, 200.0, 300.0, 343.0})
                check(shape.image, angle, std::string(of.name) + " " + shape.name);
}

TEST(Rotate, ShearsAFileOfSeveralBlocksAndAViewAcrossThem) {
    for (double angle : {2.0, 359.0, 91.0}) check(make_tall_image(7, 2, 1), angle, "file");
    const Image tall = make_tall_image(7, 1, 8);
    check(Image(tall.call("ClipImage", 1, 3000, 5, 5001)), 1.5, "view of several blocks");
}

TEST(Rotate, ShearsRowsThatOverlapAndImagesWithoutColumns) {
    Bytes bytes = random_bytes(17 * 20 + 64, 9);
    const Image whole(Object::make("PictureKZB", block_at(bytes.data()), 10, 20, 1, 17));
    const Image overlapping(whole.call("ClipImage", 0, 0, 10, 18));
    for (double angle : {17.0, 100.0, 343.0}) check(overlapping, angle, "overlapping rows");
    const Image empty(overlapping.call("ClipImage", 3, 0, 0, 18));
    for (double angle : {20.0, 340.0}) check(empty, angle, "no columns");
}

TEST(Rotate, ShearsLargeImagesStripByStrip) {
    // Wider than a strip of columns in every direction, and shifted by more rows than a strip spans.
    const Image image = *make_image(Storage::memory, 1300, 900, 1, 5);
    for (double angle : {0.3, 30.0, 318.0}) check(image, angle, "large");
}

TEST(Rotate, ByWholeTurnsGivesTheImageItself) {
    const Image image = *make_image(Storage::memory, 5, 4, 2, 1);
    const Bytes before = storage_of(image);
    for (double angle : {0.0, -0.0, 360.0, -360.0, 720.0, 3600000.0, -3600000.0})
        EXPECT_TRUE(image.same(Object(rotate(image, angle)))) << angle;
    EXPECT_EQ(storage_of(image), before);
}

TEST(Rotate, ByQuartersIsTheLosslessTurn) {
    const Image image = *make_image(Storage::memory, 5, 4, 2, 1);
    const struct {
        double angle;
        const char *method;
    } turns[] = {{90, "Rotate90slow"},   {450, "Rotate90slow"},  {-270, "Rotate90slow"},
                 {180, "Rotate180"},     {-180, "Rotate180"},    {540, "Rotate180"},
                 {270, "Rotate270slow"}, {-90, "Rotate270slow"}, {-450, "Rotate270slow"}};
    for (const auto &[angle, method] : turns) {
        const Image result(rotate(image, angle)), expected(image.call(method, nullptr));
        EXPECT_EQ(result.width(), expected.width()) << angle;
        EXPECT_EQ(storage_of(result), storage_of(expected)) << angle;
    }
    // Alpha and all other bytes but padding, even where shears would leave gray's alpha.
    const Image gray = *make_image(Storage::memory, 5, 4, 12, 1);
    EXPECT_EQ(storage_of(Image(rotate(gray, 90))), storage_of(Image(gray.call("Rotate90", nullptr))));
}

TEST(Rotate, By45DegreesMakesASquareTheRootOfTwoAsWideWithBackgroundInTheCorners) {
    const Image image(20, 20, 1);
    image.call("FillRect", 90);
    const Image result(image.call("Rotate", 45.0, 255, 0, 0, 0, 0));
    EXPECT_EQ(result.width(), 29);
    EXPECT_EQ(result.height(), 29);
    const auto pixel = [&](int32_t x, int32_t y) {
        const Bytes row = result.row(y);
        return Bytes(row.begin() + x * 3, row.begin() + x * 3 + 3);
    };
    for (int32_t x : {0, 28})
        for (int32_t y : {0, 28}) EXPECT_EQ(pixel(x, y), (Bytes{255, 0, 0})) << x << ' ' << y;
    EXPECT_EQ(pixel(14, 14), (Bytes{90, 90, 90}));
}

TEST(Rotate, TurnsCounterClockwiseAsRotate90Does) {
    // A dark mark right of the middle goes up.
    const Image image(41, 41, 11);
    image.call("FillRect", 255);
    image.call("FillRect", 35, 20, 3, 3, 0);
    const Image result(image.call("Rotate", 30.0, 0, 0, 0, 0, 255));
    int32_t darkest_x = 0, darkest_y = 0, darkest = 255;
    for (int32_t y = 0; y < result.height(); ++y) {
        const Bytes row = result.row(y);
        for (int32_t x = 0; x < result.width(); ++x)
            if (row[static_cast<size_t>(x)] < darkest)
                darkest = row[static_cast<size_t>(x)], darkest_x = x, darkest_y = y;
    }
    EXPECT_LT(darkest, 60);
    EXPECT_GT(darkest_x, result.width() / 2 + 8);
    EXPECT_LT(darkest_y, result.height() / 2 - 4);
}

TEST(Rotate, OfAGrayImageUsesTheGrayArgumentAlone) {
    const Image image = *make_image(Storage::memory, 9, 6, 11, 2);
    EXPECT_EQ(storage_of(Image(image.call("Rotate", 20.0, 1, 2, 3, 4, 99))),
              storage_of(Image(image.call("Rotate", 20.0, 250, 251, 252, 253, 99))));
    EXPECT_NE(storage_of(Image(image.call("Rotate", 20.0, 1, 2, 3, 4, 99))),
              storage_of(Image(image.call("Rotate", 20.0, 1, 2, 3, 4, 98))));
}

TEST(Rotate, OfColoursUsesNoGrayAndAlphaOnlyWhereThereIsSome) {
    const Image rgb = *make_image(Storage::memory, 9, 6, 1, 2);
    EXPECT_EQ(storage_of(Image(rgb.call("Rotate", 20.0, 1, 2, 3, 4, 5))),
              storage_of(Image(rgb.call("Rotate", 20.0, 1, 2, 3, 40, 50))));
    const Image rgba = *make_image(Storage::memory, 9, 6, 2, 2);
    EXPECT_NE(storage_of(Image(rgba.call("Rotate", 20.0, 1, 2, 3, 4, 5))),
              storage_of(Image(rgba.call("Rotate", 20.0, 1, 2, 3, 40, 5))));
}

TEST(Rotate, LeavesTheAlphaOfGrayAsANewImageHasIt) {
    const Image image(9, 6, 12);
    image.call("FillRect", 200);
    const Image result(image.call("Rotate", 20.0, 1, 2, 3, 4, 99));
    for (int32_t y = 0; y < result.height(); ++y) {
        const Bytes row = result.row(y);
        for (int32_t x = 0; x < result.width(); ++x) EXPECT_EQ(row[static_cast<size_t>(x) * 2 + 1], 0);
    }
    EXPECT_EQ(result.row(0)[0], 99);
}

TEST(Rotate, StoresTheLowBytesOfTheBackground) {
    const Image image = *make_image(Storage::memory, 9, 6, 2, 2);
    EXPECT_EQ(storage_of(Image(image.call("Rotate", 20.0, 256 + 7, -1, 0x7FFFFF21, INT32_MIN + 3, 0))),
              storage_of(Image(image.call("Rotate", 20.0, 7, 255, 0x21, 3, 0))));
}

TEST(Rotate, By10And370DegreesGivesTheSameBytes) {
    const Image image = *make_image(Storage::memory, 33, 20, 2, 2);
    EXPECT_EQ(storage_of(Image(rotate(image, 10))), storage_of(Image(rotate(image, 370))));
}

TEST(Rotate, TakesManyTurnsAsTheirRepeatedSubtractionDoes) {
    const Image image = *make_image(Storage::memory, 33, 20, 1, 2);
    for (double angle : {1e6 + 17, 1e6 + 17.3, -1e6 - 17.3, 123456.789, -98765.4321, 3959.9999999999995, -365.3,
                         -720.0000000001, 1e8 + 0.7, -1e8 - 0.7}) {
        const double left = within_a_turn(angle);
        ASSERT_NE(left, 0);
        EXPECT_EQ(storage_of(Image(rotate(image, angle))), storage_of(Image(rotate(image, left)))) << angle;
        check(image, angle, "many turns");
    }
}

TEST(Rotate, EndsForHugeAngles) {
    const Image image = *make_image(Storage::memory, 12, 9, 1, 2);
    for (double angle : {1e300, 1e18, std::numeric_limits<double>::max(), -1e300, -1e18}) {
        double left = std::fmod(angle, 360.0);
        if (left < 0) left += 360;
        EXPECT_EQ(storage_of(Image(rotate(image, angle))), storage_of(Image(rotate(image, left)))) << angle;
    }
}

TEST(Rotate, ByATinyNegativeAngleIsByTheSumWithAWholeTurn) {
    // Which is 360, and not brought back to 0.
    const Image image = *make_image(Storage::memory, 12, 9, 1, 2);
    ASSERT_EQ(within_a_turn(-1e-20), 360);
    EXPECT_FALSE(image.same(Object(rotate(image, -1e-20))));
    check(image, -1e-20, "tiny");
    check(image, -1e-300, "tinier");
}

TEST(Rotate, ByAnAngleThatIsNotFiniteGivesNil) {
    const Image image(4, 4, 1);
    const double infinity = std::numeric_limits<double>::infinity();
    for (double angle : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_TRUE(rotate(image, angle).is_nil());
}

TEST(Rotate, GivesNilForImagesThatAreNotUsable) {
    const Image closed(3, 3, 1);
    closed.call("Close");
    for (const Image &image : {Image(3, 3, 99), Image(3, 0, 1), closed})
        for (double angle : {20.0, 90.0, 110.0, 180.0, 270.0}) EXPECT_TRUE(rotate(image, angle).is_nil()) << angle;
}

TEST(Rotate, GivesNilForALayoutThatIsNeitherGrayNorColourUnlessTheTurnIsLossless) {
    const Image image(4, 3, 14);
    for (double angle : {20.0, 110.0, 200.0, 290.0}) EXPECT_TRUE(rotate(image, angle).is_nil()) << angle;
    EXPECT_TRUE(image.same(Object(rotate(image, 0))));
    EXPECT_EQ(Image(rotate(image, 90)).width(), 3);
}

TEST(Rotate, GivesNilWhereAQuarterTurnCannotBeMade) {
    const Image wide(1 << 25, 1, 11);
    ASSERT_TRUE(wide.valid());
    for (double angle : {80.0, 90.0, 260.0, 270.0}) EXPECT_TRUE(rotate(wide, angle).is_nil()) << angle;
}

TEST(Rotate, GivesNilWhereTheResultIsTooLarge) {
    const Image wide(1 << 25, 1, 11);
    for (double angle : {1.0, 30.0, 179.0}) EXPECT_TRUE(rotate(wide, angle).is_nil()) << angle;
    // Nothing of it is read.
    Bytes bytes(1);
    const Image tall(Object::make("PictureKZB", block_at(bytes.data()), 1, 1 << 30, 11, 1));
    ASSERT_TRUE(tall.valid());
    for (double angle : {20.0, 340.0}) EXPECT_TRUE(rotate(tall, angle).is_nil()) << angle;
}

} // namespace
} // namespace kzb::test
