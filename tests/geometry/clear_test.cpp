// ClearRect and Invert.

#include "geometry/in_place_check.h"

namespace kzb::test {
namespace {

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
    check_in_place([](const Image &image, PlainRectangle r) { image.call("ClearRect", r.x, r.y, r.w, r.h); },
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
    check_in_place([](const Image &image, PlainRectangle r) { image.call("Invert", r.x, r.y, r.w, r.h); }, inverting);
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

} // namespace
} // namespace kzb::test
