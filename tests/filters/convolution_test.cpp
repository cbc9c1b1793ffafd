// ApplyMatrix.

#include "filters/plain_convolution.h"
#include "fixtures/filter_check.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace kzb::test {
namespace {

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

// The pixel's own weight, and one for all the others.
Weights weights_of(int32_t centre, int32_t others) {
    Weights weights(25, others);
    weights[12] = centre;
    return weights;
}

void check_convolution(const Weights &weights, int32_t delta, double scale) {
    const Value matrix = array_of(weights);
    check_filter(
        {[&](const Image &source, const Value &dest) { return source.call("ApplyMatrix", dest, matrix, delta, scale); },
         convolution(weights, delta, scale), true, true});
}

// One case, onto a destination of the same size or onto the source itself.
void check_case(const Weights &weights, int32_t delta, double scale, int32_t width, int32_t height, int32_t format) {
    const Value matrix = array_of(weights);
    const FilterCheck check = {
        [&](const Image &source, const Value &dest) { return source.call("ApplyMatrix", dest, matrix, delta, scale); },
        convolution(weights, delta, scale), true};
    const Image source = *make_image(Storage::memory, width, height, format, 7);
    check_one(check, source, *make_image(Storage::memory, width, height, format, 8), "apart");
    check_one(check, source, source, "in place");
}

// A gray image of one row.
Image row_of(Bytes values) {
    const Image image(static_cast<int32_t>(values.size()), 1, 11);
    values.resize(static_cast<size_t>(image.integer("RowSize")));
    image.assign("Row", block_of(values), 0);
    return image;
}

// Some bytes of a row.
Bytes row_part(const Image &image, int32_t y, ptrdiff_t start, ptrdiff_t end) {
    const Bytes row = image.row(y);
    return Bytes(row.begin() + start, row.begin() + end);
}
Bytes row_start(const Image &image, int32_t y, ptrdiff_t count) {
    return row_part(image, y, 0, count);
}

// What becomes of a single gray pixel.
uint8_t pixel_through(uint8_t value, const Weights &weights, int32_t delta, double scale) {
    return Image(row_of({value}).call("ApplyMatrix", nullptr, array_of(weights), delta, scale)).row(0)[0];
}

TEST(ApplyMatrix, WeighsEveryChannelsNeighbourhood) {
    check_convolution({1, 2, -3, 4, 5, -6, 7, 8, 9, 2, 3, -2, 1, 0, 5, 4, -1, -4, 2, 3, 1, -7, 2, 3, -1}, -40, 0.25);
}

TEST(ApplyMatrix, SumsBeyond16Bits) {
    check_convolution({254, -90, 255, 17, 3,   -31, 100, 0,  -254, 60,  11,  -200, 400,
                       255, 33,  -5,  71, -71, 2,   -99, 80, 300,  -12, 254, -131},
                      -100, 1.0);
}

TEST(ApplyMatrix, SumsAroundTheLimitsOf16Bits) {
    // On white, 128 in weights is the last sum that fits.
    for (int32_t all : {127, 128, 129, 130, 255, 256, 257, 258}) {
        for (int32_t sign : {1, -1}) {
            Weights weights = weights_of(sign * (all / 2), 0);
            weights[13] = sign * (all - all / 2);
            const Image white(40, 3, 11), dest(40, 3, 11);
            white.call("FillRect", 255);
            white.call("ApplyMatrix", dest, array_of(weights), 0, sign / 129.0);
            EXPECT_EQ(row_start(dest, 1, 40), Bytes(40, result_of(static_cast<uint32_t>(255 * all), 0, 1 / 129.0)))
                << sign * all;
            check_one({[&](const Image &source, const Value &to) {
                           return source.call("ApplyMatrix", to, array_of(weights), 0, sign / 129.0);
                       },
                       convolution(weights, 0, sign / 129.0)},
                      white, white, "in place");
        }
    }
}

TEST(ApplyMatrix, SumsWrapAroundAt32Bits) {
    Weights weights = weights_of(-70000, 3);
    weights[6] = INT32_MIN;
    weights[13] = -2000000000;
    weights[11] = -2000000001;
    weights[22] = -16843009;
    check_convolution(weights, INT32_MAX, 1.0 / 8388608);
    for (int32_t format : {2, 11}) check_case(weights, -77, 1.0, 37, 11, format);
}

TEST(ApplyMatrix, EveryWidthAndHeightAroundTheMatrix) {
    const Weights weights = {3, 1, -4, 1, 5, 9, -2, 6, 5, 3, 5, -8, 9, 7, 9, 3, 2, 3, -8, 4, 6, 2, 6, 4, 3};
    for (int32_t width = 1; width <= 9; ++width)
        for (int32_t height = 1; height <= 7; ++height)
            for (int32_t format : {1, 9, 11, 12}) check_case(weights, 9, 0.05, width, height, format);
}

TEST(ApplyMatrix, RowsLongerThanAnyWorkBuffer) {
    for (int32_t format : {2, 11}) {
        check_case(weights_of(5, -1), 100, 1.0, 1111, 6, format);
        check_case(weights_of(200, -20), 100, 0.5, 1111, 6, format);
    }
}

TEST(ApplyMatrix, TheShorterFormsDoNotScaleNorAdd) {
    const Image source = row_of({0, 1, 100, 255, 7, 30});
    source.call("ApplyMatrix", source, array_of(weights_of(-1, 0)), 200);
    EXPECT_EQ(row_start(source, 0, 6), (Bytes{200, 199, 100, 0, 193, 170}));
    const Image other = row_of({9, 8, 7, 6, 5, 4});
    other.call("ApplyMatrix", other, array_of(weights_of(2, 0)));
    EXPECT_EQ(row_start(other, 0, 6), (Bytes{18, 16, 14, 12, 10, 8}));
}

TEST(ApplyMatrix, AnArrayOfAnotherSizeGivesNil) {
    const Image source = *make_image(Storage::memory, 5, 5, 2, 1);
    const Image dest = *make_image(Storage::memory, 5, 5, 2, 2);
    const Bytes before = storage_of(dest);
    for (size_t count : {0u, 1u, 9u, 24u, 26u})
        EXPECT_TRUE(source.call("ApplyMatrix", dest, array_of(Weights(count, 1))).is_nil()) << count;
    EXPECT_TRUE(source.call("ApplyMatrix", dest, nullptr).is_nil());
    EXPECT_TRUE(source.call("ApplyMatrix", nullptr, nullptr, 1, 2.0).is_nil());
    EXPECT_EQ(storage_of(dest), before);
}

TEST(ApplyMatrix, TheIdentityCopies) {
    const Image source = *make_image(Storage::memory, 9, 9, 2, 1);
    EXPECT_EQ(row_start(Image(source.call("ApplyMatrix", nullptr, array_of(weights_of(1, 0)))), 4, 36),
              row_start(source, 4, 36));
}

TEST(ApplyMatrix, WeightsFrom255OnAreSkipped) {
    for (int32_t marker : {255, 256, INT32_MAX}) EXPECT_EQ(pixel_through(77, weights_of(1, marker), 0, 1.0), 77);
    EXPECT_EQ(pixel_through(1, weights_of(254, 0), 0, 1.0), 254);
    EXPECT_EQ(pixel_through(1, weights_of(255, 0), 0, 1.0), 0);
    EXPECT_EQ(pixel_through(200, weights_of(255, 255), 31, 1.0), 31);
}

TEST(ApplyMatrix, TheSumIsClampedAfterDelta) {
    for (int v : {0, 1, 128, 255}) {
        EXPECT_EQ(pixel_through(static_cast<uint8_t>(v), weights_of(1, 0), -300, 1.0), 0);
        EXPECT_EQ(pixel_through(static_cast<uint8_t>(v), weights_of(1, 0), 300, 1.0), 255);
    }
    EXPECT_EQ(pixel_through(100, weights_of(-2, 0), 300, 1.0), 100);
}

TEST(ApplyMatrix, DeltaIsAddedBeforeTheScale) {
    EXPECT_EQ(pixel_through(100, weights_of(1, 0), 1, 0.5), 50);
    EXPECT_EQ(pixel_through(0, weights_of(1, 0), 1, 0.5), 0);
    EXPECT_EQ(pixel_through(100, weights_of(1, 0), 100, -1.0), 0);
    EXPECT_EQ(pixel_through(100, weights_of(-1, 0), 0, -1.0), 100);
}

TEST(ApplyMatrix, DeltaPlusSumWrapsAround) {
    EXPECT_EQ(pixel_through(1, weights_of(1, 0), INT32_MAX, 1.0), 0);
    EXPECT_EQ(pixel_through(1, weights_of(-1, 0), INT32_MIN, 1.0), 255);
    EXPECT_EQ(pixel_through(1, weights_of(1, 0), INT32_MAX, -1.0 / 2147483648.0 * 9), 9);
}

TEST(ApplyMatrix, ScalesThatAreNoFiniteNumber) {
    EXPECT_EQ(pixel_through(9, weights_of(1, 0), 0, not_a_number), 0);
    EXPECT_EQ(pixel_through(9, weights_of(1, 0), 0, infinity), 255);
    EXPECT_EQ(pixel_through(9, weights_of(-1, 0), 0, infinity), 0);
    // 0 times infinity
    EXPECT_EQ(pixel_through(0, weights_of(1, 0), 0, infinity), 0);
    EXPECT_EQ(pixel_through(9, weights_of(1, 0), 0, 1e300), 255);
}

TEST(ApplyMatrix, ASinglePixelIsItsWholeNeighbourhood) {
    EXPECT_EQ(pixel_through(7, weights_of(-4, 1), 2, 1.0), 7 * 20 + 2);
    EXPECT_EQ(pixel_through(10, weights_of(255, 1), 0, 1.0), 240);
}

TEST(ApplyMatrix, AMissingNeighbourIsThePixelsOwnColumnNotTheEdge) {
    // Two to the left only: column 1 has no such neighbour and takes itself, not column 0.
    Weights weights(25, 0);
    weights[10] = 1;
    const Image source = row_of({10, 20, 30, 40, 50, 60});
    const Image dest(6, 1, 11);
    source.call("ApplyMatrix", dest, array_of(weights));
    EXPECT_EQ(row_start(dest, 0, 6), (Bytes{10, 20, 10, 20, 30, 40}));
    // Two above.
    weights = Weights(25, 0);
    weights[2] = 1;
    const Image column(1, 5, 11), below(1, 5, 11);
    for (int32_t y = 0; y < 5; ++y) column.assign("Row", block_of(Bytes(64, static_cast<uint8_t>(10 * y + 10))), y);
    column.call("ApplyMatrix", below, array_of(weights));
    const int expected[] = {10, 20, 10, 20, 30};
    for (int32_t y = 0; y < 5; ++y) EXPECT_EQ(below.row(y)[0], expected[y]) << y;
}

TEST(ApplyMatrix, OntoItselfItReadsWhatItHasWritten) {
    Weights weights(25, 0);
    weights[11] = 1; // the left neighbour
    const Image image = row_of({10, 20, 30, 40, 50, 60});
    EXPECT_TRUE(image.same(Object(image.call("ApplyMatrix", image, array_of(weights)))));
    EXPECT_EQ(row_start(image, 0, 6), Bytes(6, 10));
}

TEST(ApplyMatrix, OverlappingRowsAreReadAsTheyHaveBecome) {
    // Six bytes a row, of which the image takes ten: each row runs into the next.
    Bytes memory = random_bytes(6 * 7 + 4, 5);
    const Image image(Object::make("PictureKZB", block_of(memory), 10, 7, 11, 6));
    Snapshots snapshots;
    const PlainImage plain = snapshots.of(image);
    // The model's storage ends at the last row's size; the image's owner answers for the bytes behind it.
    plain.storage->assign(memory.begin(), memory.end());
    const Weights weights = weights_of(3, 1);
    convolution(weights, 5, 0.04)(plain, plain);
    image.call("ApplyMatrix", image, array_of(weights), 5, 0.04);
    const Bytes found = Value(image.get("MemoryTarget")).bytes();
    EXPECT_EQ(found, *plain.storage);
}

TEST(ApplyMatrix, ANewDestinationChangesWidthAndHeight) {
    // 20 rows of 40 pixels in 40 rows of 20: they run on into the rows below, which overwrite them.
    const Image wide = *make_image(Storage::memory, 40, 20, 1, 3);
    const Image tall(wide.call("ApplyMatrix", nullptr, array_of(weights_of(1, 0))));
    EXPECT_EQ(tall.width(), 20);
    EXPECT_EQ(tall.height(), 40);
    EXPECT_EQ(row_start(tall, 7, 60), row_start(wide, 7, 60));
    EXPECT_EQ(row_start(tall, 20, 56), row_part(wide, 19, 64, 120));
    EXPECT_EQ(row_start(tall, 21, 64), Bytes(64));
    // 40 rows of 20 pixels in 20 rows of 40: the storage ends after the twentieth.
    const Image high = *make_image(Storage::memory, 20, 40, 1, 4);
    const Image low(high.call("ApplyMatrix", nullptr, array_of(weights_of(1, 0))));
    EXPECT_EQ(low.width(), 40);
    EXPECT_EQ(low.height(), 20);
    EXPECT_EQ(row_start(low, 7, 60), row_start(high, 7, 60));
    EXPECT_EQ(row_start(low, 19, 60), row_start(high, 19, 60));
    EXPECT_EQ(row_part(low, 19, 60, 128), Bytes(68));
}

TEST(ApplyMatrix, LeavesTheDestinationOfANeitherGrayNorColourImageAlone) {
    const Image source(4, 4, 14);
    const Image dest = *make_image(Storage::memory, 4, 4, 2, 5);
    const Bytes before = storage_of(dest);
    EXPECT_TRUE(dest.same(Object(source.call("ApplyMatrix", dest, array_of(weights_of(1, 1))))));
    EXPECT_EQ(storage_of(dest), before);
    EXPECT_TRUE(Image(source.call("ApplyMatrix", nullptr, array_of(weights_of(1, 1)))).valid());
}

TEST(ApplyMatrix, GivesNilForAnImageThatIsNotUsable) {
    const Value matrix = array_of(weights_of(1, 0));
    const Image invalid(3, 3, 99), flat(3, 0, 1), narrow(0, 3, 1), good(3, 3, 1), closed(3, 3, 1);
    closed.call("Close");
    EXPECT_TRUE(invalid.call("ApplyMatrix", nullptr, matrix).is_nil());
    EXPECT_TRUE(flat.call("ApplyMatrix", nullptr, matrix).is_nil());
    EXPECT_TRUE(closed.call("ApplyMatrix", nullptr, matrix).is_nil());
    EXPECT_TRUE(good.call("ApplyMatrix", closed, matrix).is_nil());
    EXPECT_TRUE(good.call("ApplyMatrix", flat, matrix).is_nil());
    // An image without columns asks for one without rows.
    EXPECT_TRUE(narrow.call("ApplyMatrix", nullptr, matrix).is_nil());
    EXPECT_FALSE(narrow.call("ApplyMatrix", good, matrix).is_nil());
}

} // namespace
} // namespace kzb::test
