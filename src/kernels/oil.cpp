#include "kernels/oil.h"

namespace kzb::kernels {

namespace {

template <size_t channels, class Number>
void oil_channels(uint8_t *target, const OilRow &row, Histogram<Number> *histograms, const Bins &bins) {
    // Calls change(histogram, value) for the values of a column.
    auto for_column = [&](int64_t x, auto change) {
        const auto at = static_cast<size_t>(x) * channels;
        for (size_t k = 0; k < row.row_count; ++k)
            for (size_t i = 0; i < channels; ++i) change(histograms[i], row.rows[k][at + i]);
    };
    for (int64_t x = 0; x < row.width; ++x) {
        if (x > row.range)
            for_column(x - row.range - 1, [&](auto &histogram, uint8_t value) { histogram.remove(value, bins); });
        if (x > 0 && x + row.range < row.width)
            for_column(x + row.range, [&](auto &histogram, uint8_t value) { histogram.add(value, bins); });
        uint8_t *pixel = target + static_cast<size_t>(x) * channels;
        for (size_t i = 0; i < channels; ++i) {
            const uint8_t value = histograms[i].fullest_mean(bins);
            if (row.in_place) {
                histograms[i].remove(pixel[i], bins);
                histograms[i].add(value, bins);
            }
            pixel[i] = value;
        }
    }
}

} // namespace

template <class Number> void oil(uint8_t *target, const OilRow &row, Histogram<Number> *histograms, const Bins &bins) {
    switch (row.channels) {
    case 1:
        return oil_channels<1>(target, row, histograms, bins);
    case 2:
        return oil_channels<2>(target, row, histograms, bins);
    case 3:
        return oil_channels<3>(target, row, histograms, bins);
    case 4:
        return oil_channels<4>(target, row, histograms, bins);
    }
}

template void oil(uint8_t *, const OilRow &, Histogram<int16_t> *, const Bins &);
template void oil(uint8_t *, const OilRow &, Histogram<int32_t> *, const Bins &);
template void oil(uint8_t *, const OilRow &, Histogram<int64_t> *, const Bins &);

} // namespace kzb::kernels
