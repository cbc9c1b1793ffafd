// A picture in the terminal.
#include "cli/command.h"

#include <cstdlib>
#include <sstream>

namespace kzb::test {

namespace {

class Show : public CommandTest {
protected:
    void SetUp() override {
        CommandTest::SetUp();
        write_pixels(make_pixels(40, 20, false,
                                 [](int32_t x, int32_t) {
                                     return x < 20 ? Pixel{255, 255, 255, 255} : Pixel{0, 0, 0, 255};
                                 }),
                     path("halves.png"));
        write_pixels(make_pixels(16, 16, false,
                                 [](int32_t, int32_t) {
                                     return Pixel{255, 0, 0, 255};
                                 }),
                     path("red.png"));
    }

    // What is drawn in a terminal of that name.
    std::string in_terminal(const std::string &name, const std::string &words) const {
        const std::string command = "TERM=" + name + " COLORTERM=truecolor script -qec '" KZB_COMMAND " show " + words +
                                    "' /dev/null < /dev/null > '" + path("drawn") + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
        return read_file("drawn");
    }
};

TEST_F(Show, WithoutATerminalDrawsCharactersInTheShapeOfThePicture) {
    const Outcome outcome = run({"show", "halves.png", "--width", "20"});
    ASSERT_EQ(outcome.exit, 0) << outcome.err;
    std::istringstream lines(outcome.out);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        ASSERT_EQ(line.size(), 20u) << outcome.out;
        EXPECT_EQ(line.substr(0, 9).find(' '), std::string::npos) << outcome.out;
        EXPECT_EQ(line.substr(11), std::string(9, ' ')) << outcome.out;
    }
    EXPECT_EQ(count, 5); // a cell is twice as high as wide
}

TEST_F(Show, IsNoLargerThanThePicture) {
    const Outcome outcome = run({"show", "red.png"});
    EXPECT_EQ(outcome.out.find('\n'), 16u) << outcome.out;
}

TEST_F(Show, DrawsInTheColoursOfTheTerminal) {
    EXPECT_NE(in_terminal("xterm-256color", "'\\''" + path("red.png") + "'\\''").find(";2;25"), std::string::npos);
    EXPECT_EQ(in_terminal("xterm-256color", "--plain '\\''" + path("red.png") + "'\\''").find('\x1b'),
              std::string::npos);
}

TEST_F(Show, TellsWhatItCannotRead) {
    const Outcome missing = run({"show", "none.png"});
    EXPECT_EQ(missing.exit, 3);
    EXPECT_NE(missing.err.find("none.png"), std::string::npos) << missing.err;
    EXPECT_EQ(run({"show"}).exit, 2);
    EXPECT_EQ(run({"show", "red.png", "--width", "0"}).exit, 2);
}

} // namespace

} // namespace kzb::test
