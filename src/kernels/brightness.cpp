#include "kernels/brightness.h"

namespace kzb::kernels {

namespace {

using Products = std::array<double, 256>;

constexpr Products products_with(double weight) {
    Products products = {};
    for (size_t i = 0; i < products.size(); ++i) products[i] = static_cast<double>(i) * weight;
    return products;
}

// Looking a product up is quicker than converting and multiplying.
constexpr Products of_red = products_with(0.177), of_green = products_with(0.813), of_blue = products_with(0.01);

} // namespace

void BrightnessCounter::count(const uint8_t *red, const uint8_t *green, const uint8_t *blue, size_t step,
                              size_t pixels) {
    const auto brightness = [&](size_t at) {
        return static_cast<size_t>(static_cast<int32_t>(of_red[red[at]] + of_green[green[at]] + of_blue[blue[at]]));
    };
    size_t at = 0;
    for (; pixels >= parts_.size(); pixels -= parts_.size())
        for (BrightnessCounts &part : parts_) {
            ++part[brightness(at)];
            at += step;
        }
    for (; pixels != 0; --pixels, at += step) ++parts_[0][brightness(at)];
}

BrightnessCounts BrightnessCounter::counts() const {
    BrightnessCounts sums = {};
    for (const BrightnessCounts &part : parts_)
        for (size_t i = 0; i < sums.size(); ++i) sums[i] += part[i];
    return sums;
}

} // namespace kzb::kernels
