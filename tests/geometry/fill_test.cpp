// Invert, ClearRect, FillRect and FillRectRGB.

#include "fixtures/plain_rectangle.h"
#include "fixtures/storages.h"
#include "geometry/shapes.h"

#include <gtest/gtest.h>

#include <functional>

namespace kzb::test {
namespace {

// What an operation does to a rectangle that is not cut yet. The image is asked for what the model lacks.
using Meaning = std::function<void(const Image &image, const PlainImage &plain, PlainRectangle r)>;
using Call = std::function<void(const Image &image, PlainRectangle r)>;

void expect_meaning(const Image &image, const Call &call, const Meaning &meaning,
                    const std::vector<PlainRectangle> &all) {
    Snapshots snapshots;
    const PlainImage plain = snapshots.of(image);
    for (const PlainRectangle &r : all) {
        SCOPED_TRACE(std::to_string(r.x) + ", " + std::to_string(r.y) + ", " + std::to_string(r.w) + ", " +
                     std::to_string(r.h));
        call(image, r);
        meaning(image, plain, r);
        ASSERT_EQ(difference(image, plain), "");
    }
}

// Every layout in every storage, as it is and through views of every kind.
void check(const Call &call, const Meaning &meaning) {
    uint32_t seed = 1;
    std::vector<int32_t> codes = {14};
    for (const Layout &of : layouts()) codes.push_back(of.code);
    for (int32_t code : codes) {
        for (Storage storage : every_storage) {
            const auto image = make_image(storage, 7, 5, code, ++seed);
            if (!image) continue;
            SCOPED_TRACE(std::string(layout(code).name) + " in " + name_of(storage));
            for (const Shape &shape : shapes_of(*image)) {
                SCOPED_TRACE(shape.name);
                const bool thorough = storage == Storage::memory || storage == Storage::block;
                auto all = rectangles(shape.image.width(), shape.image.height());
                if (!thorough) all.resize(6);
                ASSERT_NO_FATAL_FAILURE(expect_meaning(shape.image, call, meaning, all));
            }
        }
        for (int32_t width : {1, 2, 3, 15, 16, 17, 31, 47, 48, 49, 70}) {
            SCOPED_TRACE(std::string(layout(code).name) + " " + std::to_string(width) + " wide");
            const Image image = *make_image(Storage::block, width, 2, code, ++seed);
            ASSERT_NO_FATAL_FAILURE(
                expect_meaning(image, call, meaning, {{0, 0, width, 2}, {width / 3, 1, width / 2 + 1, 1}}));
        }
    }
    for (int32_t code : {2, 6, 12}) {
        const Image tall = make_tall_image(9, code, ++seed);
        SCOPED_TRACE("a file of several blocks");
        expect_meaning(tall, call, meaning, {{0, 0, 9, tall_height}, {2, 1, 4, tall_height}});
    }
}

void set_bytes(const PlainImage &plain, int64_t y, int64_t byte, int64_t count, uint8_t value) {
    for (int64_t at = plain.position(y, byte); count > 0; --count, ++at)
        if (plain.inside(at)) (*plain.storage)[static_cast<size_t>(at)] = value;
}

template <class Visit> void visit_pixels(const PlainRectangle &r, Visit visit) {
    for (int32_t y = r.y; y < r.y + r.h; ++y)
        for (int32_t x = r.x; x < r.x + r.w; ++x) visit(x, y);
}

Bytes first_pixel(const Image &image) {
    Bytes row = image.row(0);
    row.resize(static_cast<size_t>(image.integer("PixelSize")));
    return row;
}

Meaning filling(uint8_t value) {
    return [=](const Image &, const PlainImage &plain, PlainRectangle given) {
        const PlainRectangle r = clipped(plain, given);
        if (empty(r)) return;
        std::vector<Channel> channels;
        int32_t packed = 0;
        if (plain.is_gray) {
            channels = {Channel::gray};
            packed = 1;
        } else if (plain.is_rgb) {
            channels = {Channel::red, Channel::green, Channel::blue};
            packed = 3;
        } else {
            return;
        }
        if (plain.has_alpha) {
            channels.push_back(Channel::alpha);
            ++packed;
        }
        if (plain.pixel_size == packed) {
            for (int32_t y = r.y; y < r.y + r.h; ++y)
                set_bytes(plain, y, int64_t{plain.pixel_size} * r.x, plain.row_size, value);
            return;
        }
        visit_pixels(r, [&](int32_t x, int32_t y) {
            for (Channel channel : channels) plain.set(x, y, channel, value);
        });
    };
}

Meaning filling_colours(std::array<uint8_t, 4> values, bool with_alpha) {
    return [=](const Image &image, const PlainImage &plain, PlainRectangle given) {
        const PlainRectangle r = clipped(plain, given);
        if (empty(r) || !image.flag("HasRed") || !image.flag("HasGreen") || !image.flag("HasBlue")) return;
        visit_pixels(r, [&](int32_t x, int32_t y) {
            plain.set(x, y, Channel::red, values[0]);
            plain.set(x, y, Channel::green, values[1]);
            plain.set(x, y, Channel::blue, values[2]);
            if (with_alpha && plain.has_alpha) plain.set(x, y, Channel::alpha, values[3]);
        });
    };
}

TEST(FillRect, SetsEveryChannelAndFillsPackedRowsOn) {
    check([](const Image &image, PlainRectangle r) { image.call("FillRect", r.x, r.y, r.w, r.h, 0x35); },
          filling(0x35));
}

TEST(FillRect, WithoutARectangleIsTheWholeImage) {
    for (const Layout &of : layouts()) {
        const Image image = *make_image(Storage::block, 7, 5, of.code, 3);
        SCOPED_TRACE(of.name);
        expect_meaning(image, [](const Image &filled, PlainRectangle) { filled.call("FillRect", 200); }, filling(200),
                       {{0, 0, 7, 5}});
    }
}

TEST(FillRect, ANegativeSizeReachesBack) {
    const Image image(20, 20, 11);
    image.call("FillRect", 5, 5, -3, -3, 9);
    // A packed layout: the rows are filled from the corner on.
    EXPECT_EQ(image.row(1), Bytes(64));
    for (int32_t y : {2, 3, 4}) {
        const Bytes row = image.row(y);
        EXPECT_EQ(row[1], y == 2 ? 0 : 9);
        EXPECT_EQ(row[2], 9);
        EXPECT_EQ(row[63], 9);
    }
    const Image wide(20, 20, 3);
    wide.call("FillRect", 5, 5, -3, -3, 9);
    for (int32_t y = 0; y < 20; ++y) {
        const Bytes row = wide.row(y);
        for (size_t x = 0; x < 20; ++x)
            EXPECT_EQ(row[x * 4], x >= 2 && x < 5 && y >= 2 && y < 5 ? 9 : 0) << x << ' ' << y;
    }
}

TEST(FillRect, LeftOfTheImageTakesTheWholeWidth) {
    const Image image(20, 6, 3);
    image.call("FillRect", -10, 0, 5, 4, 77);
    image.call("Invert", -10, 0, 5, 4);
    for (int32_t y = 0; y < 6; ++y) {
        const Bytes row = image.row(y);
        for (size_t x = 0; x < 20; ++x) {
            EXPECT_EQ(row[4 * x], y < 4 ? 255 - 77 : 0);
            EXPECT_EQ(row[4 * x + 3], 0);
        }
    }
}

TEST(FillRect, AboveTheImageTakesTheWholeHeight) {
    const Image image(4, 6, 16);
    image.call("FillRect", 1, -9, 2, 5, 3);
    for (int32_t y = 0; y < 6; ++y) EXPECT_EQ(image.row(y)[3 * 1 + 1], 3);
    EXPECT_EQ(image.row(2)[3 * 3 + 1], 0);
}

TEST(FillRect, TakesTheLowByte) {
    for (auto [value, stored] : std::vector<std::pair<int, int>>{{300, 44}, {256, 0}, {-1, 255}, {INT32_MIN, 0}}) {
        const Image image(2, 2, 12);
        image.call("FillRect", 0, 0, 2, 2, value);
        EXPECT_EQ(image.row(0)[0], stored);
        EXPECT_EQ(image.row(0)[1], stored);
    }
}

TEST(FillRect, APackedRowGoesOnIntoTheNextOneAndStopsAtTheEndOfTheStorage) {
    // The storage ends right before a page that cannot be touched.
    for (Storage storage : {Storage::block, Storage::memory, Storage::file}) {
        const Image image = *make_image(storage, 10, 4, 2, 5);
        SCOPED_TRACE(name_of(storage));
        const Bytes before = storage_of(image);
        const auto row = static_cast<size_t>(image.integer("RowSize"));
        image.call("FillRect", 3, 2, 1, 1, 66);
        image.call("FillRect", 9, 3, 1, 1, 67);
        Bytes expected = before;
        std::fill_n(expected.begin() + static_cast<ptrdiff_t>(2 * row + 12), row, uint8_t{66});
        std::fill(expected.begin() + static_cast<ptrdiff_t>(3 * row + 36), expected.end(), uint8_t{67});
        EXPECT_EQ(storage_of(image), expected);
    }
}

TEST(FillRect, APackedRowThatGoesOnGivesTheSamePixelsInAFileAsInMemory) {
    const Image file = make_tall_image(33, 1, 9);
    const Image memory(33, tall_height, 1);
    memory.call("CopyPixels", file);
    for (auto [x, y, h] : {std::array{1, 0, 1}, {32, 4095, 2}, {7, 4093, 9}, {20, tall_height - 1, 1}}) {
        file.call("FillRect", x, y, 1, h, 200);
        memory.call("FillRect", x, y, 1, h, 200);
    }
    EXPECT_EQ(file.call("DataStringInFormat", 1).bytes(), memory.call("DataStringInFormat", 1).bytes());
}

TEST(FillRect, OfAViewsPackedRowStartsAtTheStoragesRow) {
    const Image parent(10, 4, 11);
    const Image view(parent.call("ClipImage", 6, 1, 3, 2));
    view.call("FillRect", 2, 0, 1, 1, 5);
    const Bytes storage = storage_of(parent);
    Bytes expected(storage.size());
    for (size_t i = 0; i < 64; ++i) expected.at(64 + 2 + i) = 5;
    EXPECT_EQ(storage, expected);
}

TEST(FillRectRGB, SetsTheColoursAndLeavesAlphaAndPadding) {
    check([](const Image &image, PlainRectangle r) { image.call("FillRectRGB", r.x, r.y, r.w, r.h, 10, 300, -3); },
          filling_colours({10, 44, 253, 0}, false));
}

TEST(FillRectRGB, WithAlphaSetsItWhereTheLayoutHasIt) {
    check([](const Image &image, PlainRectangle r) { image.call("FillRectRGB", r.x, r.y, r.w, r.h, 1, 2, 3, 259); },
          filling_colours({1, 2, 3, 3}, true));
}

TEST(FillRectRGB, EveryFormWithoutARectangleIsTheWholeImage) {
    const PlainRectangle whole = {0, 0, 7, 5};
    for (const Layout &of : layouts()) {
        SCOPED_TRACE(of.name);
        const Image image = *make_image(Storage::block, 7, 5, of.code, 3);
        expect_meaning(image, [](const Image &filled, PlainRectangle) { filled.call("FillRectRGB", 9, 8, 7); },
                       filling_colours({9, 8, 7, 0}, false), {whole});
        expect_meaning(image, [](const Image &filled, PlainRectangle) { filled.call("FillRectRGB", 9, 18, 17, 16); },
                       filling_colours({9, 18, 17, 16}, true), {whole});
        expect_meaning(image, [](const Image &filled, PlainRectangle) { filled.call("FillRectRGB", Colour{0x010203}); },
                       filling_colours({1, 2, 3, 0}, false), {whole});
        expect_meaning(image,
                       [](const Image &filled, PlainRectangle) { filled.call("FillRectRGB", Colour{0xA1B2C3}, 0xD4); },
                       filling_colours({0xA1, 0xB2, 0xC3, 0xD4}, true), {whole});
    }
}

TEST(FillRectRGB, TakesColoursForRectangles) {
    for (const Layout &of : layouts()) {
        SCOPED_TRACE(of.name);
        const Image image = *make_image(Storage::memory_view, 7, 5, of.code, 4);
        expect_meaning(
            image,
            [](const Image &filled, PlainRectangle r) {
                filled.call("FillRectRGB", r.x, r.y, r.w, r.h, Colour{0x102030});
            },
            filling_colours({0x10, 0x20, 0x30, 0}, false), rectangles(7, 5));
        expect_meaning(
            image,
            [](const Image &filled, PlainRectangle r) {
                filled.call("FillRectRGB", r.x, r.y, r.w, r.h, Colour{0xFFFEFD}, 252);
            },
            filling_colours({0xFF, 0xFE, 0xFD, 252}, true), rectangles(7, 5));
    }
}

TEST(FillRectRGB, UnpacksAColour) {
    const Image image(1, 1, 1);
    image.call("FillRectRGB", Colour{0xFF8000});
    EXPECT_EQ(first_pixel(image), (Bytes{255, 128, 0}));
}

TEST(FillRectRGB, LeavesGrayUnchanged) {
    const Image image = *make_image(Storage::memory, 5, 5, 12, 1);
    const Bytes before = storage_of(image);
    image.call("FillRectRGB", 1, 2, 3);
    image.call("FillRectRGB", 1, 2, 3, 4);
    EXPECT_EQ(storage_of(image), before);
}

TEST(ClearRect, WithoutARectangleZeroesWholeRows) {
    uint32_t seed = 1;
    for (const Layout &of : layouts()) {
        for (Storage storage : every_storage) {
            const auto image = make_image(storage, 6, 4, of.code, ++seed);
            if (!image) continue;
            SCOPED_TRACE(std::string(of.name) + " in " + name_of(storage));
            for (const Shape &shape : shapes_of(*image)) {
                SCOPED_TRACE(shape.name);
                expect_meaning(
                    shape.image, [](const Image &cleared, PlainRectangle) { cleared.call("ClearRect"); },
                    [](const Image &, const PlainImage &plain, PlainRectangle) {
                        for (int32_t y = 0; y < plain.height; ++y) set_bytes(plain, y, 0, plain.row_size, 0);
                    },
                    {{}});
            }
        }
    }
}

TEST(ClearRect, ZeroesEveryByteOfTheRectangleCountedFromTheRowsAddress) {
    check([](const Image &image, PlainRectangle r) { image.call("ClearRect", r.x, r.y, r.w, r.h); },
          [](const Image &, const PlainImage &plain, PlainRectangle given) {
              const PlainRectangle r = clipped(plain, given);
              if (empty(r)) return;
              for (int32_t y = r.y; y < r.y + r.h; ++y)
                  set_bytes(plain, y, int64_t{plain.pixel_size} * r.x, int64_t{plain.pixel_size} * r.w, 0);
          });
}

TEST(ClearRect, DoesNothingWithoutRowsAndBeyondTheRightEdge) {
    const Image parent = *make_image(Storage::memory, 5, 5, 2, 1);
    const Bytes before = storage_of(parent);
    Image(parent.call("ClipImage", 0, 5, 5, 1)).call("ClearRect");
    for (int32_t x : {5, 6, 1000, INT32_MAX}) parent.call("ClearRect", x, 0, 3, 3);
    EXPECT_EQ(storage_of(parent), before);
    const Image without_rows(5, 0, 2);
    EXPECT_TRUE(without_rows.valid());
    without_rows.call("ClearRect");
    without_rows.call("ClearRect", 0, 0, 5, 5);
}

TEST(Invert, ComplementsWhatItsLayoutSays) {
    const Meaning inverting = [](const Image &, const PlainImage &plain, PlainRectangle given) {
        const PlainRectangle r = clipped(plain, given);
        if (empty(r)) return;
        std::vector<Channel> channels = plain.channels();
        if (plain.has_alpha && plain.is_rgb) channels = {Channel::red, Channel::green, Channel::green, Channel::blue};
        visit_pixels(r, [&](int32_t x, int32_t y) {
            for (Channel channel : channels)
                plain.set(x, y, channel, static_cast<uint8_t>(255 - plain.get(x, y, channel)));
        });
    };
    check([](const Image &image, PlainRectangle r) { image.call("Invert", r.x, r.y, r.w, r.h); }, inverting);
    for (const Layout &of : layouts())
        expect_meaning(*make_image(Storage::block, 7, 5, of.code, 3),
                       [](const Image &inverted, PlainRectangle) { inverted.call("Invert"); }, inverting,
                       {{0, 0, 7, 5}});
}

TEST(Invert, TwiceRestoresEveryLayout) {
    for (const Layout &of : layouts()) {
        const Image image = *make_image(Storage::memory, 9, 4, of.code, 6);
        const Bytes before = storage_of(image);
        image.call("Invert");
        EXPECT_NE(storage_of(image), before) << of.name;
        image.call("Invert");
        EXPECT_EQ(storage_of(image), before) << of.name;
    }
}

TEST(Invert, LeavesGreenAndAlphaWhereTheLayoutHasAlpha) {
    const Image image(1, 1, 2);
    image.call("FillRectRGB", 1, 2, 3, 4);
    image.call("Invert");
    EXPECT_EQ(first_pixel(image), (Bytes{254, 2, 252, 4}));
    const Image gray(1, 1, 12);
    gray.call("FillRect", 5);
    gray.call("Invert");
    EXPECT_EQ(first_pixel(gray), (Bytes{250, 250}));
}

TEST(Fills, DoNothingToImagesThatAreNotUsable) {
    const auto call_all = [](const Image &image) {
        image.call("Invert");
        image.call("Invert", -5, -5, 100, 100);
        image.call("ClearRect");
        image.call("ClearRect", -5, -5, 100, 100);
        image.call("FillRect", 1);
        image.call("FillRect", -5, -5, 100, 100, 1);
        image.call("FillRectRGB", 1, 2, 3);
        image.call("FillRectRGB", -5, -5, 100, 100, 1, 2, 3, 4);
    };
    call_all(Image(Object::make("PictureKZB")));
    call_all(Image(3, 3, 0));
    call_all(Image(3, 3, 99));
    call_all(Image(-3, 3, 2));
    call_all(Image(0, 3, 2));
    call_all(Image(3, 0, 2));
    for (Storage storage : every_storage) {
        const Image image = *make_image(storage, 4, 4, 5, 1);
        const Image view(image.call("ClipImage", 1, 1, 2, 2));
        image.call("Close");
        call_all(image);
        call_all(view);
    }
}

} // namespace
} // namespace kzb::test
