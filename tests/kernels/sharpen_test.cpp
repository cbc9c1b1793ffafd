// Sharpening by steps at every level, against the rule, for every pair of bytes.

#include "kernels/each_level.h"
#include "kernels/sharpen.h"

#include <cmath>
#include <limits>

namespace kzb::kernels {
namespace {

// Twice the difference's share, truncated and clamped, as the filter's table says.
uint8_t moved(int32_t a, int32_t b, double factor, int32_t threshold) {
    if (std::abs(a - b) < threshold) return static_cast<uint8_t>(a);
    const double v = (a - b) * factor + b;
    if (!(v > 0)) return 0;
    return v < 255 ? static_cast<uint8_t>(v) : uint8_t{255};
}

TEST(Sharpen, EveryPairOfBytesByAnyFactor) {
    std::vector<uint8_t> values, references;
    for (int32_t pair = 0; pair < 65536; ++pair) {
        values.push_back(static_cast<uint8_t>(pair));
        references.push_back(static_cast<uint8_t>(pair >> 8));
    }
    const double below_three = std::nextafter(3.0, 0.0), infinity = std::numeric_limits<double>::infinity();
    for_each_level([&](Level level) {
        for (double factor : {3.0, 1.0, 1.4, 7.92, 1.0 / 3, 0.0, -0.24, -3.0, below_three, std::nextafter(0.1, 0.0),
                              1e-320, 1e9, -1e300, infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
            for (int32_t threshold : {INT32_MIN, 0, 3, 100, 256}) {
                const SharpeningSteps steps({factor, threshold});
                auto sharpened = values;
                sharpen.at(level)(sharpened.data(), references.data(), steps, values.size());
                for (size_t i = 0; i < values.size(); ++i)
                    ASSERT_EQ(sharpened[i], moved(values[i], references[i], factor, threshold))
                        << int(values[i]) << " against " << int(references[i]) << " by " << factor << ", threshold "
                        << threshold;
            }
        }
    });
}

TEST(Sharpen, AtEveryLengthAndAgainstItself) {
    const SharpeningSteps steps({2.6, 2});
    for_each_level([&](Level level) {
        for (size_t count = 0; count <= 200; ++count) {
            const auto values = random_bytes(count + 1, 1), references = random_bytes(count, 2);
            auto sharpened = values;
            sharpen.at(level)(sharpened.data(), references.data(), steps, count);
            for (size_t i = 0; i < count; ++i) ASSERT_EQ(sharpened[i], moved(values[i], references[i], 2.6, 2));
            EXPECT_EQ(sharpened[count], values[count]) << "beyond the last";
            sharpened = values;
            sharpen.at(level)(sharpened.data(), sharpened.data(), steps, count);
            EXPECT_EQ(sharpened, values);
        }
    });
}

TEST(SharpeningSteps, AreExactExceptCloseBelowWholeNumbers) {
    EXPECT_TRUE(SharpeningSteps({3.0, 0}).exact);
    EXPECT_TRUE(SharpeningSteps({3.0, 0}).outward);
    EXPECT_FALSE(SharpeningSteps({std::nextafter(3.0, 0.0), 0}).exact);
    EXPECT_FALSE(SharpeningSteps({-3.0, 0}).outward);
    EXPECT_FALSE(SharpeningSteps({std::numeric_limits<double>::infinity(), 0}).exact);
}

} // namespace
} // namespace kzb::kernels
