// The most frequent values of neighbourhoods.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace kzb::kernels {

// The bins into which byte values are sorted, 1 to 256 of them.
struct Bins {
    int32_t count;
    std::array<uint8_t, 256> of; // the bin of each value

    explicit Bins(int32_t bins) : count(bins) {
        for (int32_t v = 0; v < 256; ++v) of[static_cast<size_t>(v)] = static_cast<uint8_t>(bins * v / 256);
    }
};

// How often the values of one channel occur, bin by bin. The narrower Number, the faster the fullest bin is found.
template <class Number> class Histogram {
public:
    // As many values can be counted.
    static constexpr Number most = std::numeric_limits<Number>::max() / 256;

    void clear() {
        for (size_t bin = 0; bin < 256; ++bin) ranks_[bin] = static_cast<Number>(255 - bin);
        sums_.fill(0);
    }
    void add(uint8_t value, const Bins &bins) { count(value, bins, 256, value); }
    void remove(uint8_t value, const Bins &bins) { count(value, bins, -256, -value); }
    // The mean, truncated, of the values in the fullest bin, of several the lowest. Not for an empty histogram.
    uint8_t fullest_mean(const Bins &bins) const {
        Number best = 0;
        // In steps that fill the processor's registers: a bin without values never wins.
        const auto end = static_cast<size_t>((bins.count + 15) / 16 * 16);
        for (size_t bin = 0; bin < end; ++bin) best = std::max(best, ranks_[bin]);
        return static_cast<uint8_t>(sums_[static_cast<size_t>(255 - best % 256)] / (best / 256));
    }

private:
    void count(uint8_t value, const Bins &bins, int32_t rank, int32_t sum) {
        const size_t bin = bins.of[value];
        ranks_[bin] = static_cast<Number>(ranks_[bin] + rank);
        sums_[bin] = static_cast<Number>(sums_[bin] + sum);
    }

    // 256 * count + 255 - bin: the greatest is that of the fullest bin, of several the lowest.
    std::array<Number, 256> ranks_;
    std::array<Number, 256> sums_;
};

// One packed row of the filter. The histograms, one for each channel, hold the neighbourhood of the row's first pixel:
// the columns 0 to `range` of the rows. `target` is apart from the rows, or in place one of them, whose values are
// replaced in the histograms as they are written.
struct OilRow {
    const uint8_t *const *rows;
    size_t row_count;
    size_t channels; // 1 to 4
    int32_t width;
    int32_t range; // columns to each side
    bool in_place;
};
template <class Number> void oil(uint8_t *target, const OilRow &row, Histogram<Number> *histograms, const Bins &bins);

extern template void oil(uint8_t *, const OilRow &, Histogram<int16_t> *, const Bins &);
extern template void oil(uint8_t *, const OilRow &, Histogram<int32_t> *, const Bins &);
extern template void oil(uint8_t *, const OilRow &, Histogram<int64_t> *, const Bins &);

} // namespace kzb::kernels
