// Box sums in 16 bits at every level, against sums and divisions of whole numbers.

#include "kernels/each_level.h"
#include "kernels/narrow_box.h"

namespace kzb::kernels {
namespace {

TEST(NarrowMean, IsExactForEverySumOfEveryDivisor) {
    for_each_level([](Level level) {
        for (int32_t divisor = 3; divisor <= 2 * largest_narrow_box_radius + 1; divisor += 2) {
            const NarrowMean mean(divisor);
            std::vector<uint16_t> sums(static_cast<size_t>(255 * divisor) + 1), zeros(sums.size());
            for (size_t i = 0; i < sums.size(); ++i) sums[i] = static_cast<uint16_t>(i);
            std::vector<uint8_t> means(sums.size());
            average_differences.at(level)(means.data(), sums.data(), zeros.data(), mean, sums.size());
            for (size_t i = 0; i < sums.size(); ++i)
                ASSERT_EQ(means[i], i / static_cast<size_t>(divisor)) << i << " / " << divisor;
        }
    });
}

TEST(AverageDifferences, GoAroundAt16Bits) {
    for_each_level([](Level level) {
        for (size_t count = 0; count <= 150; ++count) {
            std::vector<uint16_t> before(count), after(count);
            for (size_t i = 0; i < count; ++i) {
                before[i] = static_cast<uint16_t>(65000 + 13 * i);
                after[i] = static_cast<uint16_t>(before[i] + 17 * i);
            }
            std::vector<uint8_t> means(count + 1, 99);
            average_differences.at(level)(means.data(), after.data(), before.data(), NarrowMean(11), count);
            for (size_t i = 0; i < count; ++i) ASSERT_EQ(means[i], 17 * i / 11) << i << " of " << count;
            EXPECT_EQ(means[count], 99) << "beyond the last";
        }
    });
}

TEST(SlideNarrow, KeepsSumsAndTheirMeans) {
    for_each_level([](Level level) {
        for (size_t count = 0; count <= 200; ++count) {
            const auto entering = random_bytes(count, 1), leaving = random_bytes(count, 2);
            std::vector<uint16_t> sums(count);
            for (size_t i = 0; i < count; ++i) sums[i] = static_cast<uint16_t>(leaving[i] + 8 * 255u * i / 200);
            auto slid = sums;
            std::vector<uint8_t> means(count + 1, 99);
            slide_narrow.at(level)(means.data(), slid.data(), entering.data(), leaving.data(), NarrowMean(9), count);
            for (size_t i = 0; i < count; ++i) {
                ASSERT_EQ(slid[i], sums[i] + entering[i] - leaving[i]) << i << " of " << count;
                ASSERT_EQ(means[i], slid[i] / 9) << i << " of " << count;
            }
            EXPECT_EQ(means[count], 99) << "beyond the last";
        }
    });
}

TEST(AccumulateNarrow, AddsWeighedRows) {
    for_each_level([](Level level) {
        for (size_t count = 0; count <= 130; ++count) {
            const auto row = random_bytes(count, 3);
            std::vector<uint16_t> sums(count + 1, 7);
            accumulate_narrow.at(level)(sums.data(), row.data(), 128, count);
            for (size_t i = 0; i < count; ++i) ASSERT_EQ(sums[i], 7 + 128 * row[i]) << i << " of " << count;
            EXPECT_EQ(sums[count], 7) << "beyond the last";
        }
    });
}

TEST(SumUp, AddsEachChannelsBytesUpModulo16Bits) {
    for_each_level([](Level level) {
        for (size_t channels = 1; channels <= 4; ++channels) {
            for (size_t pixels = 1; pixels <= 140; ++pixels) {
                const size_t count = pixels * channels;
                const auto row = random_bytes(count, static_cast<uint32_t>(pixels));
                std::vector<uint16_t> sums(count + 1, 77);
                sum_up.at(level)(sums.data(), row.data(), channels, count);
                for (size_t i = 0; i < count; ++i)
                    ASSERT_EQ(sums[i], row[i] + (i < channels ? 0 : sums[i - channels])) << i << " of " << count;
                EXPECT_EQ(sums[count], 77) << "beyond the last";
            }
            // Long enough to go around.
            const std::vector<uint8_t> white(channels * 1000, 255);
            std::vector<uint16_t> sums(white.size());
            sum_up.at(level)(sums.data(), white.data(), channels, white.size());
            for (size_t i = 0; i < sums.size(); ++i)
                ASSERT_EQ(sums[i], static_cast<uint16_t>(255 * (i / channels + 1))) << i;
        }
    });
}

} // namespace
} // namespace kzb::kernels
