// Neon's roots, blurs of three taps and places nearby at every level, against their rules.

#include "kernels/each_level.h"
#include "kernels/neon.h"
#include "kernels/scatter.h"
#include "kernels/three_taps.h"

namespace kzb::kernels {
namespace {

// The largest v up to 255 with v² <= 4 (across² + down²).
uint8_t magnitude(int32_t across, int32_t down) {
    int32_t v = 0;
    while (v < 255 && (v + 1) * (v + 1) <= 4 * (across * across + down * down)) ++v;
    return static_cast<uint8_t>(v);
}

TEST(Neon, EveryPairOfDifferences) {
    std::vector<uint8_t> expected;
    for (int32_t across = 0; across <= 255; ++across)
        for (int32_t down = 0; down <= 255; ++down) expected.push_back(magnitude(across, down));
    for_each_level([&](Level level) {
        for (int32_t across = 0; across <= 255; ++across) {
            // Pixels of 256 channels: the second pixel differs by `across`.
            std::vector<uint8_t> row(512, static_cast<uint8_t>(across)), below(256), target(257, 77);
            std::fill_n(row.begin() + 256, 256, uint8_t{0});
            for (size_t i = 0; i < 256; ++i) below[i] = static_cast<uint8_t>(across - static_cast<int32_t>(i));
            neon.at(level)(target.data(), row.data(), below.data(), 256, 256);
            for (int32_t i = 0; i < 256; ++i) {
                const int32_t down = std::abs(across - below[static_cast<size_t>(i)]);
                ASSERT_EQ(target[static_cast<size_t>(i)], expected[static_cast<size_t>(across * 256 + down)]);
            }
            EXPECT_EQ(target[256], 77) << "beyond the last";
        }
    });
}

TEST(Neon, AtEveryLength) {
    for_each_level([](Level level) {
        for (size_t step = 1; step <= 4; ++step) {
            for (size_t count = step; count <= 150; count += step) {
                const auto row = random_bytes(count + step, 1), below = random_bytes(count, 2);
                std::vector<uint8_t> target(count + 1, 77);
                neon.at(level)(target.data(), row.data(), below.data(), step, count);
                for (size_t i = 0; i < count; ++i)
                    ASSERT_EQ(target[i], magnitude(row[i] - row[i + step], row[i] - below[i]));
                EXPECT_EQ(target[count], 77) << "beyond the last";
            }
        }
    });
}

TEST(ThreeTaps, AtEveryLength) {
    for_each_level([](Level level) {
        for (double f : {0.0, 0.25, 0.3, 0.999}) {
            const ThreeTaps taps = {f, 1 / (2 * f + 1)};
            for (size_t count = 0; count <= 150; ++count) {
                const auto centre = random_bytes(count, 1), before = random_bytes(count, 2),
                           after = random_bytes(count, 3);
                std::vector<uint8_t> result(count + 1, 77);
                three_taps.at(level)(result.data(), centre.data(), before.data(), after.data(), taps, count);
                for (size_t i = 0; i < count; ++i)
                    ASSERT_EQ(result[i], static_cast<int32_t>((centre[i] + (before[i] + after[i]) * f) * taps.w));
                EXPECT_EQ(result[count], 77) << "beyond the last";
            }
        }
    });
}

TEST(PlaceNear, IsTheRemainderWithinTheImage) {
    std::mt19937 engine(9);
    for_each_level([&](Level level) {
        for (int32_t reach : {0, 1, 3, 1000, 1 << 20, INT32_MAX}) {
            const uint32_t divisor = 2 * static_cast<uint32_t>(reach) + 1;
            std::vector<int32_t> numbers = {0, 1, INT32_MAX, INT32_MAX - 1};
            for (uint32_t q = 0; q < 300; ++q)
                for (uint32_t near : {0u, 1u, divisor - 1})
                    if (const uint64_t n = uint64_t{divisor} * (engine() % 5000) + near; n <= INT32_MAX)
                        numbers.push_back(static_cast<int32_t>(n));
            for (int i = 0; i < 500; ++i) numbers.push_back(static_cast<int32_t>(engine() >> 1));
            for (int32_t limit : {1, 50, 100000, INT32_MAX}) {
                for (int32_t step : {0, 1}) {
                    auto places = numbers;
                    place_near.at(level)(places.data(), Remainder(divisor), 20, step, reach, limit, places.size());
                    for (size_t i = 0; i < places.size(); ++i) {
                        const int64_t place =
                            20 + step * static_cast<int64_t>(i) + static_cast<uint32_t>(numbers[i]) % divisor - reach;
                        ASSERT_EQ(places[i], std::clamp<int64_t>(place, 0, int64_t{limit} - 1)) << numbers[i];
                    }
                }
            }
        }
    });
}

} // namespace
} // namespace kzb::kernels
