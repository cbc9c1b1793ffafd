// The fullest bins of neighbourhoods at every level, against counting.

#include "kernels/each_level.h"
#include "kernels/oil_columns.h"

namespace kzb::kernels {
namespace {

uint8_t counted(const std::vector<uint8_t> &rows, size_t channels, int32_t columns, int32_t row_count, int32_t x,
                size_t channel, int32_t range, int32_t levels) {
    std::vector<int32_t> count(256), sum(256);
    for (int32_t y = 0; y < row_count; ++y) {
        for (int32_t column = std::max(x - range, 0); column < std::min(x + range + 1, columns); ++column) {
            const int32_t v = rows[static_cast<size_t>(y * columns + column) * channels + channel];
            ++count[static_cast<size_t>(levels * v / 256)];
            sum[static_cast<size_t>(levels * v / 256)] += v;
        }
    }
    size_t best = 0;
    for (size_t bin = 1; bin < 256; ++bin)
        if (count[bin] > count[best]) best = bin;
    return static_cast<uint8_t>(sum[best] / count[best]);
}

TEST(OilColumns, TheMeanOfTheFullestBin) {
    uint32_t seed = 0;
    for (int32_t levels : {1, 5, 64, 65, 130, 192, 255, 256}) {
        const Bins bins(levels);
        const size_t stride = (static_cast<size_t>(levels) + 63) / 64 * 64;
        for (size_t channels = 1; channels <= 4; ++channels) {
            for (int32_t range : {0, 1, 3, 7}) {
                for (int32_t columns : {1, 2, 9, 40}) {
                    const int32_t row_count = 2 * range + 1;
                    auto rows = random_bytes(static_cast<size_t>(row_count * columns) * channels, ++seed);
                    // Few values, so that bins fill and tie.
                    if (seed % 2 == 0)
                        for (uint8_t &value : rows) value = static_cast<uint8_t>(value % 4 * 85);
                    const size_t counters = static_cast<size_t>(columns) * channels * stride;
                    std::vector<uint8_t> counts(counters);
                    std::vector<uint16_t> sums(counters);
                    const OilColumns strip = {
                        counts.data(), levels == 256 ? nullptr : sums.data(), stride, channels, columns, &bins};
                    const auto passing = random_bytes(static_cast<size_t>(columns) * channels, ++seed);
                    count_row(strip, passing.data(), 1);
                    for (int32_t y = 0; y < row_count; ++y)
                        count_row(strip, rows.data() + static_cast<size_t>(y * columns) * channels, 1);
                    count_row(strip, passing.data(), -1);
                    for (int32_t first : {0, columns / 2}) {
                        const int32_t count = columns - first;
                        for_each_level([&](Level level) {
                            std::vector<uint8_t> target(static_cast<size_t>(count) * channels + 1, 77);
                            fullest_means.at(level)(target.data(), strip, first, count, range);
                            for (int32_t x = first; x < columns; ++x)
                                for (size_t channel = 0; channel < channels; ++channel)
                                    ASSERT_EQ(target[static_cast<size_t>(x - first) * channels + channel],
                                              counted(rows, channels, columns, row_count, x, channel, range, levels))
                                        << levels << " levels, range " << range << ", column " << x;
                            EXPECT_EQ(target.back(), 77) << "beyond the last";
                        });
                    }
                }
            }
        }
    }
}

} // namespace
} // namespace kzb::kernels
