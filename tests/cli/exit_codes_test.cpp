// Each exit code, and what a run that fails leaves behind: one line on stderr, the output as it was, nothing else.

#include "cli/command.h"

#include <algorithm>

namespace kzb::test {

namespace {

class ExitCodes : public CommandTest {
protected:
    // A run that must fail over an existing out.png.
    void expect_failure(const std::vector<std::string> &words, int exit, const std::vector<std::string> &told) const {
        write_file("out.png", "what was there before");
        const std::vector<std::string> before = files();
        const Outcome outcome = run(words);
        const std::string line = testing::PrintToString(words) + "\n" + outcome.err;
        EXPECT_EQ(outcome.exit, exit) << line;
        EXPECT_EQ(outcome.out, "") << line;
        EXPECT_TRUE(outcome.err.starts_with("kzb: ")) << line;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << line;
        for (const std::string &part : told)
            EXPECT_NE(outcome.err.find(part), std::string::npos) << part << "\n" << line;
        EXPECT_EQ(read_file("out.png"), "what was there before") << line;
        EXPECT_EQ(files(), before) << line;
    }
};

TEST_F(ExitCodes, Is0WhenTheOutputWasWritten) {
    EXPECT_EQ(result("plain.png", {}), plain_sample());
    EXPECT_EQ(files(), (std::vector<std::string>{"alpha.png", "out.png", "plain.png"}));
}

TEST_F(ExitCodes, Is0OverTheInputItself) {
    const Outcome outcome = run({"plain.png", ":", "FillRectRGB", "1", "2", "3", "-o", "plain.png"});
    EXPECT_EQ(outcome.exit, 0) << outcome.err;
    EXPECT_EQ(read_pixels(path("plain.png")).at(6, 4), (Pixel{1, 2, 3, 255}));
}

TEST_F(ExitCodes, Is1WhenAStepGivesFalse) {
    expect_failure(
        {"plain.png", ":", "GammaFilter", "1", ":", "RedChannel", ":", "AutoLevel", "0", "y=0", "w=2", "h=2", "-o",
         "out.png"},
        1, {"step 3, AutoLevel 0 y=0 w=2 h=2,", "7 x 5 pixels, ImageFormatG", "it gave false", "'kzb help AutoLevel'"});
}

TEST_F(ExitCodes, Is1WhenAStepGivesNil) {
    expect_failure({"plain.png", ":", "AlphaChannel", "-o", "out.png"}, 1,
                   {"step 1, AlphaChannel,", "7 x 5 pixels, ImageFormatRGB", "it gave nil"});
}

TEST_F(ExitCodes, Is1WhenAPictureToWriteOnCannotBeMade) {
    expect_failure({"plain.png", ":", "ScaleFast", "2000000000", "2000000000", "-o", "out.png"}, 1,
                   {"step 1, ScaleFast 2000000000 2000000000,", "could not be made"});
    expect_failure({"plain.png", ":", "Scale", "ScaleBox", "-1", "4", "-o", "out.png"}, 1,
                   {"step 1, Scale ScaleBox -1 4,"});
}

TEST_F(ExitCodes, Is1WhenAnArgumentIsOutOfTheMethodsRange) {
    expect_failure({"plain.png", ":", "Scale", "8", "4", "4", "-o", "out.png"}, 1, {"it gave false", "kzb help Scale"});
    expect_failure({"plain.png", ":", "ApplyMatrix", "[1,2]", "-o", "out.png"}, 1, {"it gave nil"});
}

TEST_F(ExitCodes, Is1WhenThePictureAtTheEndIsEmpty) {
    expect_failure({"plain.png", ":", "ClipImage", "7", "0", "4", "4", "-o", "out.png"}, 1, {"0 x 4 pixels"});
}

TEST_F(ExitCodes, Is1WhenThePictureAtTheEndHasNoColours) {
    expect_failure({"plain.png", ":", "CreatePictureKZB", "3", "2", "ImageFormatScaling", "-o", "out.png"}, 1,
                   {"3 x 2 pixels, ImageFormatScaling"});
}

TEST_F(ExitCodes, Is2ForWrongUsage) {
    expect_failure({}, 2, {"there is no INPUT"});
    expect_failure({"plain.png", ":", "HMirrow", "-o", "out.png"}, 2, {"step 1, HMirrow"});
}

TEST_F(ExitCodes, Is3WhenTheInputCannotBeRead) {
    expect_failure({"none.png", "-o", "out.png"}, 3, {"none.png", "No such file"});
    expect_failure({".", "-o", "out.png"}, 3, {".: is a folder"});
    write_file("text.png", "This is no picture.");
    expect_failure({"text.png", "-o", "out.png"}, 3, {"text.png", "no PNG, JPEG, WebP, TIFF or PNM"});
    write_file("empty.png", "");
    expect_failure({"empty.png", "-o", "out.png"}, 3, {"empty.png", "empty"});
    const std::string whole = read_file("plain.png");
    write_file("half.png", whole.substr(0, whole.size() / 2));
    expect_failure({"half.png", "-o", "out.png"}, 3, {"half.png", "PNG file"});
}

TEST_F(ExitCodes, Is3WhenTheInputHasMorePixelsThanAllowed) {
    expect_failure({"plain.png", "--max-pixels", "34", "-o", "out.png"}, 3,
                   {"plain.png", "7 x 5 pixels", "34", "--max-pixels"});
    const Outcome outcome = run({"plain.png", "--max-pixels", "35", "-o", "out.png"});
    EXPECT_EQ(outcome.exit, 0) << outcome.err;
}

TEST_F(ExitCodes, Is4WhenTheOutputCannotBeWritten) {
    expect_failure({"plain.png", "-o", "no folder/out.png"}, 4, {"no folder/out.png", "make it first"});
    expect_failure({"plain.png", "-o", "/proc/out.png"}, 4, {"/proc/out.png"});
}

TEST_F(ExitCodes, Is4BeforeAnyWorkWhenTheFolderOfTheOutputIsMissing) {
    expect_failure({"none.png", "-o", "no folder/out.png"}, 4, {"no folder/out.png"});
}

TEST_F(ExitCodes, Is5WhenTheModuleCannotBeLoaded) {
    expect_failure({"plain.png", "--module", "none.so", "-o", "out.png"}, 5, {"none.so", "no such file"});
    expect_failure({"plain.png", "--module", "plain.png", "-o", "out.png"}, 5, {"plain.png", "not a library"});
    expect_failure({"plain.png", "--module", KZB_RUNTIME, "-o", "out.png"}, 5, {"REALPluginMain"});
    expect_failure({"plain.png", "--module", KZB_OTHER_MODULE, "-o", "out.png"}, 5, {"no class PictureKZB"});
    expect_failure({"list", "--module", "none.so"}, 5, {"none.so"});
}

TEST_F(ExitCodes, TheModuleIsTakenFromWhereTheOptionSays) {
    const Outcome outcome = run({"plain.png", "--module", KZB_TEST_MODULE, "-o", "out.png"});
    EXPECT_EQ(outcome.exit, 0) << outcome.err;
}

TEST_F(ExitCodes, AFileWithANewlineInItsNameStillMakesOneLine) {
    expect_failure({"no\nsuch.png", "-o", "out.png"}, 3, {"no such.png"});
}

} // namespace

} // namespace kzb::test
