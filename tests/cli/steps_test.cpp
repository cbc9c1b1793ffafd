// Pictures kept under names, and methods that are steps in unusual ways.

#include "cli/command.h"

#include <algorithm>

namespace kzb::test {

namespace {

class Steps : public CommandTest {
protected:
    static Pixels changed(const Pixels &pixels, const std::function<Pixel(Pixel)> &rule) {
        return make_pixels(pixels.width, pixels.height, pixels.has_alpha,
                           [&](int32_t x, int32_t y) { return rule(pixels.at(x, y)); });
    }
    static Pixels inverted() {
        return changed(plain_sample(), [](Pixel pixel) {
            for (size_t i = 0; i < 3; ++i) pixel[i] = static_cast<uint8_t>(255 - pixel[i]);
            return pixel;
        });
    }

    // A run that must fail with exit code 1.
    void expect_failure(const std::vector<std::string> &step, const std::vector<std::string> &told) const {
        std::vector<std::string> words = {"plain.png", "-o", "out.png", ":"};
        words.insert(words.end(), step.begin(), step.end());
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.exit, 1) << outcome.err;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        for (const std::string &part : told)
            EXPECT_NE(outcome.err.find(part), std::string::npos) << part << outcome.err;
        EXPECT_EQ(files(), (std::vector<std::string>{"alpha.png", "plain.png"}));
    }
};

TEST_F(Steps, AKeptPictureStaysAsItIs) {
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "Invert", ":", "@p"}), plain_sample());
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "Invert", ":", "=q", ":", "Invert", ":", "@q"}), inverted());
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "@p", ":", "FillRect", "1", ":", "@P"}), plain_sample());
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "Rotate", "0", "0", "0", "0", "0", "0", ":", "Invert", ":", "@p"}),
              plain_sample());
}

TEST_F(Steps, APictureIsKeptByAMethodsLastWord) {
    EXPECT_EQ(result("plain.png", {":", "Invert", "=negative", ":", "FillRect", "7", ":", "@negative"}), inverted());
    EXPECT_EQ(result("plain.png", {":", "GammaFilter", "1", "=same", ":", "Invert", ":", "@same"}), plain_sample());
}

TEST_F(Steps, ANameMayBeGivenAgain) {
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "Invert", ":", "=p", ":", "FillRect", "7", ":", "@p"}), inverted());
}

TEST_F(Steps, ThroughAViewStepsWriteIntoAKeptPicture) {
    const Pixels no_red = result("plain.png", {":", "=p", ":", "RedChannel", ":", "FillRect", "0", ":", "@p"});
    EXPECT_EQ(no_red, changed(plain_sample(), [](Pixel pixel) { return Pixel{0, pixel[1], pixel[2], 255}; }));
    const Pixels window = result(
        "plain.png", {":", "=p", ":", "ClipImage", "2", "1", "3", "2", ":", "FillRectRGB", "9", "9", "9", ":", "@p"});
    EXPECT_EQ(window, make_pixels(sample_width, sample_height, false, [](int32_t x, int32_t y) {
                  return x >= 2 && x < 5 && y >= 1 && y < 3 ? Pixel{9, 9, 9, 255} : plain_sample().at(x, y);
              }));
}

TEST_F(Steps, AKeptPictureStandsForAnArgument) {
    // (1 + 4 * 0.25) times the difference to black.
    const Pixels sharpened = result("plain.png", {":", "=p", ":", "FillRect", "0", ":", "=black", ":", "@p", ":",
                                                  "UnsharpFilter", "origpixels=@black", "Amount=0.25", "Threshold=0"});
    EXPECT_EQ(sharpened, changed(plain_sample(), [](Pixel pixel) {
                  for (size_t i = 0; i < 3; ++i) pixel[i] = static_cast<uint8_t>(std::min(255, 2 * pixel[i]));
                  return pixel;
              }));
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "Invert", ":", "GammaFilter", "dest=@p", "gamma=1"}), inverted());
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "CreatePictureKZB", "7", "5", "ImageFormatScaling", "=t", ":", "@p",
                                   ":", "Scale", "ScaleBox", "7", "5", "temp=@t"}),
              result("plain.png", {":", "Scale", "ScaleBox", "7", "5"}));
}

