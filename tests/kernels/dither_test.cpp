// Bytes between levels, in every instruction set.

#include "kernels/dither.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace kzb::kernels {
namespace {

// The rule as it is stated, with divisions.
uint8_t dithered(int32_t v, int32_t threshold, int32_t levels, int32_t cells) {
    const int32_t steps = levels - 1;
    const int32_t lower = v * steps / 256;
    return static_cast<uint8_t>((threshold < v * (cells + 1) / 256 ? lower : lower + 1) * 255 / steps);
}

TEST(DitherScale, IsExactForEveryByteAndNumberOfLevels) {
    for (int32_t levels = 2; levels <= 256; ++levels) {
        const DitherScale scale(levels, 256);
        for (int32_t v = 0; v < 256; ++v)
            for (int32_t threshold : {0, v, 255})
                ASSERT_EQ(scale(static_cast<uint8_t>(v), static_cast<uint8_t>(threshold)),
                          dithered(v, threshold, levels, 256))
                    << v << " at " << levels;
    }
}

TEST(DitherScale, SplitsByTheNumberOfCells) {
    for (int32_t cells = 1; cells <= 256; ++cells) {
        const DitherScale scale(4, cells);
        for (int32_t v = 0; v < 256; ++v)
            for (int32_t near : {-1, 0, 1}) {
                const auto threshold = static_cast<uint8_t>(std::clamp(v * (cells + 1) / 256 + near, 0, 255));
                ASSERT_EQ(scale(static_cast<uint8_t>(v), threshold), dithered(v, threshold, 4, cells));
            }
    }
}

TEST(Dither, LeavesWhatIsKeptAndWhatLiesBeyondInEveryInstructionSet) {
    std::mt19937 random(5);
    for (Level level : every_level) {
        if (!runs(level)) continue;
        SCOPED_TRACE(name_of(level));
        for (size_t count : {0, 1, 2, 63, 64, 65, 100, 127, 128, 129, 200}) {
            const int32_t levels = 2 + static_cast<int32_t>(random() % 255);
            std::vector<uint8_t> source(count + 1), target(count + 1), thresholds(count + 1), keep(count + 1);
            for (auto *bytes : {&source, &target, &thresholds})
                for (uint8_t &byte : *bytes) byte = static_cast<uint8_t>(random());
            for (uint8_t &byte : keep) byte = random() % 3 == 0 ? 0xff : 0;
            std::vector<uint8_t> expected = target, in_place = source;
            for (size_t i = 0; i < count; ++i) {
                const uint8_t value = dithered(source[i], thresholds[i], levels, 64);
                if (keep[i] == 0) expected[i] = in_place[i] = value;
            }
            const DitherScale scale(levels, 64);
            dither.at(level)(target.data(), source.data(), thresholds.data(), keep.data(), scale, count);
            EXPECT_EQ(target, expected) << count;
            dither.at(level)(source.data(), source.data(), thresholds.data(), keep.data(), scale, count);
            EXPECT_EQ(source, in_place) << count << " in place";
        }
    }
}

} // namespace
} // namespace kzb::kernels
