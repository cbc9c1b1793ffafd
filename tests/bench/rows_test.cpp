// What the bench concludes from times, and its tables.

#include "print.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kzb::bench {
namespace {

PeerTime peer(const char *name, double median) {
    PeerTime made;
    made.peer = name;
    made.operation = "op";
    made.time = {median, median / 2};
    return made;
}

// Ours takes 3 ns, the two peers 4 and 6.
Row compared() {
    Row row;
    row.operation = "Invert";
    row.layout = "RGBA";
    row.size = "256x256";
    row.held = "whole";
    row.passed = Time{3, 2};
    row.copy = {1.5, 1.2};
    row.set = {0.5, 0.5};
    row.peers = {peer("slow", 6), peer("fast", 4)};
    return row;
}

TEST(BenchTimes, AreTheMedianAndTheLeastPerPixel) {
    const Time odd = time_of({3e-6, 1e-6, 2e-6}, 1000);
    EXPECT_DOUBLE_EQ(odd.median, 2);
    EXPECT_DOUBLE_EQ(odd.minimum, 1);
    EXPECT_DOUBLE_EQ(time_of({4e-6, 1e-6, 2e-6, 3e-6}, 1000).median, 2.5);
    EXPECT_EQ(time_of({}, 1000).median, 0);
}

TEST(BenchRow, ComparesWithTheFastestPeer) {
    const Row row = compared();
    ASSERT_NE(row.best_peer(), nullptr);
    EXPECT_EQ(row.best_peer()->peer, "fast");
    EXPECT_DOUBLE_EQ(*row.ratio(), 0.75);
    EXPECT_DOUBLE_EQ(row.share_of_copy(), 0.5);
}

TEST(BenchRow, LeavesOutPeersThatDoOtherWork) {
    Row row = compared();
    row.peers[1].plausible = false;
    EXPECT_EQ(row.best_peer()->peer, "slow");
    row.peers[0].counted = false;
    EXPECT_EQ(row.best_peer(), nullptr);
    EXPECT_FALSE(row.ratio());
}

TEST(BenchRow, ReachesItsGoalUpToTheLimit) {
    Row row = compared();
    EXPECT_FALSE(row.met()) << "without a goal";
    row.target = 0.75;
    EXPECT_EQ(row.met(), true);
    row.target = 0.74;
    EXPECT_EQ(row.met(), false);
}

TEST(BenchRow, HoldsTheLimitInNanosecondsAsWell) {
    Row row = compared();
    row.target = 1;
    row.limit = 2.9;
    EXPECT_EQ(row.met(), false);
    row.limit = 3;
    EXPECT_EQ(row.met(), true);
    row.peers.clear();
    EXPECT_EQ(row.met(), true) << "the limit alone";
    row.limit.reset();
    EXPECT_FALSE(row.met()) << "nothing to compare with";
}

TEST(BenchRow, WithoutAPassedDestinationTakesTheTimeWithANewOne) {
    Row row = compared();
    row.passed.reset();
    row.nil = Time{8, 7};
    EXPECT_DOUBLE_EQ(*row.ratio(), 2);
}

TEST(BenchRow, ThatIsWrongReachesNothing) {
    Row row = compared();
    row.target = 10;
    row.held = "WRONG: byte 3";
    EXPECT_EQ(row.met(), false);
    EXPECT_FALSE(row.ratio());
    EXPECT_NE(line_of(row, row_table(Style::text)).find("WRONG: byte 3"), std::string::npos);
    EXPECT_FALSE(json_of(row).contains("ratio"));
}

TEST(BenchTable, NamesTheBestPeerAndTheDoubtfulOnes) {
    Row row = compared();
    row.target = 1;
    row.peers[0].plausible = false;
    row.peers[0].difference = 99;
    const std::string line = line_of(row, row_table(Style::text));
    EXPECT_NE(line.find("fast op"), std::string::npos);
    EXPECT_NE(line.find("  0.75  "), std::string::npos);
    EXPECT_NE(line.find("yes"), std::string::npos);
    EXPECT_NE(line.find("slow op 6.000 (not the same: differs by 99.0"), std::string::npos) << line;
}

TEST(BenchTable, MarkdownHasAsManyCellsInEveryLine) {
    const Table table = row_table(Style::markdown);
    const auto bars = [](const std::string &text) { return std::count(text.begin(), text.end(), '|'); };
    const std::string heading = table.heading();
    const size_t end = heading.find('\n');
    ASSERT_NE(end, std::string::npos);
    EXPECT_EQ(bars(heading.substr(0, end)), bars(heading.substr(end)));
    EXPECT_EQ(bars(line_of(compared(), table)), bars(heading.substr(0, end)));
    Row wrong = compared();
    wrong.held = "WRONG: byte 3";
    EXPECT_EQ(bars(line_of(wrong, table)), bars(heading.substr(0, end)));
}

TEST(BenchTable, JsonHoldsWhatTheTableShows) {
    Row row = compared();
    row.target = 0.8;
    const auto json = json_of(row);
    EXPECT_EQ(json["operation"], "Invert");
    EXPECT_EQ(json["best peer"], "fast");
    EXPECT_EQ(json["ratio"], 0.75);
    EXPECT_EQ(json["met"], true);
    EXPECT_EQ(json["peers"].size(), 2u);
    EXPECT_FALSE(json.contains("nil"));
}

} // namespace
} // namespace kzb::bench