TEST_F(Steps, AStepWithASourceOfItsOwnWritesIntoTheCurrentPicture) {
    const Pixels stamped =
        result("plain.png", {":", "=p", ":", "Constructor", "9", "7", "ImageFormatRGB", ":", "FillRectRGB", "navy", ":",
                             "CopyPixels", "1", "1", "7", "5", "source=@p"});
    EXPECT_EQ(stamped, make_pixels(9, 7, false, [](int32_t x, int32_t y) {
                  const bool inside = x >= 1 && x < 8 && y >= 1 && y < 6;
                  return inside ? plain_sample().at(x - 1, y - 1) : Pixel{0, 0, 128, 255};
              }));
    EXPECT_EQ(result("plain.png", {":", "ScaleFast", "14", "10"}).width, 14);
    EXPECT_EQ(result("plain.png", {":", "CopyPixels"}), plain_sample());
}

TEST_F(Steps, APictureOfTheHostIsMadeOfAKeptOne) {
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "Invert", ":", "DrawPictureRGB", "@p", "0", "0", "7", "5"}),
              plain_sample());
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "Constructor", "@p", ":", "Invert"}), inverted());
    EXPECT_EQ(result("alpha.png",
                     {":", "=p", ":", "CopyPicture", ":", "DrawPictureRGB", "@p", "0", "0", "7", "5", "=q", ":", "@q"}),
              plain_sample());
}

TEST_F(Steps, RowsAndStringsAreKeptAndAssigned) {
    const Pixels third_row_twice = make_pixels(
        sample_width, sample_height, false, [](int32_t x, int32_t y) { return plain_sample().at(x, y == 0 ? 3 : y); });
    EXPECT_EQ(result("plain.png", {":", "Row", "3", "=r", ":", "Row", "0", "value=@r"}), third_row_twice);
    EXPECT_EQ(result("plain.png", {":", "RawRow", "3", "=r", ":", "Row", "value=@r", "index=0"}), third_row_twice);
    // The window that a raw row is would show the change.
    EXPECT_EQ(result("plain.png",
                     {":", "RawRow", "3", "=r", ":", "Invert", ":", "FillRect", "0", ":", "Row", "3", "value=@r"})
                  .at(2, 3),
              plain_sample().at(2, 3));
    const Pixels swapped = changed(plain_sample(), [](Pixel pixel) {
        return Pixel{pixel[2], pixel[1], pixel[0], 255};
    });
    EXPECT_EQ(result("plain.png", {":", "DataStringInFormat", "ImageFormatRGB", "=d", ":", "DataStringInFormat",
                                   "ImageFormatBGR", "value=@d"}),
              swapped);
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "Row", "3", "=r", ":", "Row", "0", "value=@r", ":", "@p"}),
              plain_sample());
}

TEST_F(Steps, WhatIsTooShortIsNotAssigned) {
    expect_failure({"Row", "3", "=r", ":", "ScaleFast", "100", "5", ":", "Row", "0", "value=@r"},
                   {"step 3, Row 0 value=@r", "the value has 64 bytes, and it takes 320"});
    expect_failure(
        {"DataStringInFormat", "ImageFormatG", "=d", ":", "DataStringInFormat", "ImageFormatRGB", "value=@d"},
        {"the value has 35 bytes, and it takes 105"});
    expect_failure({"Row", "3", "=r", ":", "Row", "5", "value=@r"}, {"Index is out of bounds"});
    expect_failure({"Row", "3", "=r", ":", "Constructor", "@r", "7", "5", "ImageFormatRGB", "64"},
                   {"step 2, Constructor", "64 bytes"});
}

