// Drawing between pictures, against references written pixel by pixel.

#include "picture_fixture.h"

#include <cmath>
#include <cstring>

using namespace kzb_test;

namespace {

using Box = std::array<int32_t, 4>; // x, y, width, height

// A pixel as a picture of that depth keeps it.
Colour kept(Colour colour, kzb_word depth) {
    if (depth == 8) return {gray_of(colour), gray_of(colour), gray_of(colour)};
    if (depth != 16) return colour;
    for (uint8_t &channel : colour) channel = static_cast<uint8_t>(channel / 8 * 8 + channel / 32);
    return colour;
}

// Where the middle of a target pixel falls in the source.
double source_position(int64_t target_pixel, int32_t target_size, int32_t source_start, int32_t source_size) {
    return source_start + (static_cast<double>(target_pixel) + 0.5) * source_size / target_size;
}

// Every pixel of `to` after a drawing of the same size.
std::vector<Colour> copied(const GWorld &to, const GWorld &from, const GWorld *mask, Box target, Box source) {
    std::vector<Colour> pixels;
    for (kzb_word y = 0; y < to.height; ++y) {
        for (kzb_word x = 0; x < to.width; ++x) {
            Colour pixel = pixel_at(to, x, y);
            const int64_t across = x - int64_t{target[0]}, down = y - int64_t{target[1]};
            const int64_t u = source[0] + across, v = source[1] + down;
            const bool drawn = across >= 0 && across < target[2] && down >= 0 && down < target[3] && u >= 0 &&
                               u < from.width && v >= 0 && v < from.height;
            if (drawn) {
                const Colour over = pixel_at(from, u, v);
                const bool masked = mask && u < mask->width && v < mask->height;
                const double level = masked ? gray_of(pixel_at(*mask, u, v)) / 255.0 : 1.0;
                Colour mixed;
                for (int c = 0; c < 3; ++c) {
                    mixed[c] = static_cast<uint8_t>(std::lround(over[c] * level + pixel[c] * (1 - level)));
                }
                pixel = kept(mixed, to.depth);
            }
            pixels.push_back(pixel);
        }
    }
    return pixels;
}

GWorld &world_of(const PictureOwner &picture) {
    return *kzb_picture_world(picture.get());
}

PictureOwner random_picture(int32_t width, int32_t height, int32_t depth, std::mt19937 &random) {
    PictureOwner picture = make_picture(width, height, depth);
    fill_randomly(world_of(picture), random);
    return picture;
}

void fill(GWorld &world, Colour colour) {
    for (kzb_word y = 0; y < world.height; ++y) {
        for (kzb_word x = 0; x < world.width; ++x) set_pixel(world, x, y, colour);
    }
}

class DrawingTest : public PictureTest {};

} // namespace

TEST_F(DrawingTest, ADrawingOfTheSameSizeCopiesBetweenAllDepths) {
    std::mt19937 random(1);
    for (const int32_t from_depth : {8, 16, 24, 32}) {
        for (const int32_t to_depth : {8, 16, 24, 32}) {
            SCOPED_TRACE(testing::Message() << from_depth << " to " << to_depth);
            const PictureOwner from = random_picture(37, 11, from_depth, random);
            const PictureOwner to = random_picture(41, 19, to_depth, random);
            const auto expected = copied(world_of(to), world_of(from), nullptr, {3, 5, 37, 11}, {0, 0, 37, 11});
            draw(to.get(), from.get(), {3, 5, 37, 11}, {0, 0, 37, 11});
            EXPECT_EQ(pixels_of(world_of(to)), expected);
        }
    }
}

