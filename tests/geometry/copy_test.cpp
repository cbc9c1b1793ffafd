// CopyPixels.

#include "fixtures/plain_rectangle.h"
#include "fixtures/storages.h"
#include "geometry/shapes.h"

#include <gtest/gtest.h>

#include <cstring>

namespace kzb::test {
namespace {

struct Copy {
    int32_t dest_x, dest_y, width, height, source_x, source_y;
};

std::string text_of(const Copy &c) {
    std::string text;
    for (int32_t value : {c.dest_x, c.dest_y, c.width, c.height, c.source_x, c.source_y})
        text += std::to_string(value) + " ";
    return text;
}

void copy_plainly(const PlainImage &image, const PlainImage &source, const Copy &c) {
    const PlainAxis columns = plain_cut(image.width, source.width, c.dest_x, c.width, c.source_x);
    const PlainAxis rows = plain_cut(image.height, source.height, c.dest_y, c.height, c.source_y);
    if (columns.length < 1 || rows.length < 1) return;
    if ((!image.is_rgb && !image.is_gray) || (!source.is_rgb && !source.is_gray)) return;
    for (int64_t i = 0; i < rows.length; ++i) {
        for (int64_t k = 0; k < columns.length; ++k) {
            const int64_t x = columns.dest + k, y = rows.dest + i;
            const int64_t u = columns.source + k, v = rows.source + i;
            const auto read = [&](Channel channel) { return source.get(u, v, channel); };
            if (image.is_gray && source.is_gray)
                image.set(x, y, Channel::gray, read(Channel::gray));
            else if (image.is_gray)
                image.set(x, y, Channel::gray,
                          static_cast<uint8_t>(
                              (77 * read(Channel::red) + 151 * read(Channel::green) + 28 * read(Channel::blue)) >> 8));
            else
                for (Channel channel : {Channel::red, Channel::green, Channel::blue})
                    image.set(x, y, channel, read(source.is_gray ? Channel::gray : channel));
            if (image.has_alpha && source.has_alpha) image.set(x, y, Channel::alpha, read(Channel::alpha));
        }
    }
}

void call_copy(const Image &image, const Value &source, const Copy &c) {
    image.call("CopyPixels", source, c.dest_x, c.dest_y, c.width, c.height, c.source_x, c.source_y);
}

void expect_copies(const Image &image, const Image &source, const std::vector<Copy> &copies) {
    Snapshots snapshots;
    const PlainImage plain = snapshots.of(image);
    const PlainImage plain_source = snapshots.of(source);
    for (const Copy &c : copies) {
        SCOPED_TRACE(text_of(c));
        call_copy(image, source, c);
        copy_plainly(plain, plain_source, c);
        ASSERT_EQ(difference(image, plain), "");
        ASSERT_EQ(difference(source, plain_source), "") << "in the source";
    }
}

TEST(CopyPixels, AllPairsOfLayouts) {
    uint32_t seed = 1;
    std::vector<int32_t> codes = {14};
    for (const Layout &of : layouts()) codes.push_back(of.code);
    for (int32_t to : codes) {
        for (int32_t from : codes) {
            SCOPED_TRACE(std::string(layout(from).name) + " to " + layout(to).name);
            for (int32_t width : {1, 17, 70}) {
                // Both storages end before pages that cannot be touched.
                const Image image = *make_image(Storage::block, width, 3, to, ++seed);
                const Image source = *make_image(Storage::block, width, 3, from, ++seed);
                expect_copies(image, source, {{0, 0, width, 3, 0, 0}, {width / 2, 1, width, 3, width / 4, 0}});
            }
        }
    }
}

TEST(CopyPixels, EveryPairOfStorages) {
    uint32_t seed = 1;
    for (Storage to : every_storage) {
        for (Storage from : every_storage) {
            SCOPED_TRACE(std::string(name_of(from)) + " to " + name_of(to));
            for (auto [to_code, from_code] : {std::pair(4, 4), {5, 1}, {1, 4}}) {
                const auto image = make_image(to, 9, 6, to_code, ++seed);
                const auto source = make_image(from, 8, 7, from_code, ++seed);
                expect_copies(*image, *source, {{1, 2, 6, 3, 2, 1}, {0, 0, 100, 100, 0, 0}});
            }
        }
    }
}

TEST(CopyPixels, BetweenViewsOfEveryKind) {
    uint32_t seed = 1;
    for (int32_t to : {1, 2, 9, 12, 20}) {
        for (int32_t from : {1, 7, 13}) {
            const Image image = *make_image(Storage::memory, 9, 6, to, ++seed);
            const Image source = *make_image(Storage::memory, 9, 6, from, ++seed);
            for (const Shape &target : shapes_of(image))
                for (const Shape &read : shapes_of(source)) {
                    SCOPED_TRACE(read.name + " of " + layout(from).name + " to " + target.name + " of " +
                                 layout(to).name);
                    expect_copies(target.image, read.image, {{0, 0, 9, 6, 0, 0}});
                }
        }
    }
}

TEST(CopyPixels, OfRowsWithoutGapsBetweenThem) {
    uint32_t seed = 1;
    for (const Layout &to : layouts()) {
        for (const Layout &from : layouts()) {
            SCOPED_TRACE(std::string(from.name) + " to " + to.name);
            const Image image = make_gapless_image(11, 7, to.code, ++seed);
            const Image source = make_gapless_image(11, 6, from.code, ++seed);
            const Image padded = *make_image(Storage::block, 11, 6, from.code, ++seed);
            const std::vector<Copy> copies = {{0, 0, 11, 7, 0, 0}, {0, 2, 11, 3, 0, 1}, {0, 1, 10, 4, 0, 0}};
            expect_copies(image, source, copies);
            expect_copies(image, padded, copies);
            expect_copies(padded, image, copies);
        }
    }
}

TEST(CopyPixels, WithinRowsWithoutGapsBetweenThem) {
    for (int32_t code : {1, 2, 5, 11, 12}) {
        SCOPED_TRACE(layout(code).name);
        const Image image = make_gapless_image(11, 7, code, 1);
        expect_copies(image, image, {{0, 0, 11, 7, 0, 0}, {0, 2, 11, 5, 0, 0}, {0, 0, 11, 5, 0, 1}});
        const Image view(image.call("ClipImage", 0, 2, 11, 4));
        expect_copies(image, view, {{0, 0, 11, 4, 0, 0}, {0, 3, 11, 4, 0, 0}});
    }
}

TEST(CopyPixels, CutsTheRectangleInItsOrder) {
    const Image image = *make_image(Storage::block, 12, 9, 2, 1);
    const Image source = *make_image(Storage::block, 8, 10, 6, 2);
    std::vector<Copy> copies = {
        {10, 8, 5, 5, -2, 0}, {3, 8, 5, 5, 0, -2},  {-3, 0, 10, 10, 0, 0}, {0, -3, 10, 10, 0, 0}, {6, 6, -4, -3, 1, 1},
        {0, 0, 50, 50, 7, 9}, {0, 0, 50, 50, 8, 0}, {0, 0, 50, 50, 0, 10}, {12, 0, 5, 5, 0, 0},   {0, 9, 5, 5, 0, 0},
        {13, 0, 5, 5, 0, 0},  {1, 1, 0, 5, 0, 0},   {1, 1, 5, 0, 0, 0},    {-10, 1, 5, 2, 0, 0},  {1, -10, 2, 5, 0, 0},
    };
    const int32_t extremes[] = {INT32_MIN, INT32_MIN + 1, -1, 0, 1, INT32_MAX};
    for (int32_t dest : extremes)
        for (int32_t length : extremes)
            for (int32_t from : extremes) {
                copies.push_back({dest, 1, length, 2, from, 1});
                copies.push_back({1, dest, 2, length, 1, from});
            }
    expect_copies(image, source, copies);
}

Bytes grays_of_row(const Image &image, int32_t y) {
    Bytes row = image.row(y);
    row.resize(static_cast<size_t>(image.width()));
    return row;
}

Image gray_ramp(int32_t width, int32_t height) {
    const Image image(width, height, 11);
    for (int32_t y = 0; y < height; ++y) {
        Bytes row(static_cast<size_t>(image.integer("RowSize")));
        for (int32_t x = 0; x < width; ++x) row[static_cast<size_t>(x)] = static_cast<uint8_t>(16 * y + x + 1);
        image.assign("Row", block_of(row), y);
    }
    return image;
}

TEST(CopyPixels, ANegativeSourceMovesTheDestinationBackAndShortensIt) {
    const Image source = gray_ramp(10, 10);
    const Image image(20, 20, 11);
    image.call("CopyPixels", source, 10, 10, 5, 5, -2, 0);
    for (int32_t y = 0; y < 20; ++y) {
        Bytes expected(20);
        if (y >= 10 && y < 15)
            for (size_t x = 0; x < 3; ++x) expected[8 + x] = source.row(y - 10)[x];
        EXPECT_EQ(grays_of_row(image, y), expected) << y;
    }
}

TEST(CopyPixels, ANegativeDestinationMovesTheSourceOn) {
    const Image source = gray_ramp(10, 10);
    const Image image(20, 20, 11);
    image.call("CopyPixels", source, -3, 0, 10, 10);
    Bytes expected(20);
    for (size_t x = 0; x < 7; ++x) expected[x] = source.row(4)[x + 3];
    EXPECT_EQ(grays_of_row(image, 4), expected);
}

TEST(CopyPixels, WeighsColoursIntoGray) {
    const Image colours(3, 1, 7);
    const Image gray(3, 1, 11);
    colours.call("FillRectRGB", 0, 0, 1, 1, 255, 255, 255);
    colours.call("FillRectRGB", 1, 0, 1, 1, 255, 0, 0);
    colours.call("FillRectRGB", 2, 0, 1, 1, 3, 100, 200);
    gray.call("CopyPixels", colours);
    EXPECT_EQ(grays_of_row(gray, 0), (Bytes{255, 76, (77 * 3 + 151 * 100 + 28 * 200) / 256}));
}

TEST(CopyPixels, LeavesAlphaWhereOneOfTheTwoHasNone) {
    for (int32_t from : {1, 3, 11}) {
        const Image image(2, 2, 2);
        image.call("FillRect", 91);
        const Image source = *make_image(Storage::memory, 2, 2, from, 5);
        image.call("CopyPixels", source);
        EXPECT_EQ(image.row(1)[3], 91);
        EXPECT_EQ(image.row(1)[7], 91);
        const Bytes before = storage_of(source);
        source.call("CopyPixels", image);
        if (from == 3) {
            EXPECT_EQ(source.row(1)[3], before[64 + 3]) << "padding";
        }
    }
}

TEST(CopyPixels, WithoutARectangleTakesTheWholeImage) {
    const Image image = *make_image(Storage::memory, 9, 4, 2, 1);
    for (auto [width, height] : {std::pair(20, 20), {3, 2}, {9, 4}}) {
        const Image source = *make_image(Storage::memory, width, height, 9, 2);
        Snapshots snapshots;
        const PlainImage plain = snapshots.of(image);
        image.call("CopyPixels", source);
        copy_plainly(plain, snapshots.of(source), {0, 0, 9, 4, 0, 0});
        EXPECT_EQ(difference(image, plain), "");
    }
}

// Shifts within one storage, in all directions and along a row.
std::vector<Copy> shifts() {
    std::vector<Copy> copies;
    for (int32_t dx : {-2, -1, 0, 1, 2})
        for (int32_t dy : {-1, 0, 1}) copies.push_back({3 + dx, 3 + dy, 5, 4, 3, 3});
    return copies;
}

TEST(CopyPixels, WithinOneImageEachByteIsReadAfterTheEarlierOnesWereWritten) {
    uint32_t seed = 1;
    for (const Layout &of : layouts()) {
        for (Storage storage : every_storage) {
            const auto image = make_image(storage, 11, 9, of.code, ++seed);
            if (!image) continue;
            SCOPED_TRACE(std::string(of.name) + " in " + name_of(storage));
            expect_copies(*image, *image, shifts());
        }
    }
}

TEST(CopyPixels, BetweenViewsOfOneStorageEachByteIsReadAfterTheEarlierOnesWereWritten) {
    uint32_t seed = 1;
    for (const Layout &of : layouts()) {
        for (Storage storage : {Storage::memory, Storage::block, Storage::file}) {
            SCOPED_TRACE(std::string(of.name) + " in " + name_of(storage));
            const Image parent = *make_image(storage, 12, 9, of.code, ++seed);
            const Image a(parent.call("ClipImage", 1, 1, 9, 7));
            const Image b(parent.call("ClipImage", 2, 1, 9, 7));
            const Image c(parent.call("ClipImage", 0, 3, 12, 5));
            for (const auto &[to, from] : {std::pair(a, b), {b, a}, {parent, b}, {c, parent}, {a, c}, {c, a}})
                expect_copies(to, from, {{0, 0, 12, 9, 0, 0}, {1, 0, 5, 5, 0, 0}});
            // Channels onto others of the same pixels.
            const auto shapes = shapes_of(parent);
            for (const Shape &to : shapes)
                for (const Shape &from : shapes) {
                    SCOPED_TRACE(from.name + " to " + to.name);
                    expect_copies(to.image, from.image, {{0, 0, 12, 9, 0, 0}});
                }
        }
    }
}

TEST(CopyPixels, BetweenBlocksThatOverlap) {
    for (auto [to, from] : {std::pair(2, 2), {2, 9}, {9, 2}, {3, 7}, {2, 12}, {12, 2}}) {
        for (int32_t apart : {0, 1, 3}) {
            Bytes memory = random_bytes(8 * 40, 4);
            const Image image(Object::make("PictureKZB", block_at(memory.data()), 7, 4, to, 40));
            const Image source(Object::make("PictureKZB", block_at(memory.data() + 40 * apart), 7, 4, from, 40));
            for (const bool swapped : {false, true}) {
                const Image &written = swapped ? source : image;
                const Image &read = swapped ? image : source;
                SCOPED_TRACE(std::to_string(written.format()) + " " + std::to_string(apart));
                Snapshots snapshots;
                PlainImage plain = snapshots.of(written);
                PlainImage plain_read = snapshots.of(read);
                // Both as images over all of the memory.
                plain.storage = plain_read.storage = std::make_shared<Bytes>(memory);
                (swapped ? plain : plain_read).row_offset = apart;
                const Copy c = {1, 0, 6, 4, 0, 0};
                call_copy(written, read, c);
                copy_plainly(plain, plain_read, c);
                EXPECT_EQ(memory, *plain.storage);
            }
        }
    }
}

TEST(CopyPixels, FarRowsOfOneFile) {
    const Image tall = make_tall_image(40, 2, 7);
    expect_copies(tall, tall, {{0, 0, 40, 3000, 0, 5200}, {3, 4094, 30, 4100, 0, 0}, {0, 5, 40, 8240, 1, 0}});
    const Image upper(tall.call("ClipImage", 2, 10, 20, 4200));
    const Image lower(tall.call("ClipImage", 5, 4000, 20, 4200));
    expect_copies(upper, lower, {{0, 0, 20, 4200, 0, 0}});
    expect_copies(lower, upper, {{1, 1, 20, 4200, 0, 0}});
    expect_copies(lower, lower, {{0, 7, 20, 4000, 0, 0}});
}

TEST(CopyPixels, BetweenTallFilesAndMemory) {
    const Image tall = make_tall_image(5, 7, 8);
    const Image memory = *make_image(Storage::memory, 5, tall_height, 4, 9);
    expect_copies(memory, tall, {{0, 0, 5, tall_height, 0, 0}});
    expect_copies(tall, memory, {{1, 2, 5, tall_height, 0, 0}});
    expect_copies(tall, make_tall_image(6, 12, 10), {{0, 0, 5, tall_height, 1, 0}});
}

TEST(CopyPixels, ANilSourceAndImagesThatAreNotUsableDoNothing) {
    const Image image = *make_image(Storage::memory, 4, 4, 2, 1);
    const Bytes before = storage_of(image);
    image.call("CopyPixels", nullptr);
    image.call("CopyPixels", nullptr, 0, 0, 4, 4);
    image.call("CopyPixels", nullptr, 0, 0, 4, 4, 0, 0);
    const Image closed = *make_image(Storage::file, 4, 4, 2, 1);
    const Image view(closed.call("ClipImage", 0, 0, 4, 4));
    closed.call("Close");
    for (const Image &other : {Image(Object::make("PictureKZB")), Image(4, 4, 0), Image(4, 0, 2), Image(0, 4, 2),
                               Image(4, 4, 14), closed, view}) {
        image.call("CopyPixels", other);
        other.call("CopyPixels", image);
        other.call("CopyPixels", other, 0, 0, 4, 4, 1, 1);
    }
    EXPECT_EQ(storage_of(image), before);
}

} // namespace
} // namespace kzb::test
