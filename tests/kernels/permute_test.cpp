#include "kernels/each_level.h"
#include "kernels/guarded_bytes.h"
#include "kernels/permute.h"
#include "kernels/weigh.h"

#include <algorithm>

namespace kzb::kernels {
namespace {

using Guard = GuardedBytes::Guard;

constexpr size_t counts[] = {0, 1, 2, 3, 4, 5, 6, 7, 15, 16, 17, 20, 21, 22, 31, 32, 33, 47, 64, 65, 127, 200};

// Bytes of a row from the first byte of its first pixel to the last named byte of its last.
size_t row_size(size_t step, size_t named, size_t count) {
    return count == 0 ? 0 : (count - 1) * step + named;
}

void check(const Permutation &permutation, size_t count) {
    const size_t to_step = permutation.to_step, from_step = permutation.from_step;
    const auto &from = permutation.from;
    const bool reversed = permutation.reversed;
    size_t written = 0, read = 0;
    for (size_t k = 0; k < to_step; ++k) {
        if (from[k] < 0) continue;
        written = k + 1;
        read = std::max(read, static_cast<size_t>(from[k]) + 1);
    }
    const auto source = random_bytes(row_size(from_step, read, count), 1);
    const auto before = random_bytes(row_size(to_step, written, count), 2);
    auto expected = before;
    for (size_t i = 0; i < count; ++i)
        for (size_t k = 0; k < to_step; ++k)
            if (from[k] >= 0)
                expected[i * to_step + k] = static_cast<uint8_t>(
                    source[(reversed ? count - 1 - i : i) * from_step + static_cast<size_t>(from[k])] ^ permutation.flip[k]);
    for_each_level([&](Level level) {
        for (Guard guard : {Guard::before, Guard::after}) {
            GuardedBytes target(before, guard), origin(source, guard);
            const uint8_t *first = origin.data() + (reversed && count != 0 ? (count - 1) * from_step : 0);
            permute_pixels.at(level)(target.data(), first, permutation, count);
            ASSERT_EQ(target.bytes(), expected)
                << from_step << " to " << to_step << " bytes, " << count << " pixels" << (reversed ? ", reversed" : "");
        }
    });
}

TEST(PermutePixels, MovesTheNamedBytesAndNoOthersAtEveryLevel) {
    std::mt19937 random(1);
    for (size_t to_step = 1; to_step <= 4; ++to_step)
        for (size_t from_step = 1; from_step <= 4; ++from_step)
            for (int variant = 0; variant < 12; ++variant) {
                Permutation permutation = {to_step, from_step, {-1, -1, -1, -1}, {}, variant % 2 == 1};
                const auto highest = static_cast<uint32_t>(from_step);
                for (size_t k = 0; k < to_step; ++k) {
                    // The first byte of each side is named, as the callers' are.
                    if (k != 0 && random() % 3 == 0) continue;
                    permutation.from[k] = static_cast<int8_t>(random() % highest);
                    permutation.flip[k] = random() % 2 == 0 ? 0 : 0xff;
                }
                const auto named = [&](int8_t byte) {
                    return std::find(permutation.from.begin(), permutation.from.end(), byte) != permutation.from.end();
                };
                if (!named(0)) permutation.from[0] = 0;
                for (size_t count : counts) check(permutation, count);
            }
}

TEST(ReversePixels, ExchangesTheLeadingBytesAtEveryLevel) {
    for (size_t step = 1; step <= 4; ++step)
        for (size_t bytes = 1; bytes <= step; ++bytes)
            for (size_t count : counts) {
                const auto before = random_bytes(row_size(step, bytes, count), 3);
                auto expected = before;
                for (size_t i = 0; i < count; ++i)
                    for (size_t k = 0; k < bytes; ++k) expected[i * step + k] = before[(count - 1 - i) * step + k];
                for_each_level([&](Level level) {
                    for (Guard guard : {Guard::before, Guard::after}) {
                        GuardedBytes row(before, guard);
                        reverse_pixels.at(level)(row.data(), step, bytes, count);
                        ASSERT_EQ(row.bytes(), expected) << bytes << " of " << step << " bytes, " << count << " pixels";
                    }
                });
            }
}

void check_weighing(const Weighing &w, size_t count) {
    const auto read = static_cast<size_t>(std::max({w.red, w.green, w.blue, w.to_alpha < 0 ? w.red : w.alpha}));
    const auto written = static_cast<size_t>(std::max(w.to_gray, w.to_alpha));
    const auto source = random_bytes(row_size(w.from_step, read + 1, count), 6);
    const auto before = random_bytes(row_size(w.to_step, written + 1, count), 7);
    auto expected = before;
    for (size_t i = 0; i < count; ++i) {
        const auto from = [&](int8_t byte) { return source[i * w.from_step + static_cast<size_t>(byte)]; };
        uint8_t *to = &expected[i * w.to_step];
        to[w.to_gray] = static_cast<uint8_t>((77 * from(w.red) + 151 * from(w.green) + 28 * from(w.blue)) / 256);
        if (w.to_alpha >= 0) to[w.to_alpha] = static_cast<uint8_t>(from(w.alpha) ^ w.alpha_flip);
    }
    for_each_level([&](Level level) {
        for (Guard guard : {Guard::before, Guard::after}) {
            GuardedBytes target(before, guard), origin(source, guard);
            weigh_pixels.at(level)(target.data(), origin.data(), w, count);
            ASSERT_EQ(target.bytes(), expected)
                << w.from_step << " to " << w.to_step << " bytes, " << count << " pixels";
        }
    });
}

TEST(WeighPixels, MixesGrayAndCarriesAlphaAtEveryLevel) {
    for (size_t to_step = 1; to_step <= 4; ++to_step)
        for (size_t count : counts)
            for (uint8_t flip : {0, 0xff}) {
                check_weighing({to_step, 3, 0, 1, 2, 0, 0, -1, flip}, count);
                check_weighing({to_step, 4, 2, 1, 0, 0, 0, -1, flip}, count);
                if (to_step > 1) {
                    check_weighing({to_step, 4, 0, 1, 2, 3, 0, 1, flip}, count);
                    check_weighing({to_step, 4, 3, 2, 1, 0, 1, 0, flip}, count);
                }
            }
}

TEST(WeighPixels, KeepsWhiteWhiteAndBlackBlack) {
    for (int shade : {0, 255}) {
        const std::vector<uint8_t> source(300, static_cast<uint8_t>(shade));
        for_each_level([&](Level level) {
            std::vector<uint8_t> gray(100, 7);
            weigh_pixels.at(level)(gray.data(), source.data(), {1, 3, 0, 1, 2, 0, 0, -1, 0}, 100);
            EXPECT_EQ(gray, std::vector<uint8_t>(100, static_cast<uint8_t>(shade)));
        });
    }
}

} // namespace
} // namespace kzb::kernels
