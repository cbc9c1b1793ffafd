// Sound PNG and JPEG files of every kind.

#include "image_samples.h"
#include "picture_fixture.h"

#include <cstring>
#include <unistd.h>

using namespace kzb_test;

namespace {

class ImageReadingTest : public PictureTest {
protected:
    PictureOwner read(const std::vector<uint8_t> &bytes, const kzb_read_options *options = nullptr) {
        write_bytes(path("picture"), bytes);
        error = {};
        PictureOwner picture(kzb_picture_read(path("picture").c_str(), options, &error));
        EXPECT_EQ(error.status, KZB_OK) << error.message;
        return picture;
    }

    // Compares every byte of the picture and of its mask, which is there when the file has alpha.
    void expect_png(const PngSample &sample) {
        const PictureOwner picture = read(png_bytes(sample));
        ASSERT_TRUE(picture);
        const PictureOwner mask(kzb_picture_mask(picture.get()));
        const bool alpha = sample.transparency || (sample.colour & PNG_COLOR_MASK_ALPHA);
        ASSERT_EQ(mask != nullptr, alpha);
        const GWorld &world = *kzb_picture_world(picture.get());
        ASSERT_EQ(world.depth, 32);
        ASSERT_EQ(world.width, sample.width);
        ASSERT_EQ(world.height, sample.height);
        for (int y = 0; y < sample.height; ++y) {
            for (int x = 0; x < sample.width; ++x) {
                const auto [red, green, blue, level] = expected_pixel(sample, x, y);
                ASSERT_EQ(exchange_pixel(world, x, y), (std::array<uint8_t, 4>{0, red, green, blue})) << x << ", " << y;
                if (!mask) continue;
                ASSERT_EQ(exchange_pixel(*kzb_picture_world(mask.get()), x, y),
                          (std::array<uint8_t, 4>{0, level, level, level}))
                    << x << ", " << y;
            }
        }
    }

    // Compares the picture with the smooth one that the samples were made from.
    void expect_smooth(const JpegSample &sample, double tolerance) {
        const PictureOwner picture = read(jpeg_bytes(sample));
        ASSERT_TRUE(picture);
        EXPECT_EQ(kzb_picture_mask(picture.get()), nullptr);
        const GWorld &world = *kzb_picture_world(picture.get());
        ASSERT_EQ(world.depth, 32);
        ASSERT_EQ(world.width, sample.width);
        ASSERT_EQ(world.height, sample.height);
        for (int y = 0; y < sample.height; ++y) {
            for (int x = 0; x < sample.width; ++x) {
                const auto smooth = smooth_pixel(x, y, sample.width, sample.height);
                const auto pixel = exchange_pixel(world, x, y);
                ASSERT_EQ(pixel[0], 0);
                for (size_t c = 0; c < 3; ++c) {
                    const int expected = smooth[sample.given == JCS_GRAYSCALE ? 0 : c];
                    ASSERT_NEAR(pixel[c + 1], expected, tolerance) << x << ", " << y;
                }
            }
        }
    }

    static std::array<uint8_t, 4> exchange_pixel(const GWorld &world, int x, int y) {
        std::array<uint8_t, 4> pixel;
        std::memcpy(pixel.data(), static_cast<uint8_t *>(world.base_address) + y * world.row_bytes + x * 4, 4);
        return pixel;
    }
};

} // namespace

TEST_F(ImageReadingTest, EveryKindOfPngComesOutExactly) {
    std::mt19937 random(1);
    const struct {
        int colour;
        std::vector<int> depths;
    } kinds[] = {{PNG_COLOR_TYPE_GRAY, {1, 2, 4, 8, 16}},
                 {PNG_COLOR_TYPE_PALETTE, {1, 2, 4, 8}},
                 {PNG_COLOR_TYPE_RGB, {8, 16}},
                 {PNG_COLOR_TYPE_GRAY_ALPHA, {8, 16}},
                 {PNG_COLOR_TYPE_RGBA, {8, 16}}};
    for (const auto &[colour, depths] : kinds) {
        for (const int depth : depths) {
            for (const bool interlaced : {false, true}) {
                for (const bool transparency : {false, true}) {
                    if (transparency && (colour & PNG_COLOR_MASK_ALPHA)) continue;
                    for (const auto &[width, height] : {std::pair{1, 1}, {3, 2}, {13, 9}, {37, 21}}) {
                        SCOPED_TRACE(testing::Message()
                                     << "colour " << colour << ", depth " << depth << ", interlaced " << interlaced
                                     << ", transparency " << transparency << ", " << width << " x " << height);
                        expect_png(random_png(width, height, colour, depth, interlaced, transparency, random));
                    }
                }
            }
        }
    }
}

TEST_F(ImageReadingTest, AnOpaqueAlphaChannelIsAMaskToo) {
    std::mt19937 random(2);
    PngSample sample = random_png(5, 5, PNG_COLOR_TYPE_RGBA, 8, false, false, random);
    for (size_t i = 3; i < sample.samples.size(); i += 4) sample.samples[i] = 255;
    expect_png(sample);
}

TEST_F(ImageReadingTest, AWidePngIsRead) {
    std::mt19937 random(3);
    expect_png(random_png(1000001, 1, PNG_COLOR_TYPE_GRAY, 1, false, false, random));
}

