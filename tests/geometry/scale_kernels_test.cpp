// The seven filters against values worked out by hand, and the lists of weights.

#include "geometry/contributions.h"
#include "geometry/scale.h"
#include "geometry/scale_fast.h"

#include <gtest/gtest.h>

#include <numbers>

namespace kzb {
namespace {

double weight(int32_t mode, double distance) {
    return scale_kernel(mode)->weight(distance);
}

constexpr int32_t triangle = 1, box = 2, lanczos3 = 3, lanczos8 = 4, mitchell = 5, poly3 = 6, cubic = 7;

TEST(ScaleKernels, AreKnownByTheirModesAlone) {
    for (int32_t mode : {-1, 0, 8, INT32_MIN, INT32_MAX}) EXPECT_EQ(scale_kernel(mode), nullptr) << mode;
    const double supports[] = {1, 0.5, 3, 8, 2, 4, 3};
    for (int32_t mode = 1; mode <= 7; ++mode) {
        ASSERT_NE(scale_kernel(mode), nullptr) << mode;
        EXPECT_EQ(scale_kernel(mode)->support, supports[mode - 1]) << mode;
    }
}

TEST(ScaleKernels, AreTheSameToEitherSide) {
    for (int32_t mode = 1; mode <= 7; ++mode)
        for (double x : {0.1, 0.5, 0.9, 1.0, 1.3, 2.7, 5.5}) EXPECT_EQ(weight(mode, -x), weight(mode, x)) << mode;
}

TEST(ScaleKernels, Triangle) {
    EXPECT_EQ(weight(triangle, 0), 1);
    EXPECT_EQ(weight(triangle, 0.25), 0.75);
    EXPECT_EQ(weight(triangle, 0.875), 0.125);
    EXPECT_EQ(weight(triangle, 1), 0);
    EXPECT_EQ(weight(triangle, 1.5), 0);
}

TEST(ScaleKernels, BoxIncludesItsBound) {
    EXPECT_EQ(weight(box, 0), 1);
    EXPECT_EQ(weight(box, 0.5), 1);
    EXPECT_EQ(weight(box, 0.5000000000000001), 0);
}

TEST(ScaleKernels, Lanczos3) {
    constexpr double pi = std::numbers::pi;
    EXPECT_EQ(weight(lanczos3, 0), 1);
    // sin(pi/2) / (pi/2) * sin(pi/6) / (pi/6)
    EXPECT_DOUBLE_EQ(weight(lanczos3, 0.5), 2 / pi * (3 / pi));
    // sin(3 pi/2) / (3 pi/2) * sin(pi/2) / (pi/2)
    EXPECT_DOUBLE_EQ(weight(lanczos3, 1.5), -2 / (3 * pi) * (2 / pi));
    // sin(5 pi/2) / (5 pi/2) * sin(5 pi/6) / (5 pi/6)
    EXPECT_DOUBLE_EQ(weight(lanczos3, 2.5), 2 / (5 * pi) * (3 / (5 * pi)));
    EXPECT_NEAR(weight(lanczos3, 1), 0, 1e-16);
    EXPECT_NE(weight(lanczos3, 1), 0) << "pi is no double";
    EXPECT_NE(weight(lanczos3, 2.999), 0);
    EXPECT_EQ(weight(lanczos3, 3), 0);
}

TEST(ScaleKernels, Lanczos8) {
    constexpr double pi = std::numbers::pi;
    EXPECT_EQ(weight(lanczos8, 0), 1);
    // sin(4.5 pi) / (4.5 pi) * sin(4.5 pi/8) / (4.5 pi/8)
    EXPECT_DOUBLE_EQ(weight(lanczos8, 4.5), 1 / (4.5 * pi) * 0.98078528040323044913 / (0.5625 * pi));
    // sin(pi/2) / (pi/2) * sin(pi/16) / (pi/16)
    EXPECT_DOUBLE_EQ(weight(lanczos8, 0.5), 2 / pi * 0.19509032201612826785 / (pi / 16));
    EXPECT_NE(weight(lanczos8, 7.5), 0);
    EXPECT_EQ(weight(lanczos8, 8), 0);
}

TEST(ScaleKernels, Mitchell) {
    EXPECT_DOUBLE_EQ(weight(mitchell, 0), 8.0 / 9);
    EXPECT_DOUBLE_EQ(weight(mitchell, 0.5), 77.0 / 144);
    EXPECT_NEAR(weight(mitchell, 1), 1.0 / 18, 1e-15);
    EXPECT_NEAR(weight(mitchell, 1.5), -5.0 / 144, 1e-15);
    EXPECT_EQ(weight(mitchell, 2), 0);
}

TEST(ScaleKernels, Poly3) {
    EXPECT_EQ(weight(poly3, 0), 1);
    EXPECT_EQ(weight(poly3, 0.5), 0.59375);
    EXPECT_EQ(weight(poly3, 1), 0);
    EXPECT_EQ(weight(poly3, 1.5), -0.09375);
    EXPECT_EQ(weight(poly3, 2), 0);
    EXPECT_EQ(weight(poly3, 3.5), 0);
}

TEST(ScaleKernels, Cubic) {
    EXPECT_EQ(weight(cubic, 0), 1);
    EXPECT_DOUBLE_EQ(weight(cubic, 0.5), 7.0 / 12);
    EXPECT_NEAR(weight(cubic, 1), 0, 1e-15);
    EXPECT_NEAR(weight(cubic, 1.5), -3.0 / 32, 1e-15);
    EXPECT_NEAR(weight(cubic, 2.5), 1.0 / 96, 1e-15);
    EXPECT_EQ(weight(cubic, 3), 0);
}

struct Entry {
    int32_t index;
    double weight;
    bool operator==(const Entry &) const = default;
};

std::vector<Entry> list_of(int32_t mode, int32_t outputs, int32_t inputs, int32_t output) {
    Contributions contributions(*scale_kernel(mode), outputs, inputs);
    for (int32_t i = 0; i < outputs; ++i) contributions.build(i);
    const kernels::ContributionList list = contributions[output];
    std::vector<Entry> entries;
    double sum = 0;
    for (int32_t k = 0; k < list.count; ++k) {
        if (list.weights[k] != 0) entries.push_back({list.first + k, list.weights[k]});
        sum += list.weights[k];
    }
    EXPECT_EQ(list.sum, sum);
    return entries;
}

using Entries = std::vector<Entry>;

// Whether the lists of two outputs from three inputs each, whose weights are these in turns, are ordinary ones.
template <const double (&weights)[2]> bool ordinary() {
    const ScaleKernel kernel = {1, nullptr, [](double *values, size_t count) {
                                    for (size_t i = 0; i < count; ++i) values[i] = weights[i % 2];
                                }};
    Contributions contributions(kernel, 3, 4);
    for (int32_t i = 0; i < 3; ++i) contributions.build(i);
    return contributions.ordinary();
}

constexpr double even[] = {1, 1}, tiny[] = {1, 0x1p-201}, huge[] = {1, 0x1p60}, opposite[] = {1, -1 + 0x1p-30},
                 small[] = {0x1p-61, 0x1p-62};

TEST(Contributions, OfTinyHugeOrCancellingWeightsAreNotOrdinary) {
    EXPECT_TRUE(ordinary<even>());
    EXPECT_FALSE(ordinary<tiny>());
    EXPECT_FALSE(ordinary<huge>());
    EXPECT_FALSE(ordinary<opposite>());
    EXPECT_FALSE(ordinary<small>());
}

TEST(Scaling, OfNilGivesFalse) {
    EXPECT_FALSE(scale(nullptr, nullptr, nullptr, box, 1, 1));
    EXPECT_FALSE(scale_fast(nullptr, nullptr, 1, 1));
}

TEST(Contributions, OfTheSameSizeAreTheInputItselfUnderBoxTriangleAndPoly3) {
    for (int32_t mode : {triangle, box, poly3})
        for (int32_t i = 0; i < 9; ++i) EXPECT_EQ(list_of(mode, 9, 9, i), (Entries{{i, 1}})) << mode;
}

TEST(Contributions, OfATriangleThatEnlarges) {
    // Centres lie 0.25 to either side of an input's.
    EXPECT_EQ(list_of(triangle, 8, 4, 3), (Entries{{1, 0.75}, {2, 0.25}}));
    EXPECT_EQ(list_of(triangle, 8, 4, 4), (Entries{{1, 0.25}, {2, 0.75}}));
}

TEST(Contributions, LeaveOutWhatLiesBeyondTheEdge) {
    EXPECT_EQ(list_of(triangle, 8, 4, 0), (Entries{{0, 0.75}}));
    EXPECT_EQ(list_of(triangle, 8, 4, 7), (Entries{{3, 0.75}}));
    EXPECT_EQ(list_of(triangle, 2, 4, 0), (Entries{{0, 0.75}, {1, 0.75}, {2, 0.25}}));
}

TEST(Contributions, OfATriangleThatShrinks) {
    // Distances of 1.5, 0.5, 0.5 and 1.5 inputs, halved.
    EXPECT_EQ(list_of(triangle, 4, 8, 1), (Entries{{1, 0.25}, {2, 0.75}, {3, 0.75}, {4, 0.25}}));
}

TEST(Contributions, OfABoxTakeBothInputsAtItsBound) {
    // The middle output's centre lies between two inputs.
    EXPECT_EQ(list_of(box, 3, 2, 1), (Entries{{0, 1}, {1, 1}}));
    EXPECT_EQ(list_of(box, 2, 4, 1), (Entries{{2, 1}, {3, 1}}));
}

TEST(Contributions, OfPoly3ThatShrinks) {
    EXPECT_EQ(list_of(poly3, 2, 4, 0), (Entries{{0, 0.87890625}, {1, 0.87890625}, {2, 0.26171875}, {3, -0.10546875}}));
}

TEST(Contributions, LeaveOutWeightsOfZero) {
    // Thirds of an input apart; those three away from the middle are at a distance of 1.
    std::vector<int32_t> indices;
    for (const Entry &entry : list_of(poly3, 3, 9, 1)) indices.push_back(entry.index);
    EXPECT_EQ(indices, (std::vector<int32_t>{0, 2, 3, 4, 5, 6, 8}));
}

TEST(Contributions, OfLanczosHaveTheWidestReach) {
    const Entries entries = list_of(lanczos8, 100, 100, 50);
    EXPECT_EQ(entries.size(), 15u);
    EXPECT_EQ(entries.front().index, 43);
    EXPECT_EQ(entries.back().index, 57);
    EXPECT_EQ(list_of(lanczos8, 50, 100, 25).size(), 32u);
}

TEST(Contributions, OfNoInputsAreEmpty) {
    for (int32_t mode = 1; mode <= 7; ++mode) {
        EXPECT_TRUE(list_of(mode, 3, 0, 1).empty());
        EXPECT_TRUE(list_of(mode, 3, -4, 1).empty());
    }
}

TEST(Contributions, OfTheLargestSizesStayInside) {
    const Entries one = list_of(box, 1, 1000000, 0);
    EXPECT_EQ(one.size(), 1000000u);
    EXPECT_EQ(list_of(triangle, 100000, 1, 99999).size(), 1u);
}

} // namespace
} // namespace kzb
