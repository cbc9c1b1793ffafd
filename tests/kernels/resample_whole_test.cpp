// Sums of equally weighted pixels at every level that runs here.

#include "kernels/each_level.h"
#include "kernels/resample_whole.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace kzb::kernels {
namespace {

class ResampleWhole : public testing::TestWithParam<Level> {
protected:
    uint32_t below(uint32_t limit) { return static_cast<uint32_t>(engine_() % limit); }

private:
    std::mt19937 engine_{1};
};

INSTANTIATE_TEST_SUITE_P(Levels, ResampleWhole, testing::ValuesIn(running_levels()),
                         [](const auto &tested) { return std::string(name_of(tested.param)); });

TEST_P(ResampleWhole, PicksAreAddedUp) {
    for (size_t picks : {1, 2, 4, 8})
        for (size_t readable : {1, 2, 63, 64, 65, 127, 128})
            for (size_t count : {1, 7, 63, 64}) {
                // Nothing is read behind the last window.
                std::vector<uint8_t> row(5 + readable);
                for (uint8_t &byte : row) byte = static_cast<uint8_t>(below(256));
                const std::vector<Picks> entries = {{0, std::min<size_t>(row.size(), pick_window), 0, 3},
                                                    {5, readable, 3, count}};
                std::vector<PickPlaces> places(entries.size() * picks);
                for (size_t e = 0; e < entries.size(); ++e)
                    for (size_t p = 0; p < picks; ++p)
                        for (size_t i = 0; i < entries[e].count; ++i)
                            places[e * picks + p][i] =
                                static_cast<uint8_t>(below(static_cast<uint32_t>(entries[e].readable)));
                std::vector<uint16_t> sums(3 + count + picks_together + 1, 7777);
                sum_picks.at(GetParam())(sums.data(), row.data(), entries.data(), places.data(), entries.size(), picks);
                for (size_t e = 0; e < entries.size(); ++e)
                    for (size_t i = 0; i < entries[e].count; ++i) {
                        unsigned sum = 0;
                        for (size_t p = 0; p < picks; ++p) sum += row[entries[e].start + places[e * picks + p][i]];
                        ASSERT_EQ(sums[entries[e].target + i], sum) << picks << " picks of " << readable;
                    }
                ASSERT_EQ(sums.back(), 7777);
            }
}

TEST_P(ResampleWhole, AveragesAreTruncated) {
    for (size_t row_count : {1, 2, 4, 8})
        for (unsigned shift : {0U, 1U, 3U, 8U})
            for (size_t count : {1, 31, 64, 511, 512, 513, 1200}) {
                std::vector<std::vector<uint16_t>> rows(row_count, std::vector<uint16_t>(count));
                std::vector<const uint16_t *> addresses;
                for (auto &row : rows) {
                    for (uint16_t &sum : row)
                        sum = static_cast<uint16_t>(
                            below((uint32_t{255} << shift) / static_cast<uint32_t>(row_count) + 1));
                    addresses.push_back(row.data());
                }
                std::vector<uint8_t> bytes(count + 1, 77);
                average_sums.at(GetParam())(bytes.data(), addresses.data(), row_count, shift, count);
                for (size_t i = 0; i < count; ++i) {
                    unsigned sum = 0;
                    for (const auto &row : rows) sum += row[i];
                    ASSERT_EQ(bytes[i], sum >> shift) << row_count << " rows, " << count;
                }
                ASSERT_EQ(bytes[count], 77);
            }
}

} // namespace
} // namespace kzb::kernels
