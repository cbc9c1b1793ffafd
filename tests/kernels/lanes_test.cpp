// Rows of bytes under a pattern.

#include "kernels/each_level.h"
#include "kernels/guarded_bytes.h"
#include "kernels/lanes.h"

namespace kzb::kernels {
namespace {

using Guard = GuardedBytes::Guard;

Lanes lanes_from(const std::vector<uint8_t> &bytes) {
    Lanes lanes;
    std::copy_n(bytes.begin(), lanes.size(), lanes.begin());
    return lanes;
}

// Patterns of chosen bits, of pixels, and of whole rows.
std::vector<Lanes> patterns() {
    std::vector<Lanes> all = {lanes_from(random_bytes(lane_period, 1)), Lanes{}};
    all.emplace_back().fill(0xff);
    for (size_t lane = 0; lane < lane_period; ++lane) all[1][lane] = lane % 4 == 3 ? 0 : 0xff;
    return all;
}

template <class Check> void for_each_length(Check check) {
    for (const Lanes &pattern : patterns())
        for (size_t count = 0; count <= 2 * lane_period + 40; ++count)
            for_each_level([&](Level level) {
                SCOPED_TRACE(std::to_string(count) + " bytes");
                for (Guard guard : {Guard::before, Guard::after}) check(pattern, count, level, guard);
            });
}

TEST(ChangeLanes, KeepsAndInvertsBitsAtEveryLevel) {
    const Lanes flip = lanes_from(random_bytes(lane_period, 2));
    for_each_length([&](const Lanes &keep, size_t count, Level level, Guard guard) {
        auto expected = random_bytes(count, 3);
        GuardedBytes bytes(expected, guard);
        for (size_t i = 0; i < count; ++i)
            expected[i] = static_cast<uint8_t>((expected[i] & keep[i % lane_period]) ^ flip[i % lane_period]);
        change_lanes.at(level)(bytes.data(), count, keep, flip);
        ASSERT_EQ(bytes.bytes(), expected);
    });
}

TEST(SetLanes, RepeatsThePatternAtEveryLevel) {
    for_each_length([&](const Lanes &pattern, size_t count, Level level, Guard guard) {
        std::vector<uint8_t> expected(count);
        for (size_t i = 0; i < count; ++i) expected[i] = pattern[i % lane_period];
        GuardedBytes bytes(random_bytes(count, 3), guard);
        set_lanes.at(level)(bytes.data(), count, pattern);
        ASSERT_EQ(bytes.bytes(), expected);
    });
}

TEST(CopyLanes, TakesTheBitsThatAreNotKeptAtEveryLevel) {
    for_each_length([&](const Lanes &keep, size_t count, Level level, Guard guard) {
        Lanes flip = lanes_from(random_bytes(lane_period, 2));
        for (size_t lane = 0; lane < lane_period; ++lane) flip[lane] &= static_cast<uint8_t>(~keep[lane]);
        const auto source = random_bytes(count, 3);
        auto expected = random_bytes(count, 4);
        GuardedBytes target(expected, guard), origin(source, guard);
        for (size_t i = 0; i < count; ++i) {
            const uint8_t kept = keep[i % lane_period];
            expected[i] = static_cast<uint8_t>((expected[i] & kept) | ((source[i] & ~kept) ^ flip[i % lane_period]));
        }
        copy_lanes.at(level)(target.data(), origin.data(), count, keep, flip);
        ASSERT_EQ(target.bytes(), expected);
        ASSERT_EQ(origin.bytes(), source);
    });
}

TEST(ExchangeLanes, ExchangesTheChosenBitsAtEveryLevel) {
    for_each_length([&](const Lanes &exchanged, size_t count, Level level, Guard guard) {
        auto upper = random_bytes(count, 3), lower = random_bytes(count, 4);
        GuardedBytes a(upper, guard), b(lower, guard);
        for (size_t i = 0; i < count; ++i) {
            const auto difference = static_cast<uint8_t>((upper[i] ^ lower[i]) & exchanged[i % lane_period]);
            upper[i] ^= difference;
            lower[i] ^= difference;
        }
        exchange_lanes.at(level)(a.data(), b.data(), count, exchanged);
        ASSERT_EQ(a.bytes(), upper);
        ASSERT_EQ(b.bytes(), lower);
    });
}

} // namespace
} // namespace kzb::kernels