TEST_F(DrawingTest, TheUnusedByteIsWrittenAsZero) {
    std::mt19937 random(2);
    const PictureOwner from = random_picture(8, 8, 32, random), to = random_picture(8, 8, 32, random);
    draw(to.get(), from.get(), {0, 0, 8, 4}, {0, 0, 8, 4});
    draw(to.get(), from.get(), {0, 4, 8, 4}, {0, 0, 4, 8});
    const auto *bytes = static_cast<const uint8_t *>(world_of(to).base_address);
    for (int i = 0; i < 64; ++i) EXPECT_EQ(bytes[i * 4], 0) << i;
}

TEST_F(DrawingTest, DrawingsAreCutToBothPictures) {
    std::mt19937 random(3);
    const auto between = [&](int low, int high) { return std::uniform_int_distribution<int32_t>(low, high)(random); };
    const PictureOwner from = random_picture(23, 17, 32, random), to = random_picture(19, 29, 24, random);
    for (int round = 0; round < 500; ++round) {
        const int32_t width = between(-3, 40), height = between(-3, 40);
        const Box target{between(-30, 30), between(-30, 40), width, height};
        const Box source{between(-30, 30), between(-30, 30), width, height};
        const auto expected = copied(world_of(to), world_of(from), nullptr, target, source);
        draw(to.get(), from.get(), target, source);
        ASSERT_EQ(pixels_of(world_of(to)), expected)
            << testing::PrintToString(target) << testing::PrintToString(source);
    }
}

TEST_F(DrawingTest, ExtremeRectanglesStayInsideBothPictures) {
    std::mt19937 random(4);
    const int32_t values[] = {INT32_MIN, INT32_MIN + 1, -70000, -1, 0, 1, 5, 70000, INT32_MAX - 1, INT32_MAX};
    const auto any = [&] { return values[random() % std::size(values)]; };
    const PictureOwner from = make_picture(6, 5), to = make_picture(5, 6), mask = make_picture(3, 3, 8);
    fill(world_of(from), {10, 20, 30});
    kzb_picture_set_mask(from.get(), mask.get());
    for (int round = 0; round < 3000; ++round) {
        fill(world_of(to), {200, 100, 50});
        draw(to.get(), from.get(), {any(), any(), any(), any()}, {any(), any(), any(), any()});
        for (const Colour &pixel : pixels_of(world_of(to))) {
            ASSERT_TRUE(pixel == (Colour{10, 20, 30}) || pixel == (Colour{200, 100, 50}));
        }
    }
}

TEST_F(DrawingTest, AMaskBlends) {
    std::mt19937 random(5);
    for (const int32_t mask_depth : {8, 16, 24, 32}) {
        for (const auto &[mask_width, mask_height] : {std::pair{23, 17}, {9, 30}, {40, 4}, {1, 1}}) {
            const PictureOwner from = random_picture(23, 17, 32, random), to = random_picture(30, 30, 32, random);
            const PictureOwner mask = random_picture(mask_width, mask_height, mask_depth, random);
            kzb_picture_set_mask(from.get(), mask.get());
            const Box target{2, 3, 20, 15}, source{1, 2, 20, 15};
            const auto expected = copied(world_of(to), world_of(from), &world_of(mask), target, source);
            draw(to.get(), from.get(), target, source);
            EXPECT_EQ(pixels_of(world_of(to)), expected) << mask_depth << ", " << mask_width << " x " << mask_height;
        }
    }
}

TEST_F(DrawingTest, AMaskLevelOf255IsOpaqueAnd0Transparent) {
    const PictureOwner from = make_picture(2, 1), to = make_picture(2, 1), mask = make_picture(2, 1);
    fill(world_of(from), {1, 2, 3});
    set_pixel(world_of(mask), 1, 0, {0, 0, 0});
    kzb_picture_set_mask(from.get(), mask.get());
    draw(to.get(), from.get(), {0, 0, 2, 1}, {0, 0, 2, 1});
    EXPECT_EQ(pixels_of(world_of(to)), (std::vector<Colour>{{1, 2, 3}, {255, 255, 255}}));
}

