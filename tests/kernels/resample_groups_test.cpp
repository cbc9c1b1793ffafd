// The row functions over eight rows at a time, bit for bit against each pixel's own sum, at every level that runs here.

#include "kernels/each_level.h"
#include "kernels/resample_groups.h"
#include "kernels/windowed_sinc.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

namespace kzb::kernels {
namespace {

constexpr size_t together = rows_together;

class ResampleGroups : public testing::TestWithParam<Level> {
protected:
    double number(double low, double high) { return std::uniform_real_distribution<double>(low, high)(engine_); }
    uint8_t byte() { return static_cast<uint8_t>(std::uniform_int_distribution<int>(0, 255)(engine_)); }

    // A list of weights of either sign whose sum is not small, with a 0 among the longer ones.
    ContributionList list(int32_t first, int32_t count) {
        std::vector<double> &weights = weights_.emplace_back(static_cast<size_t>(count));
        ContributionList made = {nullptr, 0, {}, first, count};
        for (int32_t k = 0; k < count; ++k) {
            double &weight = weights[static_cast<size_t>(k)];
            weight = k == 3 ? 0 : number(-0.3, 1);
            if (k == 0) weight = 1.5;
            made.sum += weight;
        }
        made.weights = weights.data();
        made.divisor = divisor_of(made.sum);
        return made;
    }

private:
    std::mt19937 engine_{1};
    std::vector<std::vector<double>> weights_;
};

INSTANTIATE_TEST_SUITE_P(Levels, ResampleGroups, testing::ValuesIn(running_levels()),
                         [](const auto &tested) { return std::string(name_of(tested.param)); });

TEST_P(ResampleGroups, ColumnsAreTheRowsBytesSideBySide) {
    struct Shape {
        size_t pixel_size, channels;
        bool mixes_gray;
        std::array<size_t, 4> offsets;
    } const shapes[] = {{1, 1, false, {0}},          {2, 2, false, {1, 0}},       {2, 1, false, {0}},
                        {3, 3, false, {2, 1, 0}},    {4, 4, false, {0, 1, 2, 3}}, {4, 3, false, {2, 1, 0}},
                        {3, 1, true, {0, 1, 2, 0}},  {4, 2, true, {2, 1, 0, 3}},  {4, 1, true, {0, 1, 2, 0}},
                        {4, 4, false, {3, 0, 2, 1}}, {3, 1, false, {1}}};
    for (const Shape &shape : shapes)
        for (size_t width = 1; width <= 150; width += width < 70 ? 1 : 13) {
            // The rows end right after their last channel.
            const size_t last = *std::max_element(shape.offsets.begin(), shape.offsets.end());
            std::vector<std::vector<uint8_t>> rows;
            RowGroup group = {};
            for (size_t r = 0; r < together; ++r) {
                rows.emplace_back((width - 1) * shape.pixel_size + last + 1);
                for (uint8_t &value : rows.back()) value = byte();
                group.rows[r] = rows.back().data();
            }
            group.pixel_size = shape.pixel_size;
            group.channels = shape.channels;
            group.offsets = shape.offsets;
            group.mixes_gray = shape.mixes_gray;
            const size_t lanes = lanes_for(shape.channels), start = width / 3;
            std::vector<double> columns((width - start) * lanes * together, -1), expected = columns;
            for (size_t x = start; x < width; ++x)
                for (size_t c = 0; c < shape.channels; ++c)
                    for (size_t r = 0; r < together; ++r) {
                        const uint8_t *pixel = group.rows[r] + x * shape.pixel_size;
                        double &value = expected[((x - start) * lanes + c) * together + r];
                        value = pixel[shape.offsets[shape.mixes_gray ? 3 : c]];
                        if (shape.mixes_gray && c == 0)
                            value = 0.3 * pixel[shape.offsets[0]] + 0.59 * pixel[shape.offsets[1]] +
                                    0.11 * pixel[shape.offsets[2]];
                    }
            gather_columns.at(GetParam())(columns.data(), lanes, group, start, width - start);
            ASSERT_EQ(columns, expected) << shape.channels << " of " << shape.pixel_size << ", " << width;
        }
}

TEST_P(ResampleGroups, MeansAreQuotientsOfSumsInOrder) {
    for (size_t channels = 1; channels <= 4; ++channels)
        for (size_t count : {1, 2, 5, 40}) {
            const size_t lanes = lanes_for(channels), values = lanes * together, width = 70;
            std::vector<double> columns(width * values);
            for (double &value : columns) value = number(0, 1) < 0.1 ? 0 : byte();
            std::vector<ContributionList> lists;
            for (size_t i = 0; i < count; ++i)
                lists.push_back(list(static_cast<int32_t>(7 + i), 1 + static_cast<int32_t>(i % 20)));
            const size_t group_size = count * channels * together + 16, groups = lanes / channels;
            std::vector<float> means(group_size * groups, -1), expected = means;
            for (size_t i = 0; i < count; ++i)
                for (size_t lane = 0; lane < lanes; ++lane)
                    for (size_t r = 0; r < together; ++r) {
                        double sum = 0;
                        for (int32_t k = 0; k < lists[i].count; ++k)
                            sum += lists[i].weights[k] *
                                   columns[static_cast<size_t>(lists[i].first + k - 5) * values + lane * together + r];
                        expected[lane / channels * group_size + (i * channels + lane % channels) * together + r] =
                            static_cast<float>(sum / lists[i].sum);
                    }
            weigh_columns.at(GetParam())(means.data(), group_size, columns.data(), 5, channels, lists.data(), count);
            ASSERT_EQ(means, expected) << channels << " channels, " << count;
        }
}

TEST_P(ResampleGroups, DealtMeansAreClampedRows) {
    for (size_t count = 1; count <= 40; ++count) {
        const size_t rounded = (count + 7) / 8 * 8;
        std::vector<float> means(rounded * together);
        for (float &mean : means) mean = static_cast<float>(number(-100, 400));
        means[0] = -0.0F;
        means[1] = 255.0F;
        means[2] = 1e-40F;
        std::vector<std::vector<double>> rows(together, std::vector<double>(rounded, -1));
        std::array<double *, rows_together> targets;
        for (size_t r = 0; r < together; ++r) targets[r] = rows[r].data();
        deal_means.at(GetParam())(targets, means.data(), count);
        for (size_t r = 0; r < together; ++r)
            for (size_t i = 0; i < count; ++i) {
                const float mean = means[i * together + r];
                const double expected = mean > 0 ? mean < 255 ? mean : 255.0 : 0.0;
                ASSERT_EQ(std::memcmp(&rows[r][i], &expected, sizeof expected), 0) << count << ": " << mean;
            }
    }
}

TEST_P(ResampleGroups, MeansOfRowsAreTruncatedBytes) {
    for (int32_t taps : {1, 2, 6, 7, 24})
        for (size_t count = 1; count <= 300; count += count < 70 ? 1 : 37) {
            const size_t start = count % 3 * 8, room = start + count + block_of_values;
            std::vector<std::vector<double>> rows(static_cast<size_t>(taps), std::vector<double>(room));
            std::vector<const double *> addresses;
            for (auto &row : rows) {
                for (double &value : row) value = static_cast<float>(number(0, 255));
                // Equal pixels, whose mean is a whole number or just below it.
                for (size_t i = 0; i < room; i += 3) row[i] = static_cast<double>(i % 256);
                addresses.push_back(row.data());
            }
            const ContributionList weighed = list(0, taps);
            std::vector<uint8_t> bytes(count + 1, 77);
            mean_of_rows.at(GetParam())(bytes.data(), addresses.data(), start, weighed, count);
            for (size_t i = 0; i < count; ++i) {
                double sum = 0;
                for (int32_t k = 0; k < taps; ++k) sum += weighed.weights[k] * rows[static_cast<size_t>(k)][start + i];
                const double mean = sum / weighed.sum;
                const auto expected = static_cast<uint8_t>(mean > 0 ? mean < 255 ? mean : 255.0 : 0.0);
                ASSERT_EQ(bytes[i], expected) << taps << " rows, " << count << ": " << i;
            }
            ASSERT_EQ(bytes[count], 77);
        }
}

TEST_P(ResampleGroups, WorkingPixelsHaveTheirSlots) {
    constexpr std::array<int, 4> slots[] = {{1}, {1, 3}, {0, 1, 2}, {0, 1, 2, 3}};
    for (size_t channels = 1; channels <= 4; ++channels)
        for (size_t count = 1; count <= 40; ++count)
            for (size_t start = 0; start < 6; ++start)
                for (bool passes_by : {false, true}) {
                    std::vector<double> row(count * channels);
                    for (double &value : row) value = static_cast<float>(number(0, 255));
                    std::vector<float> pixels(start + count * 4 + 1, 77), expected = pixels;
                    std::fill_n(expected.begin() + static_cast<ptrdiff_t>(start), count * 4, 0.0F);
                    for (size_t i = 0; i < row.size(); ++i)
                        expected[start + i / channels * 4 + static_cast<size_t>(slots[channels - 1][i % channels])] =
                            static_cast<float>(row[i]);
                    write_working_pixels.at(GetParam())(reinterpret_cast<uint8_t *>(pixels.data() + start), row.data(),
                                                        channels, count, passes_by);
                    ASSERT_EQ(pixels, expected) << channels << " channels, " << count;
                }
}

TEST_P(ResampleGroups, SincsAreThoseOfOneDistance) {
    for (double reach : {3.0, 8.0}) {
        std::vector<double> distances(8000);
        for (double &distance : distances) distance = number(-reach - 1, reach + 1);
        for (size_t i = 0; i < 100; ++i) distances[i] = static_cast<double>(i) * 0.25 - 12;
        std::vector<double> weights = distances;
        windowed_sincs.at(GetParam())(weights.data(), reach, weights.size());
        for (size_t i = 0; i < weights.size(); ++i)
            ASSERT_EQ(weights[i], windowed_sinc(distances[i], reach)) << distances[i];
    }
}

TEST(FusedQuotient, IsThatOfADivision) {
    std::mt19937_64 engine(1);
    const auto number = [&] {
        const double mantissa = 1 + static_cast<double>(engine() >> 12) * 0x1p-52;
        return std::ldexp(mantissa, static_cast<int>(engine() % 120) - 60);
    };
    const auto expect_exact = [](double dividend, double value) {
        ASSERT_EQ(fused_quotient(dividend, divisor_of(value)), dividend / value) << dividend << " / " << value;
    };
    for (int i = 0; i < 200000; ++i) expect_exact(engine() % 2 == 0 ? number() : -number(), number());
    // Divisors whose digits are nearly all ones or nearly all zeros, and quotients close to whole numbers.
    for (int i = 1; i <= 64; ++i)
        for (int k = 0; k < 2000; ++k) {
            const double dividend = number();
            expect_exact(dividend, 2 - i * 0x1p-52);
            expect_exact(dividend, 1 + i * 0x1p-52);
            const double divisor = number(), whole = static_cast<double>(k % 255 + 1) * divisor;
            expect_exact(std::nextafter(whole, i % 2 == 0 ? 0.0 : 1e30), divisor);
            expect_exact(whole, divisor);
        }
    expect_exact(0.0, 3.7);
}

} // namespace
} // namespace kzb::kernels
