// Sharpening in place against a reference image.

#include "filters/gray_lines.h"
#include "filters/plain_unsharp.h"
#include "fixtures/storages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace kzb::test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

void expect_sharpened(const Image &image, const Image &reference, double amount, int32_t threshold,
                      const std::string &label) {
    SCOPED_TRACE(label + ", " + layout(image.format()).name);
    Snapshots snapshots;
    const PlainImage expected = snapshots.of(image), plain_reference = snapshots.of(reference);
    unsharp(expected, plain_reference, amount, threshold);
    EXPECT_TRUE(image.call("UnsharpFilter", reference, amount, threshold).boolean());
    EXPECT_EQ(difference(image, expected), "") << "in the image";
    EXPECT_EQ(difference(reference, plain_reference), "") << "in the reference";
}

// One gray pixel against another.
uint8_t gray_sharpened(uint8_t a, uint8_t b, double amount, int32_t threshold) {
    const Image image = gray_row({a}), reference = gray_row({b});
    EXPECT_TRUE(image.call("UnsharpFilter", reference, amount, threshold).boolean());
    EXPECT_EQ(reference.row(0)[0], b);
    return image.row(0)[0];
}

TEST(UnsharpFilter, EveryLayoutAndStorage) {
    uint32_t seed = 0;
    for (const Layout &of : layouts()) {
        for (auto [width, height] : {std::pair(1, 1), std::pair(5, 7), std::pair(33, 4), std::pair(70, 3)}) {
            for (Storage storage : every_storage) {
                const auto image = make_image(storage, width, height, of.code, ++seed);
                if (!image) continue;
                const Image memory = *make_image(Storage::memory, width, height, of.code, ++seed);
                expect_sharpened(*image, memory, 0.3, 5, name_of(storage));
                expect_sharpened(memory, *image, 0.3, 5, std::string("against ") + name_of(storage));
                expect_sharpened(*image, *image, 0.3, 0, std::string("against itself, ") + name_of(storage));
            }
        }
    }
}

TEST(UnsharpFilter, FilesOfSeveralBlocks) {
    const Image tall = make_tall_image(3, 2, 5);
    expect_sharpened(tall, *make_image(Storage::memory, 3, tall_height, 2, 6), 0.3, 5, "a file");
    expect_sharpened(*make_image(Storage::memory, 3, tall_height, 2, 6), tall, 0.3, 5, "against a file");
    expect_sharpened(tall, make_tall_image(3, 2, 7), 0.3, 5, "two files");
}

TEST(UnsharpFilter, OverlappingViewsKeepTheStatedOrder) {
    for (Storage storage : {Storage::memory, Storage::block, Storage::file}) {
        for (int32_t code : {1, 2, 10, 11, 13, 17}) {
            const Image parent = *make_image(storage, 12, 9, code, 4);
            const Image low(parent.call("ClipImage", 1, 1, 9, 7)), high(parent.call("ClipImage", 0, 0, 9, 7));
            expect_sharpened(low, high, 0.2, 0, "a view down and right of its reference");
            fill_storage(parent, random_bytes(storage_of(parent).size(), 5));
            expect_sharpened(high, low, 0.2, 0, "a view up and left of its reference");
        }
    }
}

TEST(UnsharpFilter, ImagesOverTheSameBytesKeepTheStatedOrder) {
    // The reference's channels are the image's next ones, its last channel the next pixel's first, or the other way
    // round.
    for (int32_t code : {1, 2, 5, 12}) {
        for (auto [image_start, reference_start] :
             {std::pair(0, 1), std::pair(1, 0), std::pair(0, 3), std::pair(2, 0)}) {
            Bytes bytes = random_bytes(40 * 9 + 8, 5), expected = bytes;
            const auto over = [&](int start) {
                return Image(Object::make("PictureKZB", block_at(bytes.data() + start), 9, 9, code, 40));
            };
            const Image image = over(image_start), reference = over(reference_start);
            const Layout &of = layout(code);
            for (int32_t y = 0; y < 9; ++y)
                for (int32_t x = 0; x < 9; ++x)
                    for (Channel channel : {Channel::gray, Channel::red, Channel::green, Channel::blue, Channel::alpha})
                        if (of.offset(channel) >= 0) {
                            const auto at = static_cast<size_t>(y * 40 + x * of.pixel_size + of.offset(channel));
                            uint8_t &a = expected[at + static_cast<size_t>(image_start)];
                            a = sharpened(a, expected[at + static_cast<size_t>(reference_start)], 0.2, 0);
                        }
            EXPECT_TRUE(image.call("UnsharpFilter", reference, 0.2, 0).boolean());
            EXPECT_EQ(bytes, expected) << of.name << ' ' << image_start << ' ' << reference_start;
        }
    }
}

TEST(UnsharpFilter, SingleChannelsOfTheSameOrOfOtherImages) {
    const Image colour = *make_image(Storage::memory, 9, 7, 2, 4), gray = *make_image(Storage::memory, 9, 7, 11, 5);
    const Image red(colour.call("RedChannel")), alpha(colour.call("AlphaChannel"));
    expect_sharpened(red, alpha, 0.2, 0, "red against alpha");
    expect_sharpened(red, gray, 0.2, 0, "red against gray");
    expect_sharpened(gray, alpha, 0.2, 0, "gray against alpha");
}

