// The stamp: a blur, then a smooth step between two colours.

#include "filters/box_reference.h"
#include "filters/plain_stamp.h"
#include "fixtures/filter_check.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace kzb::test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

Value call_stamp(const Image &image, const Value &dest, const Stamp &stamp) {
    return image.call("StampFilter", dest, stamp.radius, stamp.threshold, stamp.softness, Colour{stamp.black},
                      Colour{stamp.white});
}

// With and without a destination.
void expect_stamped(const Image &source, const Stamp &stamp, const std::string &label) {
    SCOPED_TRACE(label + ", " + layout(source.format()).name);
    Snapshots snapshots;
    const PlainImage from = snapshots.of(source);
    const PlainImage first = PlainImage::in_memory(from.width, from.height, from.format);
    box_blur(from, first, stamp.radius / 3.0);
    const PlainImage expected = stamped_model(first, stamp);

    const Image result(call_stamp(source, nullptr, stamp));
    EXPECT_EQ(difference(result, expected), "");
    const Image destination(from.width, from.height, from.format);
    const Image other(call_stamp(source, destination, stamp));
    EXPECT_FALSE(other.same(destination)) << "the destination is never the result";
    EXPECT_EQ(difference(destination, first), "") << "it receives the first pass of the blur";
    EXPECT_EQ(difference(other, expected), "");
    EXPECT_EQ(difference(source, from), "") << "in the source";
}

constexpr Stamp soft = {4.0, 0.5, 0.4, 0x102030, 0xf0c8e1};

TEST(StampFilter, EveryLayoutAndStorage) {
    uint32_t seed = 0;
    for (const Layout &of : layouts())
        for (Storage storage : every_storage)
            for (auto [width, height] : {std::pair(1, 1), std::pair(5, 7), std::pair(33, 6)})
                if (const auto image = make_image(storage, width, height, of.code, ++seed))
                    expect_stamped(*image, soft, name_of(storage));
    expect_stamped(make_tall_image(3, 2, 5), soft, "a file of several blocks");
}

TEST(StampFilter, InPlaceTheImageHoldsTheFirstPassOfTheBlur) {
    const Image image = *make_image(Storage::memory, 9, 7, 2, 3);
    Snapshots snapshots;
    const PlainImage first = snapshots.of(image);
    box_blur(first, first, soft.radius / 3.0);
    const PlainImage expected = stamped_model(first, soft);
    const Image result(call_stamp(image, image, soft));
    EXPECT_FALSE(result.same(image));
    EXPECT_EQ(difference(image, first), "");
    EXPECT_EQ(difference(result, expected), "");
}

TEST(StampFilter, TheBlurReachesAThirdOfTheRadiusThreeTimes) {
    for (double radius : {0.0, 2.9, 3.0, 5.9, 6.0, 100.0, 3e9, 1e300})
        expect_stamped(*make_image(Storage::memory, 11, 8, 2, 3), {radius, 0.5, 0.5, 0, 0xffffff},
                       "radius " + std::to_string(radius));
}

