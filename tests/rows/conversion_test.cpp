// Rows and whole images in any layout: RowInFormat, RowStringInFormat, DataStringInFormat and their setters.

#include "fixtures/storages.h"

#include <gtest/gtest.h>

namespace kzb::test {
namespace {

int gray_of(int red, int green, int blue) { return (77 * red + 151 * green + 28 * blue) >> 8; }

// One pixel from one layout to another, by the rule. Offsets are the images' own, or the layouts'.
template <class From, class To>
void convert_pixel(const uint8_t *source, const From &from, uint8_t *target, const To &to, bool from_gray, bool to_gray,
                   bool both_alpha, bool invert_alpha) {
    const auto at = [&](Channel channel) -> uint8_t { return source[from(channel)]; };
    if (to_gray) {
        target[to(Channel::gray)] =
            from_gray ? at(Channel::gray)
                      : static_cast<uint8_t>(gray_of(at(Channel::red), at(Channel::green), at(Channel::blue)));
    } else {
        for (Channel channel : {Channel::red, Channel::green, Channel::blue})
            target[to(channel)] = at(from_gray ? Channel::gray : channel);
    }
    if (both_alpha)
        target[to(Channel::alpha)] = static_cast<uint8_t>(invert_alpha ? 255 - at(Channel::alpha) : at(Channel::alpha));
}

// A row of the image in a layout, over bytes that are there already.
Bytes expected_row(const PlainImage &image, int32_t y, const Layout &to, bool invert_alpha) {
    Bytes row(static_cast<size_t>(image.width * to.pixel_size));
    for (int32_t x = 0; x < image.width; ++x)
        convert_pixel(image.storage->data() + image.position(y, x * image.pixel_size),
                      [&](Channel c) { return image.offset(c); }, row.data() + x * to.pixel_size,
                      [&](Channel c) { return to.offset(c); }, image.is_gray, to.is_gray(),
                      image.has_alpha && to.has_alpha(), invert_alpha);
    return row;
}

void assign_row(const PlainImage &image, int32_t y, const Layout &from, const uint8_t *row, bool invert_alpha) {
    for (int32_t x = 0; x < image.width; ++x)
        convert_pixel(row + x * from.pixel_size, [&](Channel c) { return from.offset(c); },
                      image.storage->data() + image.position(y, x * image.pixel_size),
                      [&](Channel c) { return image.offset(c); }, from.is_gray(), image.is_gray,
                      image.has_alpha && from.has_alpha(), invert_alpha);
}

// Both containers, both ways, of one image and one named layout.
void check_pair(const Image &image, const Layout &named, uint32_t seed) {
    SCOPED_TRACE(std::string(layout(image.format()).name) + " as " + named.name);
    Snapshots snapshots;
    const PlainImage plain = snapshots.of(image);
    const int32_t last = plain.height - 1;
    EXPECT_EQ(image.call("RowInFormat", last, named.code).bytes(), expected_row(plain, last, named, false));
    EXPECT_EQ(image.call("RowInFormat", last, named.code, false).bytes(), expected_row(plain, last, named, false));
    EXPECT_EQ(image.call("RowInFormat", last, named.code, true).bytes(), expected_row(plain, last, named, true));
    EXPECT_EQ(image.call("RowStringInFormat", last, named.code).bytes(), expected_row(plain, last, named, false));
    Bytes data;
    for (int32_t y = 0; y < plain.height; ++y) {
        const Bytes row = expected_row(plain, y, named, false);
        data.insert(data.end(), row.begin(), row.end());
    }
    const Value string = image.call("DataStringInFormat", named.code);
    EXPECT_EQ(string.bytes(), data);
    EXPECT_EQ(string.raw().string->encoding, 0xFFFF);

    const auto row_size = static_cast<size_t>(plain.width * named.pixel_size);
    const Bytes given = random_bytes(row_size * static_cast<size_t>(plain.height), seed);
    const Bytes given_row(given.begin(), given.begin() + static_cast<ptrdiff_t>(row_size));
    image.assign("RowInFormat", block_of(given_row), 0, named.code);
    assign_row(plain, 0, named, given_row.data(), false);
    EXPECT_EQ(difference(image, plain), "");
    image.assign("RowInFormat", block_of(given_row), last, named.code, true);
    assign_row(plain, last, named, given_row.data(), true);
    EXPECT_EQ(difference(image, plain), "");
    image.assign("RowInFormat", block_of(given_row), last, named.code, false);
    assign_row(plain, last, named, given_row.data(), false);
    EXPECT_EQ(difference(image, plain), "");
    image.assign("DataStringInFormat", string_of(given), named.code);
    for (int32_t y = 0; y < plain.height; ++y)
        assign_row(plain, y, named, given.data() + static_cast<size_t>(y) * row_size, false);
    EXPECT_EQ(difference(image, plain), "");
    image.assign("RowStringInFormat", string_of(given_row), last, named.code);
    assign_row(plain, last, named, given_row.data(), false);
    EXPECT_EQ(difference(image, plain), "");
}

TEST(Conversion, AllPairsOfLayoutsThroughBothContainersAndBothWays) {
    uint32_t seed = 1;
    for (const Layout &of : layouts())
        for (const Layout &named : layouts())
            for (int32_t width : {1, 7, 33})
                check_pair(*make_image(Storage::memory, width, 3, of.code, ++seed), named, 7);
}

TEST(Conversion, EveryStorage) {
    uint32_t seed = 1000;
    for (Storage storage : every_storage)
        for (const Layout &of : layouts())
            for (int32_t named : {2, 13, 6, 19}) {
                SCOPED_TRACE(name_of(storage));
                if (const auto image = make_image(storage, 5, 4, of.code, ++seed)) check_pair(*image, layout(named), 7);
            }
    check_pair(make_tall_image(3, 9, 4), layout(12), 5);
}

Bytes pixel_as(int32_t of, const Bytes &pixel, int32_t named, bool invert_alpha = false) {
    const Image image(1, 1, of);
    Bytes row(64);
    std::copy(pixel.begin(), pixel.end(), row.begin());
    image.assign("Row", block_of(row), 0);
    return image.call("RowInFormat", 0, named, invert_alpha).bytes();
}

TEST(Conversion, GrayIsWeighedWithoutRounding) {
    EXPECT_EQ(pixel_as(1, {255, 255, 255}, 11), Bytes{255});
    EXPECT_EQ(pixel_as(1, {255, 0, 0}, 11), Bytes{76});
    EXPECT_EQ(pixel_as(1, {0, 255, 0}, 11), Bytes{150});
    EXPECT_EQ(pixel_as(1, {0, 0, 255}, 11), Bytes{27});
    EXPECT_EQ(pixel_as(1, {1, 1, 1}, 11), Bytes{1});
    EXPECT_EQ(pixel_as(1, {128, 128, 128}, 11), Bytes{128});
}

TEST(Conversion, AlphaMovesWithTheOrderAndInvertsOnRequest) {
    EXPECT_EQ(pixel_as(2, {1, 2, 3, 200}, 4), (Bytes{200, 1, 2, 3}));
    EXPECT_EQ(pixel_as(2, {1, 2, 3, 200}, 4, true), (Bytes{55, 1, 2, 3}));
    EXPECT_EQ(pixel_as(2, {1, 2, 3, 0}, 4, true), (Bytes{255, 1, 2, 3}));
}

TEST(Conversion, AlphaIsNeverMadeUp) {
    const Image colours = *make_image(Storage::memory, 5, 1, 1, 3);
    const Bytes row = colours.call("RowStringInFormat", 0, 2).bytes();
    for (size_t x = 0; x < 5; ++x) EXPECT_EQ(row[4 * x + 3], 0);

    const Image image = *make_image(Storage::memory, 5, 1, 2, 3);
    const Bytes before = image.row(0);
    image.assign("RowInFormat", block_of({10, 20, 30, 40, 50}), 0, 11);
    const Bytes after = image.row(0);
    for (size_t x = 0; x < 5; ++x) {
        for (size_t channel = 0; channel < 3; ++channel) EXPECT_EQ(after[4 * x + channel], 10 * (x + 1));
        EXPECT_EQ(after[4 * x + 3], before[4 * x + 3]);
    }
}

TEST(Conversion, TheOwnLayoutGivesTheRowWithoutItsPadding) {
    const Image image = *make_image(Storage::memory, 10, 2, 1, 3);
    const Bytes row = image.row(1);
    EXPECT_EQ(image.call("RowInFormat", 1, 1).bytes(), Bytes(row.begin(), row.begin() + 30));
}

TEST(Conversion, DataAreThePackedRowsInOrder) {
    const Image image = *make_image(Storage::memory, 3, 2, 1, 3);
    const Bytes data = image.call("DataStringInFormat", 11).bytes();
    Bytes rows = image.call("RowInFormat", 0, 11).bytes();
    const Bytes second = image.call("RowInFormat", 1, 11).bytes();
    rows.insert(rows.end(), second.begin(), second.end());
    EXPECT_EQ(data.size(), 6u);
    EXPECT_EQ(data, rows);
}

TEST(Conversion, AByteOfAWiderPixelIsWrittenAlone) {
    EXPECT_EQ(pixel_as(1, {255, 255, 255}, 18), (Bytes{255, 0, 0, 0}));
    EXPECT_EQ(pixel_as(1, {255, 255, 255}, 16), (Bytes{0, 255, 0}));
}

TEST(Conversion, UnknownAndWorkingLayoutsGiveNilAndChangeNothing) {
    const Image image = *make_image(Storage::memory, 3, 2, 2, 3);
    const Bytes before = storage_of(image);
    const Value block = block_of(Bytes(200)), string = string_of(Bytes(200));
    for (int32_t named : {0, 14, 22, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_TRUE(image.call("RowInFormat", 0, named).is_nil());
        EXPECT_TRUE(image.call("RowInFormat", 0, named, true).is_nil());
        EXPECT_TRUE(image.call("RowStringInFormat", 0, named).is_nil());
        EXPECT_TRUE(image.call("DataStringInFormat", named).is_nil());
        image.assign("RowInFormat", block, 0, named);
        image.assign("RowInFormat", block, 0, named, true);
        image.assign("RowStringInFormat", string, 0, named);
        image.assign("DataStringInFormat", string, named);
    }
    EXPECT_EQ(storage_of(image), before);
    const Image working(3, 2, 14);
    EXPECT_TRUE(working.call("RowInFormat", 0, 2).is_nil());
    EXPECT_TRUE(working.call("DataStringInFormat", 2).is_nil());
    working.assign("RowInFormat", block, 0, 2);
    EXPECT_EQ(storage_of(working), Bytes(storage_of(working).size()));
}

TEST(Conversion, BadIndicesRaise) {
    const Image image(3, 2, 1);
    const Value block = block_of(Bytes(64)), string = string_of(Bytes(64));
    for (int32_t index : {-1, 2}) {
        for (const Failure &failure :
             {image.failure("RowInFormat", index, 1), image.failure("RowInFormat", index, 1, true),
              image.failure("RowStringInFormat", index, 1), image.assign_failure("RowInFormat", block, index, 1),
              image.assign_failure("RowInFormat", block, index, 1, true),
              image.assign_failure("RowStringInFormat", string, index, 1)}) {
            EXPECT_EQ(failure.exception, "OutOfBoundsException");
            EXPECT_EQ(failure.message, "Index is out of bounds.");
        }
    }
}

TEST(Conversion, ANilValueRaisesBeforeAnythingElseIsTested) {
    for (const Image &image : {Image(3, 2, 1), Image(3, 2, 99)}) {
        for (const Failure &failure :
             {image.assign_failure("RowInFormat", nullptr, 7, 1), image.assign_failure("RowInFormat", nullptr, 0, 1, true),
              image.assign_failure("RowStringInFormat", nullptr, 7, 1),
              image.assign_failure("DataStringInFormat", nullptr, 1)}) {
            EXPECT_EQ(failure.exception, "NilObjectException");
            EXPECT_EQ(failure.message, "Memoryblock is nil");
        }
    }
}

TEST(Conversion, AnInvalidImageGivesNilAndTakesNothing) {
    const Image image(3, 2, 99);
    EXPECT_TRUE(image.call("RowInFormat", 7, 1).is_nil());
    EXPECT_TRUE(image.call("RowStringInFormat", -1, 1).is_nil());
    EXPECT_TRUE(image.call("DataStringInFormat", 1).is_nil());
    EXPECT_NO_THROW(image.assign("RowInFormat", block_of(Bytes(64)), 7, 1));
    EXPECT_NO_THROW(image.assign("DataStringInFormat", string_of(Bytes(64)), 1));
}

TEST(Conversion, NoPixelsGiveNoString) {
    EXPECT_TRUE(Image(0, 2, 1).call("DataStringInFormat", 1).is_nil());
    EXPECT_TRUE(Image(2, 0, 1).call("DataStringInFormat", 1).is_nil());
}

TEST(Conversion, DataBeyondWhatAStringHoldsGiveNil) {
    // A gray image of a gigabyte, of which nothing is touched, asked for in four bytes a pixel.
    const Image image(32768, 32768, 11);
    ASSERT_TRUE(image.valid());
    EXPECT_TRUE(image.call("DataStringInFormat", 2).is_nil());
}

TEST(Conversion, RowsBeyondWhatABlockHoldsGiveNil) {
    // Nothing of it is read.
    uint8_t byte = 0;
    constexpr int32_t width = INT32_MAX / 4 + 1;
    const Image image(Object::make("PictureKZB", block_at(&byte), width, 1, 11, width));
    ASSERT_TRUE(image.valid());
    for (int32_t format : {2, 4, 8}) {
        EXPECT_TRUE(image.call("RowInFormat", 0, format).is_nil());
        EXPECT_TRUE(image.call("RowStringInFormat", 0, format).is_nil());
        EXPECT_TRUE(image.call("DataStringInFormat", format).is_nil());
    }
}

TEST(Conversion, ABlockOverTheImagesOwnBytesIsTakenPixelAfterPixel) {
    const Image image(3, 1, 2);
    Bytes row(64);
    for (size_t i = 0; i < 12; ++i) row[i] = static_cast<uint8_t>(i + 1);
    image.assign("Row", block_of(row), 0);
    // Gray bytes read from the row that they are spread over.
    image.assign("RowInFormat", image.call("RawRow", 0), 0, 11);
    const Bytes out = image.row(0);
    EXPECT_EQ(Bytes(out.begin(), out.begin() + 12), (Bytes{1, 1, 1, 4, 1, 1, 1, 8, 1, 1, 1, 12}));
}

} // namespace
} // namespace kzb::test
