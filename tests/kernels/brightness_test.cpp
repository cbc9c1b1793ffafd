#include "kernels/brightness.h"

#include <gtest/gtest.h>

#include <vector>

namespace kzb::kernels {
namespace {

// The rule as it is stated.
size_t brightness(int red, int green, int blue) {
    return static_cast<size_t>(red * 0.177 + green * 0.813 + blue * 0.01);
}

TEST(BrightnessCounter, CountsEveryColourAsTheRuleSays) {
    std::vector<uint8_t> row(256 * 3);
    for (int red = 0; red < 256; ++red) {
        BrightnessCounter counter;
        BrightnessCounts expected = {};
        for (int green = 0; green < 256; ++green) {
            for (int blue = 0; blue < 256; ++blue) {
                uint8_t *pixel = &row[static_cast<size_t>(blue) * 3];
                pixel[0] = static_cast<uint8_t>(red);
                pixel[1] = static_cast<uint8_t>(green);
                pixel[2] = static_cast<uint8_t>(blue);
                ++expected[brightness(red, green, blue)];
            }
            counter.count(&row[0], &row[1], &row[2], 3, 256);
        }
        ASSERT_EQ(counter.counts(), expected) << "red " << red;
    }
}

TEST(BrightnessCounter, CountsPixelsOfAnyNumberAndLayout) {
    std::vector<uint8_t> row(4 * 20);
    for (size_t i = 0; i < row.size(); ++i) row[i] = static_cast<uint8_t>(i * 89 + 7);
    for (size_t step : {3, 4})
        for (size_t pixels = 0; pixels <= 20; ++pixels) {
            BrightnessCounter counter;
            BrightnessCounts expected = {};
            const uint8_t *last = row.data() + step - 1;
            counter.count(last, last - 1, last - 2, step, pixels);
            for (size_t i = 0; i < pixels; ++i)
                ++expected[brightness(last[i * step], last[i * step - 1], last[i * step - 2])];
            ASSERT_EQ(counter.counts(), expected) << pixels << " pixels of " << step << " bytes";
        }
}

} // namespace
} // namespace kzb::kernels