TEST(UnsharpFilter, AmountAndThresholdZeroChangeNothing) {
    for (int a = 0; a < 256; a += 5)
        for (int b = 0; b < 256; b += 5)
            EXPECT_EQ(gray_sharpened(static_cast<uint8_t>(a), static_cast<uint8_t>(b), 0, 0), a);
}

TEST(UnsharpFilter, EveryPairOfValues) {
    Bytes ramp(256);
    for (size_t i = 0; i < 256; ++i) ramp[i] = static_cast<uint8_t>(i);
    for (double amount : {0.25, 0.5, 0.1, -0.25, -1.0, 100.0}) {
        for (int32_t threshold : {0, 1, 10, 255, 256, -3, INT32_MAX, INT32_MIN}) {
            const Image image(256, 256, 11), reference(256, 256, 11);
            for (int y = 0; y < 256; ++y) {
                image.assign("Row", block_of(ramp), y);
                reference.assign("Row", block_of(Bytes(256, static_cast<uint8_t>(y))), y);
            }
            expect_sharpened(image, reference, amount, threshold, "pairs");
        }
    }
}

TEST(UnsharpFilter, MovesAwayFromTheReferenceByTheDifferenceTimesOnePlusFourAmounts) {
    EXPECT_EQ(gray_sharpened(110, 100, 0.5, 0), 130);
    EXPECT_EQ(gray_sharpened(90, 100, 0.5, 0), 70);
    EXPECT_EQ(gray_sharpened(103, 100, 0.125, 0), 104); // 104.5
    EXPECT_EQ(gray_sharpened(1, 0, -0.5, 0), 0);        // -1
    EXPECT_EQ(gray_sharpened(250, 100, 1, 0), 255);
    EXPECT_EQ(gray_sharpened(10, 100, 1, 0), 0);
}

TEST(UnsharpFilter, ADifferenceBelowTheThresholdStays) {
    EXPECT_EQ(gray_sharpened(109, 100, 0.5, 10), 109);
    EXPECT_EQ(gray_sharpened(91, 100, 0.5, 10), 91);
    EXPECT_EQ(gray_sharpened(110, 100, 0.5, 10), 130);
    EXPECT_EQ(gray_sharpened(110, 100, 0.5, -10), 130) << "a negative threshold keeps nothing";
}

TEST(UnsharpFilter, AmountsThatAreNotFinite) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(gray_sharpened(110, 100, nan, 0), 0);
    EXPECT_EQ(gray_sharpened(110, 100, nan, 20), 110);
    EXPECT_EQ(gray_sharpened(110, 100, infinity, 0), 255);
    EXPECT_EQ(gray_sharpened(90, 100, infinity, 0), 0);
    EXPECT_EQ(gray_sharpened(100, 100, infinity, 0), 0) << "nothing times infinity is not a number";
    EXPECT_EQ(gray_sharpened(110, 100, 1e300, 0), 255);
}

TEST(UnsharpFilter, GivesFalseAndChangesNothingForAnotherSizeOrLayout) {
    const Image image = *make_image(Storage::memory, 5, 4, 2, 3);
    const Bytes before = storage_of(image);
    for (const Image &other : {Image(4, 4, 2), Image(5, 5, 2), Image(5, 4, 4), Image(5, 4, 1)})
        EXPECT_FALSE(image.call("UnsharpFilter", other, 1.0, 0).boolean());
    EXPECT_EQ(storage_of(image), before);
}

TEST(UnsharpFilter, GivesFalseForImagesThatAreNotUsable) {
    const Image image = *make_image(Storage::memory, 5, 4, 2, 3), closed(5, 4, 2), invalid(5, 4, 99);
    closed.call("Close");
    const Bytes before = storage_of(image);
    EXPECT_FALSE(image.call("UnsharpFilter", nullptr, 1.0, 0).boolean());
    EXPECT_FALSE(image.call("UnsharpFilter", closed, 1.0, 0).boolean());
    EXPECT_FALSE(image.call("UnsharpFilter", invalid, 1.0, 0).boolean());
    EXPECT_FALSE(closed.call("UnsharpFilter", image, 1.0, 0).boolean());
    EXPECT_FALSE(invalid.call("UnsharpFilter", invalid, 1.0, 0).boolean());
    EXPECT_FALSE(Image(5, 0, 2).call("UnsharpFilter", Image(5, 0, 2), 1.0, 0).boolean());
    EXPECT_EQ(storage_of(image), before);
}

TEST(UnsharpFilter, ALayoutNeitherGrayNorColourIsTrueAndUnchanged) {
    const Image image(3, 2, 14), reference(3, 2, 14);
    fill_storage(image, random_bytes(static_cast<size_t>(image.integer("TotalSize")), 3));
    const Bytes before = storage_of(image);
    EXPECT_TRUE(image.call("UnsharpFilter", reference, 1.0, 0).boolean());
    EXPECT_EQ(storage_of(image), before);
}

} // namespace
} // namespace kzb::test