TEST_F(DrawingTest, AScaledDrawingCoversWhatFallsIntoBothPictures) {
    std::mt19937 random(6);
    const auto between = [&](int low, int high) { return std::uniform_int_distribution<int32_t>(low, high)(random); };
    const PictureOwner from = make_picture(23, 17), to = make_picture(31, 27);
    const Colour paint{12, 34, 56}, paper{200, 150, 100};
    fill(world_of(from), paint);
    for (int round = 0; round < 500; ++round) {
        fill(world_of(to), paper);
        const Box target{between(-20, 30), between(-20, 30), between(1, 60), between(1, 60)};
        const Box source{between(-20, 30), between(-20, 30), between(1, 60), between(1, 60)};
        std::vector<Colour> expected;
        for (int32_t y = 0; y < 27; ++y) {
            for (int32_t x = 0; x < 31; ++x) {
                const double u = source_position(x - target[0], target[2], source[0], source[2]);
                const double v = source_position(y - target[1], target[3], source[1], source[3]);
                const bool drawn = x >= target[0] && x < target[0] + target[2] && y >= target[1] &&
                                   y < target[1] + target[3] && u >= 0 && u < 23 && v >= 0 && v < 17;
                expected.push_back(drawn ? paint : paper);
            }
        }
        draw(to.get(), from.get(), target, source);
        ASSERT_EQ(pixels_of(world_of(to)), expected)
            << testing::PrintToString(target) << testing::PrintToString(source);
    }
}

TEST_F(DrawingTest, AScaledDrawingInterpolatesBetweenTheNearestPixels) {
    std::mt19937 random(7);
    for (const int32_t depth : {8, 16, 24, 32}) {
        for (const auto &[width, height] : {std::pair{50, 40}, {7, 90}, {200, 3}, {33, 21}}) {
            const PictureOwner from = random_picture(20, 15, depth, random), to = make_picture(width, height);
            draw(to.get(), from.get(), {0, 0, width, height}, {2, 1, 16, 12});
            for (int32_t y = 0; y < height; ++y) {
                for (int32_t x = 0; x < width; ++x) {
                    const double u = source_position(x, width, 2, 16) - 0.5,
                                 v = source_position(y, height, 1, 12) - 0.5;
                    const double left = std::floor(u), top = std::floor(v);
                    Colour actual = pixel_at(world_of(to), x, y);
                    for (int c = 0; c < 3; ++c) {
                        double sum = 0;
                        for (int corner = 0; corner < 4; ++corner) {
                            const double px = left + corner % 2, py = top + corner / 2;
                            const double weight = (1 - std::abs(u - px)) * (1 - std::abs(v - py));
                            const auto sx = static_cast<int64_t>(std::clamp(px, 2.0, 17.0));
                            const auto sy = static_cast<int64_t>(std::clamp(py, 1.0, 12.0));
                            sum += weight * pixel_at(world_of(from), sx, sy)[c];
                        }
                        ASSERT_NEAR(actual[c], sum, 5.0)
                            << depth << ": " << width << " x " << height << ", " << x << ", " << y;
                    }
                }
            }
        }
    }
}

TEST_F(DrawingTest, NothingFromOutsideTheSourceRectangleIsMixedIn) {
    const PictureOwner from = make_picture(20, 4), to = make_picture(200, 40);
    for (int32_t x = 0; x < 10; ++x) {
        for (int32_t y = 0; y < 4; ++y) set_pixel(world_of(from), x, y, {0, 0, 0});
    }
    draw(to.get(), from.get(), {0, 0, 200, 40}, {0, 0, 10, 4});
    EXPECT_EQ(pixels_of(world_of(to)), std::vector<Colour>(8000, Colour{0, 0, 0}));
}

