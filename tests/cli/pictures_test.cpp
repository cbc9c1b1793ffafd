// What becomes of a picture on its way: colours and alpha from file to file, the current picture from step to step.

#include "cli/command.h"

#include "fixtures/host.h"

#include <algorithm>
#include <cmath>

namespace kzb::test {

namespace {

class Pictures : public CommandTest {
protected:
    static Pixels part(const Pixels &whole, int32_t left, int32_t top, int32_t width, int32_t height) {
        return make_pixels(width, height, whole.has_alpha,
                           [&](int32_t x, int32_t y) { return whole.at(left + x, top + y); });
    }

    static Pixels gray(int32_t channel) {
        return make_pixels(sample_width, sample_height, false, [&](int32_t x, int32_t y) {
            const uint8_t level = alpha_sample().at(x, y)[static_cast<size_t>(channel)];
            return Pixel{level, level, level, 255};
        });
    }

    // The sample without alpha as the module's own, and a picture of its layout, RGB, as pixels.
    static Image sample_image() {
        const Pixels sample = plain_sample();
        const Image image(sample.width, sample.height, 1);
        for (int32_t y = 0; y < sample.height; ++y) {
            Bytes row;
            for (int32_t x = 0; x < sample.width; ++x) {
                const Pixel pixel = sample.at(x, y);
                row.insert(row.end(), pixel.begin(), pixel.begin() + 3);
            }
            image.assign("RowInFormat", block_of(row), y, 1);
        }
        return image;
    }
    static Pixels pixels_of(const Image &image) {
        return make_pixels(image.width(), image.height(), false, [&](int32_t x, int32_t y) {
            const Bytes row = image.row(y);
            const size_t at = static_cast<size_t>(x) * 3;
            return Pixel{row[at], row[at + 1], row[at + 2], 255};
        });
    }

    // What the module's own call makes of the sample.
    template <class... Arguments> static Pixels called(const char *method, const Arguments &...arguments) {
        return pixels_of(Image(sample_image().call(method, arguments...)));
    }
};

TEST_F(Pictures, WithoutAStepComeOutAsTheyWentIn) {
    EXPECT_EQ(result("plain.png", {}), plain_sample());
    EXPECT_EQ(result("alpha.png", {}), alpha_sample());
}

TEST_F(Pictures, KeepTheirAlphaThroughStepsThatDoNotTouchIt) {
    EXPECT_EQ(result("alpha.png", {":", "GammaFilter", "1", "1"}), alpha_sample());
    EXPECT_EQ(result("alpha.png", {":", "ClipImage", "2", "1", "4", "3"}), part(alpha_sample(), 2, 1, 4, 3));
    const Pixels filled = result("alpha.png", {":", "FillRectRGB", "#010203"});
    for (size_t i = 0; i < filled.all.size(); ++i) EXPECT_EQ(filled.all[i], (Pixel{1, 2, 3, alpha_sample().all[i][3]}));
}

TEST_F(Pictures, CarryTheAlphaThatAStepMakes) {
    const Pixels filled = result("alpha.png", {":", "FillRectRGB", "#010203", "alpha=99"});
    EXPECT_TRUE(filled.has_alpha);
    EXPECT_EQ(filled.at(0, 0), (Pixel{1, 2, 3, 99}));
}

TEST_F(Pictures, GoOnAsTheResultOfAStep) {
    EXPECT_EQ(result("plain.png", {":", "GammaFilter", "2.2"}), called("GammaFilter", nullptr, 2.2));
    EXPECT_EQ(result("plain.png", {":", "SolarizeFilter"}), called("SolarizeFilter", nullptr));
    EXPECT_EQ(result("plain.png", {":", "BoxBlurFilter", "1", "2"}), called("BoxBlurFilter", nullptr, 1.0, 2));
}

TEST_F(Pictures, GoOnAsTheyAreAfterAStepInPlace) {
    const Pixels inverted = result("plain.png", {":", "Invert", "0", "0", "3", "5", ":", "Invert", "3", "0", "4", "5"});
    for (size_t i = 0; i < inverted.all.size(); ++i) {
        const Pixel was = plain_sample().all[i];
        EXPECT_EQ(inverted.all[i], (Pixel{static_cast<uint8_t>(255 - was[0]), static_cast<uint8_t>(255 - was[1]),
                                          static_cast<uint8_t>(255 - was[2]), 255}));
    }
}

TEST_F(Pictures, GoOnAfterAStepThatGivesTrue) {
    // Against itself a picture stays as it is.
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "UnsharpFilter", "@p", "0.5", "0"}), plain_sample());
}

TEST_F(Pictures, MayBeViewsWhoseParentNobodyElseHolds) {
    for (int32_t channel = 0; channel < 4; ++channel) {
        const char *views[] = {"RedChannel", "GreenChannel", "BlueChannel", "AlphaChannel"};
        EXPECT_EQ(result("alpha.png", {":", views[channel]}), gray(channel)) << views[channel];
    }
    EXPECT_EQ(result("plain.png", {":", "ClipImage", "1", "1", "5", "4", ":", "ClipImage", "1", "1", "3", "3", ":",
                                   "GammaFilter", "1"}),
              part(plain_sample(), 2, 2, 3, 3));
}

TEST_F(Pictures, OfTheHostThatAStepGivesComeBackIntoTheChain) {
    EXPECT_EQ(result("alpha.png", {":", "CopyPicture", "-2", "1", "4", "3", ":", "GammaFilter", "1"}),
              part(plain_sample(), 0, 1, 2, 3));
    EXPECT_EQ(result("alpha.png", {":", "CopyMask"}), gray(3));
    EXPECT_EQ(result("alpha.png", {":", "CopyPictureWithMask", ":", "GammaFilter", "1", "1"}), alpha_sample());
}