TEST_F(ImageReadingTest, WhatIsNotThePixelsIsPassedOver) {
    std::mt19937 random(7);
    const PngSample sample = random_png(5, 5, PNG_COLOR_TYPE_GRAY, 8, false, true, random);
    auto bytes = png_bytes(sample);
    const PictureOwner plain = read(bytes);
    std::vector<uint8_t> large(9000000, 'x');
    large[1] = 0;
    for (const char *type : {"tEXt", "iCCP", "kzBx"}) insert_chunk(bytes, type, large);
    insert_chunk(bytes, "gAMA", {0, 0, 0, 100});
    insert_chunk(bytes, "sBIT", {1});
    const PictureOwner picture = read(bytes), mask(kzb_picture_mask(picture.get()));
    EXPECT_EQ(pixels_of(*kzb_picture_world(picture.get())), pixels_of(*kzb_picture_world(plain.get())));
    EXPECT_TRUE(mask);
}

TEST_F(ImageReadingTest, JpegsOfColourAndGrayComeOutRight) {
    for (const auto &[width, height] : {std::pair{1, 1}, {7, 5}, {64, 48}, {101, 77}}) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        // Colour is stored for two by two pixels, which differ the more the fewer there are.
        const double tolerance = width > 50 ? 6 : 30;
        expect_smooth(smooth_jpeg(width, height, JCS_RGB, JCS_YCbCr), tolerance);
        expect_smooth(smooth_jpeg(width, height, JCS_RGB, JCS_RGB), tolerance);
        expect_smooth(smooth_jpeg(width, height, JCS_GRAYSCALE, JCS_GRAYSCALE), tolerance);
    }
}

TEST_F(ImageReadingTest, GrayJpegsGiveEqualChannels) {
    const PictureOwner picture = read(jpeg_bytes(smooth_jpeg(40, 30, JCS_GRAYSCALE, JCS_GRAYSCALE)));
    ASSERT_TRUE(picture);
    for (const Colour &pixel : pixels_of(*kzb_picture_world(picture.get()))) {
        ASSERT_TRUE(pixel[0] == pixel[1] && pixel[1] == pixel[2]);
    }
}

TEST_F(ImageReadingTest, JpegsOfInksComeOutRight) {
    expect_smooth(smooth_jpeg(64, 48, JCS_CMYK, JCS_CMYK), 6);
    expect_smooth(smooth_jpeg(64, 48, JCS_CMYK, JCS_YCCK), 6);
    expect_smooth(smooth_jpeg(64, 48, JCS_CMYK, JCS_CMYK, false), 6);
}

TEST_F(ImageReadingTest, ProgressiveAndRestartedJpegsComeOutRight) {
    JpegSample sample = smooth_jpeg(101, 77, JCS_RGB, JCS_YCbCr);
    sample.restart_rows = 1;
    expect_smooth(sample, 4);
    sample.progressive = true;
    expect_smooth(sample, 4);
    sample.restart_rows = 0;
    expect_smooth(sample, 4);
}

TEST_F(ImageReadingTest, TheContentTellsTheFormatNotTheName) {
    std::mt19937 random(4);
    write_bytes(path("a.jpg"), png_bytes(random_png(3, 4, PNG_COLOR_TYPE_RGB, 8, false, false, random)));
    write_bytes(path("b.png"), jpeg_bytes(smooth_jpeg(5, 6, JCS_RGB, JCS_YCbCr)));
    const PictureOwner a(kzb_picture_read(path("a.jpg").c_str(), nullptr, nullptr));
    const PictureOwner b(kzb_picture_read(path("b.png").c_str(), nullptr, nullptr));
    ASSERT_TRUE(a && b);
    EXPECT_EQ(kzb_picture_world(a.get())->width, 3);
    EXPECT_EQ(kzb_picture_world(b.get())->width, 5);
}

TEST_F(ImageReadingTest, AFileCanComeThroughAPipe) {
    std::mt19937 random(5);
    for (const auto &bytes : {png_bytes(random_png(30, 20, PNG_COLOR_TYPE_RGBA, 16, true, false, random)),
                              jpeg_bytes(smooth_jpeg(60, 50, JCS_RGB, JCS_YCbCr))}) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        ASSERT_EQ(write(ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
        close(ends[1]);
        error = {};
        const std::string name = "/proc/self/fd/" + std::to_string(ends[0]);
        EXPECT_TRUE(PictureOwner(kzb_picture_read(name.c_str(), nullptr, &error))) << error.message;
        close(ends[0]);
    }
}

TEST_F(ImageReadingTest, TheLimitOfPixelsIsInclusive) {
    std::mt19937 random(6);
    const auto png = png_bytes(random_png(13, 9, PNG_COLOR_TYPE_RGB, 8, false, false, random));
    const auto jpeg = jpeg_bytes(smooth_jpeg(13, 9, JCS_RGB, JCS_YCbCr));
    const kzb_read_options exact{117, nullptr}, less{116, nullptr};
    for (const auto &bytes : {png, jpeg}) {
        EXPECT_TRUE(read(bytes, &exact));
        error = {};
        EXPECT_EQ(kzb_picture_read(path("picture").c_str(), &less, &error), nullptr);
        EXPECT_EQ(error.status, KZB_ERROR_INPUT);
        EXPECT_EQ(error.message, path("picture") + ": the picture is too large: 13 x 9 pixels, and the limit is 116 "
                                                   "pixels; make it smaller or raise the limit");
    }
}

TEST_F(ImageReadingTest, SuccessLeavesTheErrorAlone) {
    write_bytes(path("a"), jpeg_bytes(smooth_jpeg(5, 6, JCS_RGB, JCS_YCbCr)));

    std::memset(&error, 0x5A, sizeof error);
    const kzb_error before = error;
    EXPECT_TRUE(PictureOwner(kzb_picture_read(path("a").c_str(), nullptr, &error)));
    EXPECT_EQ(std::memcmp(&error, &before, sizeof error), 0);
}