TEST_F(DrawingTest, LargePicturesAreDrawnWhole) {
    std::mt19937 random(8);
    const PictureOwner wide = random_picture(40000, 3, 32, random), tall = random_picture(3, 40000, 8, random);
    const PictureOwner wide_copy = make_picture(40000, 3), tall_copy = make_picture(3, 40000);
    draw(wide_copy.get(), wide.get(), {0, 0, 40000, 3}, {0, 0, 40000, 3});
    draw(tall_copy.get(), tall.get(), {0, 0, 3, 40000}, {0, 0, 3, 40000});
    EXPECT_EQ(pixels_of(world_of(wide_copy)), pixels_of(world_of(wide)));
    EXPECT_EQ(pixels_of(world_of(tall_copy)), pixels_of(world_of(tall)));
}

TEST_F(DrawingTest, LargePicturesAreScaledWhole) {
    for (const auto &[from_width, to_width] :
         {std::pair{40000, 39000}, {40000, 32767}, {40000, 80001}, {5, 70000}, {100000, 7}, {70000, 1}}) {
        for (const bool tall : {false, true}) {
            SCOPED_TRACE(testing::Message() << from_width << " to " << to_width << (tall ? " tall" : " wide"));
            const PictureOwner from = tall ? make_picture(2, from_width) : make_picture(from_width, 2);
            const PictureOwner to = tall ? make_picture(3, to_width) : make_picture(to_width, 3);
            // A ramp whose steps are far below one level, so that interpolation hardly shows.
            const auto ramp = [length = from_width](double u) { return u / length * 240.0 + 5; };
            for (int32_t i = 0; i < from_width; ++i) {
                const auto level = static_cast<uint8_t>(std::lround(ramp(i + 0.5)));
                for (int32_t j = 0; j < 2; ++j) {
                    set_pixel(world_of(from), tall ? j : i, tall ? i : j, {level, level, 0});
                }
            }
            const Box whole_from{0, 0, tall ? 2 : from_width, tall ? from_width : 2};
            const Box whole_to{0, 0, tall ? 3 : to_width, tall ? to_width : 3};
            draw(to.get(), from.get(), whole_to, whole_from);
            const double slack = from_width < 10 ? 25.0 : 1.5; // the few pixels' edges are not extrapolated
            for (int32_t i = 0; i < to_width; ++i) {
                const Colour pixel = pixel_at(world_of(to), tall ? 2 : i, tall ? i : 2);
                ASSERT_NEAR(pixel[0], ramp(source_position(i, to_width, 0, from_width)), slack) << i;
                ASSERT_EQ(pixel[0], pixel[1]);
                ASSERT_EQ(pixel[2], 0);
            }
        }
    }
}

TEST_F(DrawingTest, AMaskIsScaledWithItsPicture) {
    // The mask covers the left half only: clear but for its last columns; the rest of the picture is opaque.
    const PictureOwner from = make_picture(100, 10), to = make_picture(50, 20), mask = make_picture(50, 10, 8);
    fill(world_of(from), {10, 20, 30});
    fill(world_of(mask), {0, 0, 0});
    kzb_picture_set_mask(from.get(), mask.get());
    draw(to.get(), from.get(), {0, 0, 50, 20}, {0, 0, 100, 10});
    for (int32_t x = 0; x < 50; ++x) {
        const Colour expected = x < 25 ? Colour{255, 255, 255} : Colour{10, 20, 30};
        EXPECT_EQ(pixel_at(world_of(to), x, 7), expected) << x;
    }
    fill(world_of(mask), {128, 128, 128});
    fill(world_of(to), {0, 0, 0});
    draw(to.get(), from.get(), {0, 0, 50, 20}, {0, 0, 100, 10});
    EXPECT_EQ(pixel_at(world_of(to), 3, 3), (Colour{5, 10, 15}));
}