TEST(StampFilter, ANegativeOrNotFiniteRadiusCountsAsNone) {
    const Image image = *make_image(Storage::memory, 9, 7, 2, 3);
    const Bytes sharp = storage_of(Image(call_stamp(image, nullptr, {0, 0.5, 0.4, 0x102030, 0xf0c8e1})));
    for (double radius : {-1.0, -30.0, infinity, -infinity, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(storage_of(Image(call_stamp(image, nullptr, {radius, 0.5, 0.4, 0x102030, 0xf0c8e1}))), sharp)
            << radius;
}

// All levels through the step, without a blur.
Bytes step_of(int32_t format, const Stamp &stamp) {
    const Image image(256, 1, format);
    Bytes row;
    for (int v = 0; v < 256; ++v)
        for (int32_t b = 0; b < layout(format).pixel_size; ++b) row.push_back(static_cast<uint8_t>(v));
    image.assign("Row", block_of(row), 0);
    return Image(call_stamp(image, nullptr, stamp)).row(0);
}

TEST(StampFilter, WithoutSoftnessTheThresholdPartsBlackFromWhite) {
    const Bytes row = step_of(1, {0, 0.5, 0, 0x102030, 0xf0c8e1});
    for (size_t v = 0; v < 256; ++v)
        EXPECT_EQ(Bytes(row.begin() + static_cast<ptrdiff_t>(3 * v), row.begin() + static_cast<ptrdiff_t>(3 * v + 3)),
                  v < 127.5 ? (Bytes{0x10, 0x20, 0x30}) : (Bytes{0xf0, 0xc8, 0xe1}))
            << v;
    // A level that equals the threshold is white.
    const Bytes exact = step_of(11, {0, 0.2, 0, 0, 0xffffff});
    EXPECT_EQ(exact[50], 0);
    EXPECT_EQ(exact[51], 255);
}

TEST(StampFilter, TheStepIsSmooth) {
    const Bytes row = step_of(11, {0, 0.5, 1, 0, 0x00c800});
    EXPECT_EQ(row[0], 0);
    EXPECT_EQ(row[51], 20);   // u = 0.2: 0.04 * 2.6 * 200 = 20.8
    EXPECT_EQ(row[204], 179); // u = 0.8: 0.64 * 1.4 * 200 = 179.2
    EXPECT_EQ(row[255], 200);
}

TEST(StampFilter, TheColoursMayBeTheOtherWayRound) {
    const Bytes row = step_of(11, {0, 0.5, 1, 0x00c800, 0});
    EXPECT_EQ(row[0], 200);
    EXPECT_EQ(row[51], 179);
    EXPECT_EQ(row[255], 0);
}

TEST(StampFilter, GrayGoesThroughTheGreenTable) {
    const Stamp stamp = {0, 0.5, 0, 0x112233, 0xaabbcc};
    const Bytes row = step_of(11, stamp);
    EXPECT_EQ(row[0], 0x22);
    EXPECT_EQ(row[255], 0xbb);
}

TEST(StampFilter, AlphaIsNotWritten) {
    for (int32_t code : {2, 4, 7, 9, 12, 13}) {
        const Image result(call_stamp(*make_image(Storage::memory, 9, 7, code, 3), nullptr, soft));
        for (int32_t y = 0; y < 7; ++y)
            for (int32_t x = 0; x < 9; ++x)
                EXPECT_EQ(result.row(y)[static_cast<size_t>(x * layout(code).pixel_size + layout(code).alpha)], 0);
    }
}

TEST(StampFilter, ExtremeThresholdsAndSoftnessesStayInRange) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (double threshold : {-1.0, 0.0, 0.3, 1.0, 2.0, 1e300, infinity, -infinity, nan})
        for (double softness : {-1.0, 0.0, 1e-300, 3.0, 1e300, infinity, nan}) {
            const Stamp stamp = {0, threshold, softness, 0x40c020, 0xc04080};
            const Bytes row = step_of(1, stamp);
            for (int v = 0; v < 256; ++v) {
                EXPECT_EQ(row[static_cast<size_t>(3 * v)], stamped(stamp, Channel::red, v)) << v;
                EXPECT_EQ(row[static_cast<size_t>(3 * v + 1)], stamped(stamp, Channel::green, v)) << v;
            }
        }
    EXPECT_EQ(step_of(11, {0, nan, 0, 0x404040, 0xc0c0c0})[100], 0) << "what is not a number is 0";
}

TEST(StampFilter, GivesNilForAnImageThatIsNotUsable) {
    const Image invalid(3, 3, 99), flat(3, 0, 1), source(3, 3, 1), closed(3, 3, 1);
    closed.call("Close");
    EXPECT_TRUE(call_stamp(invalid, nullptr, soft).is_nil());
    EXPECT_TRUE(call_stamp(flat, nullptr, soft).is_nil());
    EXPECT_TRUE(call_stamp(closed, nullptr, soft).is_nil());
    EXPECT_TRUE(call_stamp(source, invalid, soft).is_nil());
    EXPECT_TRUE(call_stamp(source, closed, soft).is_nil());
}

TEST(StampFilter, ALayoutNeitherGrayNorColourGivesAnEmptyImage) {
    const Image source(3, 2, 14);
    fill_storage(source, random_bytes(static_cast<size_t>(source.integer("TotalSize")), 3));
    const Image result(call_stamp(source, nullptr, soft));
    EXPECT_EQ(result.format(), 14);
    EXPECT_EQ(storage_of(result), Bytes(storage_of(source).size()));
}

} // namespace
} // namespace kzb::test
