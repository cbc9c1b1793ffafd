// The box blur's averages without a division table.

#include "kernels/box.h"

#include <gtest/gtest.h>

#include <vector>

namespace kzb::kernels {
namespace {

// Sums around every multiple of the divisor, where a quotient could be taken for the next, and around the table's ends.
template <class Sum> std::vector<Sum> telling_sums(int64_t divisor) {
    std::vector<Sum> sums;
    for (int64_t q = -1; q <= 257; ++q)
        for (int64_t near : {-1, 0, 1}) sums.push_back(static_cast<Sum>(q * divisor + near));
    return sums;
}

template <class Sum> void expect_exact(int64_t divisor) {
    const std::vector<Sum> sums = telling_sums<Sum>(divisor);
    std::vector<uint8_t> averages(sums.size(), 77);
    average(averages.data(), sums.data(), divisor, sums.size());
    for (size_t i = 0; i < sums.size(); ++i) {
        const int64_t sum = sums[i];
        const int64_t expected = sum < 0 || sum >= 256 * divisor ? 0 : sum / divisor;
        ASSERT_EQ(averages[i], expected) << sum << " / " << divisor;
    }
}

TEST(BoxAverage, IsExactForEveryDivisorOf32BitSums) {
    for (int64_t divisor = 1; divisor <= largest_narrow_divisor; divisor += 2) expect_exact<int32_t>(divisor);
}

TEST(BoxAverage, IsExactForDivisorsOf64BitSums) {
    for (int64_t divisor = 1; divisor < 2000; divisor += 2) expect_exact<int64_t>(divisor);
    for (int bits = 11; bits <= 45; ++bits)
        for (int64_t below : {-1, 1, 3, 5, 1001}) {
            const int64_t divisor = (int64_t{1} << bits) - below;
            if (divisor <= int64_t{1} << 45) expect_exact<int64_t>(divisor);
        }
}

TEST(BoxAverage, SumsFarOutsideTheTableGiveZero) {
    const int32_t narrow[] = {INT32_MIN, INT32_MIN + 1, -1, 256 * 3, INT32_MAX};
    const int64_t wide[] = {INT64_MIN, -1, 256 * 3, int64_t{1} << 32, INT64_MAX};
    uint8_t averages[5] = {1, 1, 1, 1, 1};
    average(averages, narrow, 3, 5);
    for (uint8_t value : averages) EXPECT_EQ(value, 0);
    std::fill_n(averages, 5, uint8_t{1});
    average(averages, wide, 3, 5);
    for (uint8_t value : averages) EXPECT_EQ(value, 0);
}

} // namespace
} // namespace kzb::kernels
