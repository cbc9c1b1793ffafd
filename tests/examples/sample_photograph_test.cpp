// The sample photograph has what it is there for.

#include "cli/command.h"

#include "fixtures/host.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <sys/stat.h>

namespace kzb::test {

namespace {

TEST(SamplePhotograph, HasAlphaManyColoursAndSharpEdges) {
    const std::string folder = scratch_path();
    mkdir(folder.c_str(), 0700);
    const Outcome outcome = run_command(folder, {"sample.png", "320", "200"});
    ASSERT_EQ(outcome.exit, 0) << outcome.err;
    const Pixels pixels = read_pixels(folder + "/sample.png");
    EXPECT_EQ(pixels.width, 320);
    EXPECT_EQ(pixels.height, 200);
    EXPECT_TRUE(pixels.has_alpha);
    EXPECT_EQ(pixels.at(0, 0)[3], 0);
    EXPECT_EQ(pixels.at(160, 100)[3], 255);
    const std::set<Pixel> colours(pixels.all.begin(), pixels.all.end());
    EXPECT_GT(colours.size(), 20000u);
    int edges = 0;
    for (int32_t y = 0; y < pixels.height; ++y)
        for (int32_t x = 1; x < pixels.width; ++x)
            edges += std::abs(int{pixels.at(x, y)[0]} - int{pixels.at(x - 1, y)[0]}) > 100;
    EXPECT_GT(edges, 100);
}

TEST(SamplePhotograph, IsTheSameEveryTime) {
    const std::string folder = scratch_path();
    mkdir(folder.c_str(), 0700);
    for (const char *name : {"one.png", "two.png"}) ASSERT_EQ(run_command(folder, {name, "64", "40"}).exit, 0);
    EXPECT_EQ(read_pixels(folder + "/one.png"), read_pixels(folder + "/two.png"));
}

TEST(SamplePhotograph, TellsHowItIsUsed) {
    const Outcome outcome = run_command("/", {"sample.png", "0", "40"});
    EXPECT_EQ(outcome.exit, 2);
    EXPECT_EQ(outcome.err, "usage: sample_photograph OUTPUT [WIDTH HEIGHT]\n");
}

} // namespace

} // namespace kzb::test
