#include "kernels/each_level.h"
#include "kernels/guarded_bytes.h"
#include "kernels/look_up.h"

namespace kzb::kernels {
namespace {

using Guard = GuardedBytes::Guard;

// Which of three tables each byte of a pixel goes through; -1: none.
using Choice = std::array<int, 4>;

void check(size_t step, const Choice &choice, size_t count, bool in_place) {
    const std::vector<uint8_t> entries[] = {random_bytes(256, 1), random_bytes(256, 2), random_bytes(256, 3)};
    std::array<const uint8_t *, 4> tables = {};
    size_t end = 0; // after the last byte with a table
    for (size_t k = 0; k < step; ++k) {
        if (choice[k] < 0) continue;
        tables[k] = entries[choice[k]].data();
        end = k + 1;
    }
    const PixelTables prepared(step, tables);
    const size_t size = count == 0 ? 0 : (count - 1) * step + end;
    const auto source = random_bytes(size, 4);
    const auto before = in_place ? source : random_bytes(size, 5);
    auto expected = before;
    for (size_t i = 0; i < size; ++i)
        if (tables[i % step] != nullptr) expected[i] = tables[i % step][source[i]];
    for_each_level([&](Level level) {
        for (Guard guard : {Guard::before, Guard::after}) {
            GuardedBytes target(before, guard);
            GuardedBytes apart(source, guard);
            look_up_pixels.at(level)(target.data(), in_place ? target.data() : apart.data(), prepared, count);
            ASSERT_EQ(target.bytes(), expected) << step << " bytes, " << count << " pixels";
        }
    });
}

TEST(LookUpPixels, GivesWhatTheTablesSayAtEveryLevel) {
    const Choice choices[] = {{0, 0, 0, 0}, {0, -1, -1, -1}, {0, 0, 0, -1}, {0, 1, 2, -1}, {0, 1, 0, 2}, {0, 1, 2, 0}};
    for (size_t step = 1; step <= 4; ++step)
        for (const Choice &choice : choices)
            for (size_t count : {0, 1, 2, 3, 7, 8, 15, 16, 17, 21, 22, 33, 63, 64, 65, 100, 193, 257})
                for (bool in_place : {false, true}) check(step, choice, count, in_place);
}

TEST(PixelTables, CountsEqualTablesOnce) {
    const auto first = random_bytes(256, 1), same = first, other = random_bytes(256, 2);
    EXPECT_EQ(PixelTables(4, {first.data(), same.data(), first.data(), nullptr}).count(), 1u);
    EXPECT_EQ(PixelTables(3, {first.data(), other.data(), same.data(), nullptr}).count(), 2u);
    EXPECT_EQ(PixelTables(4, {}).count(), 0u);
}

} // namespace
} // namespace kzb::kernels