TEST_F(Pictures, ToWriteOnAreMadeByTheChain) {
    const Pixels copied = result("plain.png", {":", "CopyPixels", "1", "2", "3", "9"});
    EXPECT_EQ(copied, make_pixels(sample_width, sample_height, false, [](int32_t x, int32_t y) {
                  return x >= 1 && x < 4 && y >= 2 ? plain_sample().at(x - 1, y - 2) : Pixel{0, 0, 0, 255};
              }));
    EXPECT_EQ(result("alpha.png", {":", "CopyPixels"}), alpha_sample());
}

TEST_F(Pictures, AreScaledIntoANewPictureOfTheSizeThatTheStepStates) {
    const Image scaled(14, 3, 1);
    ASSERT_TRUE(scaled.call("Scale", sample_image(), nullptr, 3, 14, 3).boolean());
    EXPECT_EQ(result("plain.png", {":", "Scale", "ScaleLanczos3", "14", "3"}), pixels_of(scaled));
    EXPECT_EQ(result("plain.png", {":", "Scale", "height=3", "width=14", "mode=ScaleLanczos3", "temp=nil"}),
              pixels_of(scaled));
    const Image fast(3, 10, 1);
    ASSERT_TRUE(fast.call("ScaleFast", sample_image(), 3, 10).boolean());
    EXPECT_EQ(result("plain.png", {":", "ScaleFast", "3", "10"}), pixels_of(fast));
}

TEST_F(Pictures, KeepTheirAlphaWhenScaled) {
    EXPECT_EQ(result("alpha.png", {":", "Scale", "ScaleBox", "7", "5"}), alpha_sample());
    EXPECT_EQ(result("alpha.png", {":", "ScaleFast", "7", "5"}), alpha_sample());
}

TEST_F(Pictures, KeepTheirShapeThroughAConvolution) {
    std::string matrix = "[1";
    std::vector<int32_t> weights = {1};
    for (int32_t i = 1; i < 25; ++i) {
        weights.push_back(i % 3 - 1);
        matrix.append(",").append(std::to_string(i % 3 - 1));
    }
    const Image convolved(sample_width, sample_height, 1);
    sample_image().call("ApplyMatrix", convolved, array_of(weights), -10);
    EXPECT_EQ(result("plain.png", {":", "ApplyMatrix", "matrix=" + matrix + "]", "delta=-10"}), pixels_of(convolved));
}

TEST_F(Pictures, AreDitheredWithAMatrixByName) {
    EXPECT_EQ(result("plain.png", {":", "DitherFilter", "DitherOrdered8x8Matrix", "2"}),
              called("DitherFilter", nullptr, 7, 2));
}

TEST_F(Pictures, AreReadFromJpegAndWrittenToIt) {
    const Outcome to_jpeg = run({"plain.png", ":", "FillRectRGB", "#6080A0", "-o", "out.JPEG", "--quality", "95"});
    ASSERT_EQ(to_jpeg.exit, 0) << to_jpeg.err;
    EXPECT_EQ(read_file("out.JPEG").substr(0, 3), "\xFF\xD8\xFF");
    const Pixel pixel = result("out.JPEG", {}).at(3, 3);
    const Pixel expected = {0x60, 0x80, 0xA0, 255};
    for (size_t i = 0; i < 4; ++i) EXPECT_LE(std::abs(int{pixel[i]} - int{expected[i]}), 3);
}

TEST_F(Pictures, OfLessQualityTakeFewerBytes) {
    ASSERT_EQ(run({"plain.png", "-o", "fine.jpg", "--quality=100"}).exit, 0);
    ASSERT_EQ(run({"plain.png", "-o", "coarse.jpg", "--quality=5"}).exit, 0);
    EXPECT_LT(read_file("coarse.jpg").size(), read_file("fine.jpg").size());
}

TEST_F(Pictures, ThatLoseTheirAlphaInAJpegAreNoted) {
    const Outcome noted = run({"alpha.png", "-o", "out.jpg"});
    EXPECT_EQ(noted.exit, 0);
    EXPECT_EQ(noted.err, "kzb: note: out.jpg: a JPEG file holds no alpha, it was left out; a PNG file keeps it\n");
    EXPECT_EQ(run({"alpha.png", "-o", "out.jpg", "--quiet"}).err, "");
    EXPECT_EQ(run({"plain.png", "-o", "out.jpg"}).err, "");
}

TEST_F(Pictures, ThatBecomeWhollyTransparentAreNoted) {
    const Outcome noted = run({"alpha.png", ":", "GammaFilter", "2", "-o", "out.png"});
    EXPECT_EQ(noted.exit, 0);
    EXPECT_NE(noted.err.find("note: out.png: the whole picture is transparent"), std::string::npos) << noted.err;
    EXPECT_EQ(run({"alpha.png", ":", "GammaFilter", "2", "-o", "out.png", "-q"}).err, "");
}

TEST_F(Pictures, AreFollowedStepByStepWithVerbose) {
    const Outcome outcome =
        run({"-v", "plain.png", ":", "RedChannel", ":", "ClipImage", "1", "1", "2", "3", "-o", "out.png"});
    EXPECT_EQ(outcome.exit, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 5) << outcome.err;
    for (const char *part : {" ms  read plain.png: 7 x 5 pixels, ImageFormatRGB\n",
                             " ms  step 1, RedChannel: 7 x 5 pixels, ImageFormatG\n",
                             " ms  step 2, ClipImage 1 1 2 3: 2 x 3 pixels, ImageFormatG\n", " ms  wrote out.png\n",
                             " ms  in all: reading "})
        EXPECT_NE(outcome.err.find(part), std::string::npos) << part << outcome.err;
}

} // namespace

} // namespace kzb::test
