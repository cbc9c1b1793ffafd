// Mistakes in a command line, each told in one line that names what is wrong and how it is right.

#include "cli/command.h"

#include <algorithm>

namespace kzb::test {

namespace {

struct Mistake {
    std::vector<std::string> words;
    std::vector<std::string> told;
};

class Mistakes : public CommandTest {
protected:
    void expect(const std::vector<Mistake> &mistakes) const {
        for (const Mistake &mistake : mistakes) {
            const Outcome outcome = run(mistake.words);
            const std::string line = testing::PrintToString(mistake.words) + "\n" + outcome.err;
            EXPECT_EQ(outcome.exit, 2) << line;
            EXPECT_EQ(outcome.out, "") << line;
            EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << line;
            for (const std::string &part : mistake.told)
                EXPECT_NE(outcome.err.find(part), std::string::npos) << part << "\n" << line;
        }
        EXPECT_EQ(files(), (std::vector<std::string>{"alpha.png", "plain.png"}));
    }

    // The mistake in one step, with the rest of the line right.
    static Mistake in_step(std::vector<std::string> step, std::vector<std::string> told) {
        std::vector<std::string> words = {"plain.png", "-o", "out.png", ":"};
        words.insert(words.end(), step.begin(), step.end());
        return {words, std::move(told)};
    }
};

TEST_F(Mistakes, InTheFrameOfTheLine) {
    expect({
        {{"-o", "out.png"}, {"there is no INPUT"}},
        {{":", "HMirror", "-o", "out.png"}, {"there is no INPUT"}},
        {{"plain.png"}, {"the OUTPUT is missing", "-o FILE"}},
        {{"plain.png", ":", "Invert"}, {"the OUTPUT is missing"}},
        {{"plain.png", ":Invert", "-o", "out.png"}, {"':Invert'", "':' that stands alone"}},
        {{"plain.png", ":", "-o", "out.png"}, {"step 1 is empty"}},
        {{"plain.png", ":", "Invert", ":", ":", "Invert", "-o", "out.png"}, {"step 2 is empty"}},
        {{"lst"}, {"neither a command nor a file lst", "did you mean list?"}},
        {{"list", "quantum"}, {"'quantum'", "'kzb list' shows all"}},
        {{"list", "tone", "size"}, {"'kzb list --help'"}},
        {{"help", "Invert", "Row"}, {"'kzb help --help'"}},
    });
}

TEST_F(Mistakes, InOptions) {
    expect({
        {{"plain.png", "--ouput", "out.png"}, {"no option --ouput", "did you mean --output?"}},
        {{"plain.png", "--ouput=out.png"}, {"no option --ouput;", "did you mean --output?"}},
        {{"plain.png", "-x", "-o", "out.png"}, {"no option -x", "--help"}},
        {{"plain.png", ":", "Invert", "-x", "-o", "out.png"}, {"no option -x"}},
        {{"plain.png", "-o"}, {"-o needs a value"}},
        {{"plain.png", "-o", ":", "Invert"}, {"-o needs a value"}},
        {{"plain.png", "-o", "out.png", "-o", "two.png"}, {"--output"}},
        {{"plain.png", "-o", "out.jpg", "--quality", "101"}, {"--quality", "101", "1"}},
        {{"plain.png", "-o", "out.jpg", "--quality", "good"}, {"--quality", "good"}},
        {{"plain.png", "-o", "out.png", "--max-pixels", "0"}, {"--max-pixels"}},
        {{"plain.png", "-o", "out.png", "--quiet=maybe"}, {"quiet"}},
    });
}

TEST_F(Mistakes, InTheEndingOfTheOutputAreToldBeforeAnyWork) {
    expect({
        {{"none.png", "-o", "out.bmp"}, {"out.bmp", ".png, .jpg, .webp, .tif, .pnm or .ppm"}},
        {{"none.png", "-o", "out"}, {"out:", ".png, .jpg, .webp, .tif, .pnm or .ppm"}},
        {{"none.png", "-o", "a.png/out"}, {"a.png/out:", ".png, .jpg, .webp, .tif, .pnm or .ppm"}},
    });
}

TEST_F(Mistakes, InTheNameOfAMethod) {
    expect({
        in_step({"GamaFilter", "2"}, {"step 1, GamaFilter", "no such method", "did you mean GammaFilter?"}),
        in_step({"Invert", ":", "invret"}, {"step 2, invret", "did you mean Invert?"}),
        in_step({"Quantum"}, {"step 1, Quantum", "kzb list"}),
        in_step({"GammaFilter 2"}, {"step 1, GammaFilter 2", "leave out the quotes"}),
    });
}

TEST_F(Mistakes, WhatAChainCannotGoOnWithMustBeKept) {
    expect({
        in_step({"RawRow", "1"}, {"gives a memoryblock", "keep it under a name", "write RawRow index =NAME"}),
        in_step({"DataStringInFormat", "1"}, {"gives a string", "keep it"}),
        in_step({"Row", "1", "=line", ":", "@line"}, {"step 2, @line", "line is a memoryblock, no picture"}),
        in_step({"Row", "1", "value=@line"}, {"keeps anything as line"}),
        in_step({"Row", "1", "value=7"}, {"value must be a kept memoryblock, @name, not '7'"}),
        in_step({"=p", ":", "Row", "1", "value=@p"}, {"value must be a memoryblock, and p is a PictureKZB"}),
        in_step({"Row", "1", "=a", ":", "Row", "1", "value=@a", "=b"}, {"takes a value and so gives none"}),
    });
}

TEST_F(Mistakes, InNamesThatAreKeptAndRecalled) {
    expect({
        in_step({"=soft", ":", "@sof"}, {"step 2, @sof", "keeps anything as sof; did you mean soft?"}),
        in_step({"@soft"}, {"keeps anything as soft", "': =soft'"}),
        in_step({"@soft", ":", "=soft"}, {"step 1, @soft"}),
        in_step({"=", ":", "Invert"}, {"'='", "needs a name"}),
        in_step({"=a b"}, {"'=a b'", "needs a name"}),
        in_step({"=soft", "Invert"}, {"'Invert' is more than it takes"}),
        in_step({"Invert", "=2"}, {"'=2'", "needs a name"}),
        in_step({"=soft", ":", "UnsharpFilter", "@sot", "0.6", "3"},
                {"argument origpixels must be a kept picture, @name", "did you mean soft?",
                 "Write UnsharpFilter origpixels Amount Threshold"}),
        in_step({"UnsharpFilter", "0.6", "3"},
                {"argument origpixels must be a kept picture, @name, not '0.6'", "write UnsharpFilter"}),
        in_step({"=soft", ":", "FillRect", "@soft"}, {"the argument value must be ", "a whole number"}),
        in_step({"CopyPixels", "source=nil"}, {"argument source must be a kept picture", "not 'nil'"}),
        in_step({"DrawPictureRGB", "nil", "0", "0", "1", "1"}, {"argument pic must be a kept picture"}),
    });
}

TEST_F(Mistakes, ConstantsOfAnotherFamily) {
    expect({
        in_step({"Scale", "ImageFormatRGB", "3", "3"},
                {"argument mode must be a constant Scale...", "'ImageFormatRGB'"}),
        in_step({"Scale", "ScaleBux", "3", "3"}, {"argument mode must be a constant Scale...", "'ScaleBux' is neither",
                                                  "did you mean ScaleBox?", "Write Scale mode width height"}),
        in_step({"DitherFilter", "ScaleBox", "3"}, {"argument matrix must be a constant Dither..."}),
        in_step({"FillRectRGB", "FillColor=orandge"}, {"argument FillColor must be a colour", "did you mean orange?"}),
    });
}

TEST_F(Mistakes, InTheNumberOfArguments) {
    expect({
        in_step({"GammaFilter"}, {"step 1, GammaFilter: the argument", "is missing", "GammaFilter gamma alphaGamma"}),
        in_step({"GainFilter", "0.5"}, {"the argument bias (a number) is missing", "write GainFilter gain bias"}),
        in_step({"SolarizeFilter", "1"}, {"'1' is more than it takes", "write SolarizeFilter"}),
        in_step({"GammaFilter", "1", "2", "3", "4", "5"}, {"'5' is more than it takes"}),
    });
}

TEST_F(Mistakes, InTheNamesOfArguments) {
    expect({
        in_step({"GammaFilter", "gama=2"}, {"no argument named gama", "did you mean gamma?"}),
        in_step({"GainFilter", "strength=2", "1"}, {"'1' has no name but stands after a named argument"}),
        in_step({"GainFilter", "strength=2"}, {"no argument named strength", "write GainFilter gain bias"}),
        in_step({"GainFilter", "0.5", "gain=0.5"}, {"the argument gain is given twice"}),
        in_step({"GainFilter", "0.5", "bias="}, {"the argument bias has no value", "bias=value"}),
    });
}

TEST_F(Mistakes, InTheTypesOfArguments) {
    expect({
        in_step({"FillRect", "1.5"}, {"the argument value must be ", "a whole number", "not '1.5'"}),
        in_step({"FillRect", "true"}, {"the argument value must be ", "a whole number", "not 'true'"}),
        in_step({"FillRect", "#ffffff"}, {"the argument value must be ", "a whole number", "not '#ffffff'"}),
        in_step({"FillRect", "4294967296"}, {"not '4294967296'", "from -2147483648 to 2147483647"}),
        in_step({"FillRect", "[1]"}, {"'[1]'", "a whole number"}),
        in_step({"GainFilter", "0.5", "nil"}, {"the argument bias must be ", "a number", "not 'nil'"}),
        in_step({"GainFilter", "bias=#000000", "gain=1"}, {"the argument bias must be ", "a number", "not '#000000'"}),
        in_step({"TransferFilter", "3"}, {"the argument gray must be ", "an array of whole numbers", "not '3'"}),
        in_step({"FillRectRGB", "&hFF000000"}, {"the argument FillColor must be ", "a colour", "not '&hFF000000'"}),
        in_step({"SolarizeFilter", "dest=1"}, {"the argument dest must be ", "nil", "not '1'"}),
    });
}

TEST_F(Mistakes, InTheTextOfArguments) {
    expect({
        in_step({"CreatePictureKZB", "1", "1", "ImageFormatRBG"}, {"'ImageFormatRBG'", "did you mean ImageFormatRGB?"}),
        in_step({"FillRect", "much"}, {"'much' is neither a number nor a constant"}),
        in_step({"FillRect", "12..5"}, {"'12..5' is no value"}),
        in_step({"FillRect", "0x10"}, {"'0x10' is no value"}),
        in_step({"FillRect", "+-1"}, {"'+-1' is no value"}),
        in_step({"FillRect", "nan"}, {"'nan' is neither"}),
        in_step({"FillRect", ""}, {"'' is no value"}),
        in_step({"FillRectRGB", "#12345"}, {"'#12345' is no value", "#RRGGBB"}),
        in_step({"FillRectRGB", "#12345g"}, {"'#12345g' is no value"}),
        in_step({"FillRect", "&h"}, {"'&h' is no value"}),
        in_step({"FillRect", "&h123456789"}, {"'&h123456789' is no value"}),
        in_step({"FillRect", "1", ":Invert"}, {"':Invert'", "stands alone"}),
        in_step({"FillRect", "1:", "Invert"}, {"'1:'", "stands alone"}),
        in_step({"TransferFilter", "[1,2"}, {"the array [1,2", "lacks its ']'"}),
        in_step({"TransferFilter", "[1,two]"}, {"the array [1,two]", "'two'"}),
        in_step({"TransferFilter", "[1,,2]"}, {"the array [1,,2]", "''"}),
        in_step({"TransferFilter", "[1,2,]"}, {"the array [1,2,]", "ends with a comma"}),
        in_step({"TransferFilter", "[2147483648]"}, {"'2147483648'"}),
    });
}

TEST_F(Mistakes, AreToldBeforeTheInputIsRead) {
    expect({{{"none.png", ":", "Invert", ":", "Invret", "-o", "out.png"}, {"step 2, Invret"}}});
}

TEST_F(Mistakes, InOptionsAfterTheDoubleDashAreArguments) {
    expect({{{"plain.png", ":", "FillRect", "--", "1", "-o", "out.png"}, {"the OUTPUT is missing"}},
            {{"-o", "out.png", "plain.png", ":", "FillRect", "--", "-x"}, {"'-x' is no value"}}});
}

} // namespace

} // namespace kzb::test