TEST_F(Steps, ABlockMayBecomeAPicture) {
    const Pixels row =
        result("plain.png", {":", "RowInFormat", "3", "ImageFormatRGB", "=r", ":", "Constructor", "Buf=@r", "width=7",
                             "height=1", "ImageFormat=ImageFormatRGB", "RowSize=21"});
    EXPECT_EQ(row, make_pixels(7, 1, false, [](int32_t x, int32_t) { return plain_sample().at(x, 3); }));
}

TEST_F(Steps, APictureInAFileOfItsOwnLeavesNone) {
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "Constructor", "7", "5", "ImageFormatRGB", "0", "pixels", ":",
                                   "CopyPixels", "0", "0", "7", "5", "source=@p"}),
              plain_sample());
    EXPECT_EQ(files(), (std::vector<std::string>{"alpha.png", "out.png", "plain.png"}));
}

TEST_F(Steps, AFileThatExistsIsNoPlaceForAPicture) {
    write_file("precious", "old");
    const Outcome outcome =
        run({"plain.png", ":", "Constructor", "7", "5", "ImageFormatRGB", "0", "precious", "-o", "out.png"});
    EXPECT_EQ(outcome.exit, 2) << outcome.err;
    EXPECT_NE(outcome.err.find("the path of a file that does not exist"), std::string::npos) << outcome.err;
    EXPECT_EQ(read_file("precious"), "old");
}

TEST_F(Steps, AClosedPictureCannotGoOn) {
    expect_failure({"Close"}, {"cannot be read", "closed"});
    expect_failure({"Close", ":", "GammaFilter", "2"}, {"step 2, GammaFilter 2", "it gave nil"});
    EXPECT_EQ(result("plain.png", {":", "=p", ":", "Clone", ":", "Close", ":", "@p"}), plain_sample());
}

TEST_F(Steps, WhatAStepNeedsIsToldWhenItFails) {
    expect_failure({"AlphaChannel"}, {"step 1, AlphaChannel, failed on a picture of 7 x 5 pixels, ImageFormatRGB",
                                      "it gave nil; it needs a picture with alpha", "'kzb help AlphaChannel'"});
    expect_failure({"RedChannel", ":", "AutoLevel"}, {"it gave false; it needs a picture in red, green and blue"});
    expect_failure({"=p", ":", "ScaleFast", "3", "3", ":", "UnsharpFilter", "@p", "1", "0"},
                   {"step 3, UnsharpFilter @p 1 0", "3 x 3 pixels", "it needs origpixels of the same size and layout"});
    expect_failure({"ApplyMatrix", "[1,2,3]"}, {"it needs 25 whole numbers"});
    expect_failure({"GrayChannel"}, {"it needs a gray picture"});
    expect_failure({"Rotate90", ":", "CopyMask"}, {"5 x 7 pixels", "it needs a picture with alpha"});
}

TEST_F(Steps, LongArgumentsAreCutInWhatIsTold) {
    std::string array = "[0";
    for (int i = 1; i < 256; ++i) array.append(",").append(std::to_string(i));
    const Outcome outcome = run({"plain.png", ":", "ApplyMatrix", array + "]", "-o", "out.png"});
    EXPECT_EQ(outcome.exit, 1);
    EXPECT_NE(outcome.err.find("[0,1,2,"), std::string::npos);
    EXPECT_LT(outcome.err.size(), 400u);
}

TEST_F(Steps, ColoursHaveNames) {
    const auto all = [&](Pixel colour) {
        return make_pixels(sample_width, sample_height, false, [&](int32_t, int32_t) { return colour; });
    };
    EXPECT_EQ(result("plain.png", {":", "FillRectRGB", "orange"}), all({255, 165, 0, 255}));
    EXPECT_EQ(result("plain.png", {":", "FillRectRGB", "FillColor=NAVY"}), all({0, 0, 128, 255}));
}

} // namespace

} // namespace kzb::test
