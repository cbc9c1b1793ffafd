// Shears in whole numbers at every level, against fractions.

#include "kernels/each_level.h"
#include "kernels/shear.h"
#include "kernels/shear_rows.h"

#include <cmath>
#include <random>

namespace kzb::kernels {
namespace {

// Fractions around those at which some byte's part changes, and others.
std::vector<double> telling_fractions() {
    std::vector<double> fractions = {0, 1e-300, 5e-324, 1e-17, 0.5, std::nextafter(1.0, 0.0)};
    for (int32_t below = 1; below <= 255; ++below) {
        for (int32_t above = 0; above<below; above += below> 40 ? 7 : 1) {
            const double fraction = static_cast<double>(above) / below;
            fractions.push_back(fraction);
            fractions.push_back(std::nextafter(fraction, 1.0));
            if (above > 0) fractions.push_back(std::nextafter(fraction, 0.0));
            fractions.push_back(std::min(fraction + 1e-6, 0.999));
        }
    }
    std::mt19937_64 engine(5);
    for (int i = 0; i < 2000; ++i) fractions.push_back(static_cast<double>(engine() >> 11) * 0x1p-53);
    return fractions;
}

TEST(FactorOf, GivesEveryBytesPart) {
    size_t without = 0;
    const std::vector<double> fractions = telling_fractions();
    for (double fraction : fractions) {
        const int32_t factor = factor_of(fraction);
        without += factor < 0;
        if (factor < 0) continue;
        for (int32_t byte = 0; byte < 256; ++byte)
            ASSERT_EQ(byte * factor >> 16, part_of(static_cast<uint8_t>(byte), fraction)) << fraction << ' ' << byte;
    }
    // Only fractions next to a quotient of bytes may have none.
    EXPECT_LT(without, fractions.size() / 3);
    EXPECT_EQ(factor_of(1.0), -1);
    EXPECT_EQ(factor_of(0.0), 0);
}

TEST(FactorOf, IsThereForEveryFractionApartFromQuotientsOfBytes) {
    // In the middle between neighbours among all quotients with divisors up to 255, some the closest there are.
    for (int32_t below = 128; below < 255; ++below)
        EXPECT_GE(factor_of(0.5 * (1.0 / below + 1.0 / (below + 1))), 0) << below;
    EXPECT_GE(factor_of(0.5 * (1.0 / 255 + 0)), 0);
    EXPECT_GE(factor_of(0.5 * (254.0 / 255 + 1)), 0);
    std::mt19937_64 engine(6);
    for (int i = 0; i < 5000; ++i) EXPECT_GE(factor_of(static_cast<double>(engine() >> 11) * 0x1p-53), 0);
}

TEST(HandPartsOn, AtEveryLength) {
    for_each_level([](Level level) {
        for (size_t count = 0; count <= 200; ++count) {
            const auto source = random_bytes(count, 1), before = random_bytes(count, 2);
            for (double fraction : {0.0, 0.3, 0.999}) {
                const auto factor = static_cast<uint16_t>(factor_of(fraction));
                std::vector<uint8_t> target(count + 1, 77), exact(count + 1, 77), own(count + 1, 77);
                const std::vector<uint16_t> factors(count, factor);
                hand_parts_on.at(level)(target.data(), source.data(), before.data(), factor, count);
                hand_own_parts_on.at(level)(own.data(), source.data(), before.data(), factors.data(), count);
                hand_exact_parts_on(exact.data(), source.data(), before.data(), fraction, count);
                for (size_t i = 0; i < count; ++i)
                    ASSERT_EQ(target[i], static_cast<uint8_t>(source[i] - part_of(source[i], fraction) +
                                                              part_of(before[i], fraction)));
                EXPECT_EQ(target, exact);
                EXPECT_EQ(target, own);
            }
        }
    });
}

TEST(HandPartsOn, ForEveryPairOfBytes) {
    std::vector<uint8_t> source, before;
    for (int32_t pair = 0; pair < 65536; ++pair) {
        source.push_back(static_cast<uint8_t>(pair));
        before.push_back(static_cast<uint8_t>(pair >> 8));
    }
    for_each_level([&](Level level) {
        for (double fraction : {0.1, 1.0 / 3, 0.5, 0.77, 254.5 / 255}) {
            const int32_t factor = factor_of(fraction);
            ASSERT_GE(factor, 0);
            std::vector<uint8_t> target(source.size());
            hand_parts_on.at(level)(target.data(), source.data(), before.data(), static_cast<uint16_t>(factor),
                                    source.size());
            for (size_t i = 0; i < source.size(); ++i)
                ASSERT_EQ(target[i], static_cast<uint8_t>(source[i] - part_of(source[i], fraction) +
                                                          part_of(before[i], fraction)));
        }
    });
}

TEST(TakeStairs, TakesEachPixelFromItsRow) {
    for_each_level([](Level level) {
        for (size_t channels = 1; channels <= 4; ++channels) {
            for (size_t pixels = 1; pixels <= 128; ++pixels) {
                const size_t count = pixels * channels;
                for (double slope : {0.0, 0.07, 0.29, 0.7071}) {
                    for (bool down : {false, true}) {
                        std::vector<uint8_t> rows(count);
                        for (size_t x = 0; x < pixels; ++x) {
                            const auto row = static_cast<uint8_t>(static_cast<double>(x) * slope);
                            const size_t place = down ? pixels - 1 - x : x;
                            std::fill_n(rows.begin() + static_cast<ptrdiff_t>(place * channels), channels, row);
                        }
                        const size_t step = count + 5;
                        // As many rows as are taken from, and no byte beyond.
                        const size_t last = std::max(rows.front(), rows.back());
                        const auto tile = random_bytes(last * step + count, 4);
                        std::vector<uint8_t> target(count + 1, 77);
                        take_stairs.at(level)(target.data(), tile.data(), static_cast<ptrdiff_t>(step), rows.data(),
                                              channels, count);
                        for (size_t i = 0; i < count; ++i) ASSERT_EQ(target[i], tile[rows[i] * step + i]) << i;
                        EXPECT_EQ(target[count], 77) << "beyond the last";
                    }
                }
            }
        }
    });
}

} // namespace
} // namespace kzb::kernels
