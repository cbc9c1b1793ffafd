// FillRect and FillRectRGB.

#include "geometry/in_place_check.h"

namespace kzb::test {
namespace {

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
    check_in_place([](const Image &image, PlainRectangle r) { image.call("FillRect", r.x, r.y, r.w, r.h, 0x35); },
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
    check_in_place(
        [](const Image &image, PlainRectangle r) { image.call("FillRectRGB", r.x, r.y, r.w, r.h, 10, 300, -3); },
        filling_colours({10, 44, 253, 0}, false));
}

TEST(FillRectRGB, WithAlphaSetsItWhereTheLayoutHasIt) {
    check_in_place(
        [](const Image &image, PlainRectangle r) { image.call("FillRectRGB", r.x, r.y, r.w, r.h, 1, 2, 3, 259); },
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