TEST_F(DrawingTest, APictureCanBeDrawnIntoItself) {
    std::mt19937 random(9);
    for (const Box &target : {Box{3, 2, 20, 20}, {0, 5, 20, 20}, {5, 0, 20, 20}, {2, 2, 30, 25}, {4, 4, 10, 9}}) {
        for (const Box &source : {Box{1, 1, 20, 20}, {4, 6, 20, 20}}) {
            const PictureOwner picture = random_picture(40, 40, 32, random), same = make_picture(40, 40);
            const PictureOwner original = make_picture(40, 40);
            draw(same.get(), picture.get(), {0, 0, 40, 40}, {0, 0, 40, 40});
            draw(original.get(), picture.get(), {0, 0, 40, 40}, {0, 0, 40, 40});
            draw(same.get(), original.get(), target, source);
            draw(picture.get(), picture.get(), target, source);
            EXPECT_EQ(pixels_of(world_of(picture)), pixels_of(world_of(same))) << testing::PrintToString(target);
        }
    }
}

TEST_F(DrawingTest, ALargePictureCanBeScaledIntoItself) {
    std::mt19937 random(10);
    const PictureOwner picture = random_picture(2500, 3, 32, random), original = make_picture(2500, 3);
    const PictureOwner expected = make_picture(2500, 3);
    draw(original.get(), picture.get(), {0, 0, 2500, 3}, {0, 0, 2500, 3});
    draw(expected.get(), original.get(), {0, 0, 2500, 3}, {0, 0, 1250, 3});
    draw(picture.get(), picture.get(), {0, 0, 2500, 3}, {0, 0, 1250, 3});
    EXPECT_EQ(pixels_of(world_of(picture)), pixels_of(world_of(expected)));
}

TEST_F(DrawingTest, APictureCanBeDrawnIntoItsMask) {
    std::mt19937 random(11);
    for (const Box &target : {Box{2, 3, 2500, 8}, {2, 1, 2500, 8}, {0, 0, 2800, 10}}) {
        const PictureOwner picture = random_picture(2600, 12, 32, random), mask = random_picture(2600, 12, 32, random);
        const PictureOwner unchanged = make_picture(2600, 12), expected = make_picture(2600, 12);
        for (const PictureOwner *copy : {&unchanged, &expected}) {
            draw(copy->get(), mask.get(), {0, 0, 2600, 12}, {0, 0, 2600, 12});
        }
        kzb_picture_set_mask(picture.get(), unchanged.get());
        draw(expected.get(), picture.get(), target, {1, 2, 2500, 8});
        kzb_picture_set_mask(picture.get(), mask.get());
        draw(mask.get(), picture.get(), target, {1, 2, 2500, 8});
        EXPECT_EQ(pixels_of(world_of(mask)), pixels_of(world_of(expected))) << testing::PrintToString(target);
    }
}

TEST_F(DrawingTest, WorldsOfAnyAlignmentAreDrawnAlike) {
    std::mt19937 random(12);
    const PictureOwner plain = random_picture(20, 10, 32, random), expected = make_picture(33, 33);
    const PictureOwner actual = make_picture(33, 33);
    std::vector<uint8_t> bytes(87 * 10 + 3);
    GWorld odd{32, 87, 20, 10, bytes.data() + 3, 0, nullptr};
    for (int y = 0; y < 10; ++y) {
        std::memcpy(bytes.data() + 3 + y * 87,
                    static_cast<uint8_t *>(world_of(plain).base_address) + y * world_of(plain).row_bytes, 80);
    }
    const PictureOwner picture(HOST(REALBuildPictureFromGWorld)(&odd, 0));
    ASSERT_TRUE(picture);
    for (const Box &box : {Box{0, 0, 20, 10}, {2, 11, 30, 21}}) {
        draw(expected.get(), plain.get(), box, {0, 0, 20, 10});
        draw(actual.get(), picture.get(), box, {0, 0, 20, 10});
    }
    EXPECT_EQ(pixels_of(world_of(actual)), pixels_of(world_of(expected)));
    draw(picture.get(), expected.get(), {1, 1, 18, 8}, {0, 0, 18, 8});
    EXPECT_EQ(pixel_at(odd, 18, 8), pixel_at(world_of(expected), 17, 7));
}
