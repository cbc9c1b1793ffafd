// Every way of writing an argument, seen by what the step did.

#include "cli/command.h"

#include <cstdio>

namespace kzb::test {

namespace {

class Arguments : public CommandTest {
protected:
    // The sample after one step.
    Pixels after(std::vector<std::string> step) const {
        step.insert(step.begin(), ":");
        return result("plain.png", step);
    }

    static Pixels all(Pixel colour) {
        return make_pixels(sample_width, sample_height, false, [&](int32_t, int32_t) { return colour; });
    }

    static Pixels with_rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom, Pixel colour) {
        return make_pixels(sample_width, sample_height, false, [&](int32_t x, int32_t y) {
            const bool inside = x >= left && x < right && y >= top && y < bottom;
            return inside ? colour : plain_sample().at(x, y);
        });
    }
};

const Pixel orange = {255, 128, 0, 255};

TEST_F(Arguments, WholeNumbers) {
    EXPECT_EQ(after({"FillRect", "77"}), all({77, 77, 77, 255}));
    EXPECT_EQ(after({"FillRect", "+77"}), all({77, 77, 77, 255}));
    EXPECT_EQ(after({"FillRect", "&h4D"}), all({77, 77, 77, 255}));
    EXPECT_EQ(after({"FillRect", "&H4d"}), all({77, 77, 77, 255}));
    EXPECT_EQ(after({"FillRect", "-1"}), all({255, 255, 255, 255}));
    EXPECT_EQ(after({"FillRect", "&hFFFFFFFF"}), all({255, 255, 255, 255}));
    EXPECT_EQ(after({"FillRect", "-2147483648"}), all({0, 0, 0, 255}));
}

TEST_F(Arguments, NegativeNumbersAreNoOptions) {
    EXPECT_EQ(after({"FillRectRGB", "6", "4", "-3", "-2", "255", "128", "0"}), with_rectangle(3, 2, 6, 4, orange));
    const Pixels corner = after({"ClipImage", "-5", "-5", "10", "9"});
    EXPECT_EQ(corner, make_pixels(5, 4, false, [](int32_t x, int32_t y) { return plain_sample().at(x, y); }));
}

TEST_F(Arguments, AfterADoubleDash) {
    const Outcome outcome =
        run({"-o", "out.png", "plain.png", ":", "ClipImage", "--", "-5", "-5", "10", "9", ":", "FillRect", "9"});
    ASSERT_EQ(outcome.exit, 0) << outcome.err;
    EXPECT_EQ(read_pixels(path("out.png")), make_pixels(5, 4, false, [](int32_t, int32_t) {
                  return Pixel{9, 9, 9, 255};
              }));
}

TEST_F(Arguments, Numbers) {
    const Pixels expected = after({"GainFilter", "0.25", "0.5"});
    EXPECT_NE(expected, plain_sample());
    EXPECT_EQ(after({"GainFilter", ".25", "+.5"}), expected);
    EXPECT_EQ(after({"GainFilter", "25e-2", "5E-1"}), expected);
    // 1 / 0.5 - 2 and 1 / -1 - 2: a negative number arrives as such.
    EXPECT_NE(after({"GainFilter", "0.25", "-1"}), expected);
    EXPECT_EQ(after({"GainFilter", "0.25", "-1"}), after({"GainFilter", "0.25", "-1.0"}));
    EXPECT_EQ(after({"GainFilter", "-.5", "0.5"}), after({"GainFilter", "-0.5", "0.5"}));
}

TEST_F(Arguments, Colours) {
    for (const char *colour : {"#FF8000", "#ff8000", "&hFF8000", "&hff8000", "16744448"})
        EXPECT_EQ(after({"FillRectRGB", colour}), all(orange)) << colour;
    EXPECT_EQ(after({"FillRectRGB", "1", "1", "2", "3", "#FF8000"}), with_rectangle(1, 1, 3, 4, orange));
}

TEST_F(Arguments, ByNameInAnyCaseAndOrder) {
    EXPECT_EQ(after({"FillRectRGB", "blue=0", "Red=255", "GREEN=128"}), all(orange));
    EXPECT_EQ(after({"fillrectrgb", "fillcolor=#FF8000"}), all(orange));
    EXPECT_EQ(after({"FillRectRGB", "2", "height=1", "width=9", "y=3", "FillColor=#FF8000"}),
              with_rectangle(2, 3, 7, 4, orange));
    EXPECT_EQ(after({"FillRectRGB", "x=6", "y=4", "width=-3", "height=-2", "red=255", "green=128", "blue=0"}),
              with_rectangle(3, 2, 6, 4, orange));
}

TEST_F(Arguments, ChooseAmongTheFormsOfAMethod) {
    const Pixels by_one = after({"GammaFilter", "2"});
    EXPECT_EQ(after({"GammaFilter", "gamma=2"}), by_one);
    EXPECT_EQ(after({"GammaFilter", "2", "2", "2"}), by_one);
    EXPECT_EQ(after({"GammaFilter", "2", "alphaGamma=1"}), by_one);
    const Pixels red_only = after({"GammaFilter", "redGamma=2", "greenGamma=1", "blueGamma=1"});
    for (size_t i = 0; i < red_only.all.size(); ++i) {
        const Pixel was = plain_sample().all[i];
        EXPECT_EQ(red_only.all[i], (Pixel{by_one.all[i][0], was[1], was[2], 255}));
    }
}

std::string array_text(const char *separator) {
    std::string text = "[";
    for (int i = 0; i < 256; ++i) text += (i == 0 ? "" : separator) + std::to_string(255 - i);
    return text + "]";
}

TEST_F(Arguments, Arrays) {
    const Pixels negative = make_pixels(sample_width, sample_height, false, [](int32_t x, int32_t y) {
        Pixel pixel = plain_sample().at(x, y);
        for (uint8_t &channel : pixel) channel = static_cast<uint8_t>(255 - channel);
        return pixel;
    });
    EXPECT_EQ(after({"TransferFilter", array_text(",")}), negative);
    EXPECT_EQ(after({"TransferFilter", array_text(" , ")}), negative);
    EXPECT_EQ(after({"TransferFilter", "gray=" + array_text(",")}), negative);
    EXPECT_EQ(after({"TransferFilter", "[]"}), all({0, 0, 0, 255}));
    EXPECT_EQ(after({"TransferFilter", "nil"}), all({0, 0, 0, 255}));
}

TEST_F(Arguments, ArraysThatAShellHasSplit) {
    std::vector<std::string> step = {"TransferFilter", "green=[0,"};
    for (int i = 1; i < 255; ++i) step.push_back(std::to_string(i - 256).append(","));
    step.insert(step.end(), {"255]", "red=[", "1,", "2", "]", "blue=[]"});
    const Pixels split = after(step);
    for (size_t i = 0; i < split.all.size(); ++i)
        EXPECT_EQ(split.all[i], (Pixel{0, plain_sample().all[i][1], 0, 255})); // no red of the sample is below 2
}

TEST_F(Arguments, ConstantsByName) {
    const Pixels gray = after({"CreatePictureKZB", "3", "2", "ImageFormatG"});
    EXPECT_EQ(gray, make_pixels(3, 2, false, [](int32_t, int32_t) { return Pixel{0, 0, 0, 255}; }));
    const Outcome outcome = run({"plain.png", ":", "CreatePictureKZB", "3", "2", "imageformatga", "-o", "out.png"});
    EXPECT_EQ(outcome.exit, 0) << outcome.err;
    EXPECT_TRUE(read_pixels(path("out.png")).has_alpha);
}

TEST_F(Arguments, WhatTheChainSuppliesMayBeNamedNil) {
    EXPECT_EQ(after({"SolarizeFilter", "dest=nil"}), after({"SolarizeFilter"}));
    EXPECT_EQ(after({"GammaFilter", "dest=Nil", "gamma=2"}), after({"GammaFilter", "2"}));
}

TEST_F(Arguments, OptionsMayStandAnywhere) {
    const Pixels expected = after({"FillRect", "9"});
    const std::vector<std::vector<std::string>> lines = {
        {"-o", "one.png", "plain.png", ":", "FillRect", "9"},
        {"-oone.png", "plain.png", ":", "FillRect", "9"},
        {"plain.png", "--output=one.png", ":", "FillRect", "9"},
        {"plain.png", ":", "FillRect", "-o", "one.png", "9"},
        {"plain.png", ":", "-q", "FillRect", "9", ":", "-o", "one.png", "Invert", ":", "Invert"},
    };
    for (const auto &line : lines) {
        const Outcome outcome = run(line);
        ASSERT_EQ(outcome.exit, 0) << testing::PrintToString(line) << outcome.err;
        EXPECT_EQ(read_pixels(path("one.png")), expected) << testing::PrintToString(line);
        std::remove(path("one.png").c_str());
    }
}

TEST_F(Arguments, InputsMayBeNamedLikeCommands) {
    for (const char *name : {"list", "help"}) {
        write_file(name, read_file("plain.png"));
        EXPECT_EQ(result(name, {}), plain_sample());
        EXPECT_EQ(result(name, {":", "Invert", ":", "Invert"}), plain_sample());
    }
}

TEST_F(Arguments, InputsMayBeginWithADash) {
    write_file("-photo.png", read_file("plain.png"));
    const Outcome outcome = run({"-o", "out.png", "--", "-photo.png"});
    EXPECT_EQ(outcome.exit, 0) << outcome.err;
    EXPECT_EQ(read_pixels(path("out.png")), plain_sample());
}

} // namespace

} // namespace kzb::test
