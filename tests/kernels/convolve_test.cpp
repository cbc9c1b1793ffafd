// Weighted sums of bytes at every level that runs here, against each byte's own sum.

#include "kernels/convolve.h"
#include "kernels/each_level.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

namespace kzb::kernels {
namespace {

constexpr size_t step = 4;

struct Weights {
    std::vector<int32_t> values;
    const char *name;
};

const Weights weight_sets[] = {
    {{}, "none"},
    {{1}, "one"},
    {{-1, 5, -1}, "few"},
    {{0, -1, -2, 17, -2, -1, 0, 128, -60}, "sums of 16 bits"},
    {{1, 2, -3, 4, 5, 6, 7, 8, 9, 10, 11, -12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25}, "sums of 32 bits"},
    {{INT32_MIN, 254, -100001, 65536, -32768, INT32_MIN + 7}, "sums that wrap around"},
};

const Rounding roundings[] = {
    {0, 1.0},
    {-300, 1.0},
    {INT32_MAX, 1.0},
    {3, 0.7},
    {0, 1.0 / 25},
    {7, -0.5},
    {INT32_MIN, 1e300},
    {0, std::numeric_limits<double>::infinity()},
    {1, 0.0},
    {0, 1e-9},
    {5, std::nextafter(1.0, 2.0)},
    {0, std::numeric_limits<double>::quiet_NaN()},
};

uint8_t expected_byte(uint32_t sum, const Rounding &rounding) {
    const auto total = static_cast<int32_t>(sum + static_cast<uint32_t>(rounding.delta));
    if (rounding.scale == 1.0) return static_cast<uint8_t>(std::min(std::max(total, 0), 255));
    const double scaled = total * rounding.scale;
    if (!(scaled > 0)) return 0;
    return scaled < 255 ? static_cast<uint8_t>(scaled) : uint8_t{255};
}

class Convolve : public testing::TestWithParam<Level> {
protected:
    std::vector<uint8_t> random_bytes(size_t count) {
        std::vector<uint8_t> bytes(count);
        for (uint8_t &byte : bytes) byte = static_cast<uint8_t>(engine_() >> 24);
        return bytes;
    }

private:
    std::mt19937 engine_{1};
};

INSTANTIATE_TEST_SUITE_P(Levels, Convolve, testing::ValuesIn(running_levels()),
                         [](const auto &tested) { return std::string(name_of(tested.param)); });

TEST_P(Convolve, EachByteIsTheRoundedSumOfItsTaps) {
    for (const Weights &weights : weight_sets)
        for (const Rounding &rounding : roundings)
            for (size_t count : {1, 2, 7, 31, 64, 65, 200, 511, 512, 513, 1100}) {
                const std::vector<uint8_t> samples = random_bytes(count + step * 30);
                std::vector<Tap> taps;
                for (size_t k = 0; k < weights.values.size(); ++k)
                    taps.push_back({samples.data() + k * step, weights.values[k]});
                std::vector<uint8_t> target(count + 1, 77);
                convolve.at(GetParam())(target.data(), taps.data(), taps.size(), rounding, count);
                for (size_t i = 0; i < count; ++i) {
                    uint32_t sum = 0;
                    for (const Tap &tap : taps) sum += static_cast<uint32_t>(tap.weight) * tap.samples[i];
                    ASSERT_EQ(target[i], expected_byte(sum, rounding)) << weights.name << ", " << rounding.scale;
                }
                ASSERT_EQ(target[count], 77);
            }
}

TEST_P(Convolve, InPlaceReadsWhatItHasWritten) {
    const Feedback feedbacks[] = {{step, -2, 1}, {1, 3, 0}, {step, INT32_MIN, 40000}};
    for (const Weights &weights : weight_sets)
        for (const Rounding &rounding : roundings)
            for (const Feedback &feedback : feedbacks)
                for (size_t count : {1, 5, 64, 513, 700}) {
                    // The last tap is the row itself, from the byte on that is written.
                    const std::vector<uint8_t> samples = random_bytes(count + step * 30);
                    std::vector<uint8_t> row = random_bytes(2 * step + count + step), expected = row;
                    std::vector<Tap> taps;
                    for (size_t k = 0; k < weights.values.size(); ++k)
                        taps.push_back({samples.data() + k * step, weights.values[k]});
                    taps.push_back({row.data() + 2 * step, 9});
                    convolve_in_place.at(GetParam())(row.data() + 2 * step, taps.data(), taps.size(), feedback,
                                                     rounding, count);
                    for (size_t i = 0; i < count; ++i) {
                        uint8_t *written = expected.data() + 2 * step + i;
                        uint32_t sum = uint32_t{9} * *written;
                        for (size_t k = 0; k + 1 < taps.size(); ++k)
                            sum += static_cast<uint32_t>(taps[k].weight) * taps[k].samples[i];
                        sum += static_cast<uint32_t>(feedback.first) * *(written - feedback.step);
                        sum += static_cast<uint32_t>(feedback.second) * *(written - 2 * feedback.step);
                        *written = expected_byte(sum, rounding);
                    }
                    ASSERT_EQ(row, expected) << weights.name << ", " << rounding.scale << ", " << count;
                }
}

} // namespace
} // namespace kzb::kernels
