#include "filters/oil.h"

#include "image/destination.h"
#include "image/row_ring.h"
#include "image/storage.h"
#include "kernels/oil.h"
#include "kernels/oil_columns.h"

#include <cstring>

namespace kzb {

namespace {

using kernels::Bins;

constexpr int32_t most_levels = 256;

// The rows or columns at most `range` away that there are.
struct Stretch {
    int32_t start;
    int32_t end;
};
Stretch neighbourhood(int32_t own, int32_t range, int32_t limit) {
    return {std::max(own - range, 0), static_cast<int32_t>(std::min<int64_t>(int64_t{own} + range + 1, limit))};
}

void oil_plainly(ImageRecord &source, ImageRecord &destination, const Channels &channels, const Bins &bins,
                 int32_t range) {
    const ChannelOffsets from = offsets_of(source, channels);
    const ChannelOffsets to = offsets_of(destination, channels);
    for (int32_t y = 0; y < source.Height; ++y) {
        const Stretch rows = neighbourhood(y, range, source.Height);
        for (int32_t x = 0; x < source.Width; ++x) {
            const Stretch columns = neighbourhood(x, range, source.Width);
            std::array<uint8_t, 4> values;
            for (size_t i = 0; i < channels.size(); ++i) {
                kernels::Histogram<int64_t> histogram;
                histogram.clear();
                for (int32_t row = rows.start; row < rows.end; ++row) {
                    for (int32_t column = columns.start; column < columns.end; ++column) {
                        const uint8_t *read = channel_at(source, column, row, from[i]);
                        if (read == nullptr) return;
                        histogram.add(*read, bins);
                    }
                }
                values[i] = histogram.fullest_mean(bins);
            }
            for (size_t i = 0; i < channels.size(); ++i)
                if (uint8_t *target = channel_at(destination, x, y, to[i])) *target = values[i];
        }
    }
}

// The histograms of the neighbourhood of a row's first pixel, which one row takes over from the other.
template <class Number> class FirstNeighbourhood {
public:
    using Histograms = std::array<kernels::Histogram<Number>, 4>;

    FirstNeighbourhood(const Bins &bins, size_t channels, int32_t columns)
        : bins_(bins), channels_(channels), columns_(static_cast<size_t>(columns)) {
        for (auto &histogram : histograms_) histogram.clear();
    }

    void add(const uint8_t *row) {
        for (size_t at = 0; at < columns_ * channels_; ++at) histograms_[at % channels_].add(row[at], bins_);
    }
    void remove(const uint8_t *row) {
        for (size_t at = 0; at < columns_ * channels_; ++at) histograms_[at % channels_].remove(row[at], bins_);
    }
    const Histograms &histograms() const { return histograms_; }

private:
    Histograms histograms_;
    const Bins &bins_;
    size_t channels_;
    size_t columns_;
};

// False when there is no memory for it.
template <class Number>
bool oil_by_rows(ImageRecord &source, ImageRecord &destination, const RowRoute &route, const Bins &bins,
                 int32_t range) {
    const int32_t width = source.Width;
    const int32_t height = source.Height;
    const size_t channels = route.channels.size();
    RowRing ring(source, route.channels, 2 * int64_t{range} + 1);
    PackedRows written(destination, route.channels, width, route.plain_destination);
    Buffer<uint8_t> result(static_cast<int64_t>(written.bytes()));
    if (!ring || !written || !result) return false;
    FirstNeighbourhood<Number> first(bins, channels, neighbourhood(0, range, width).end);
    int32_t counted_end = 0;
    for (int32_t y = 0; y < height; ++y) {
        const auto [start, end] = neighbourhood(y, range, height);
        if (!ring.read_through(end - 1)) return true;
        for (; counted_end < end; ++counted_end) first.add(ring.row(counted_end));

        uint8_t *target = route.in_place ? ring.row(y) : result.get();
        const kernels::OilRow row = {ring.rows(start, end), static_cast<size_t>(end - start), channels, width, range,
                                     route.in_place};
        auto histograms = first.histograms();
        if (route.in_place) first.remove(target);
        kernels::oil(target, row, histograms.data(), bins);
        if (route.in_place) first.add(target);
        if (!written.write(y, target)) return true;
        if (y >= range) first.remove(ring.row(y - range));
    }
    return true;
}

// The same for small ranges, in bands of rows and strips of columns whose histograms stay in the cache. False when
// there is no memory for it.
bool oil_by_columns(ImageRecord &source, ImageRecord &destination, const RowRoute &route, const Bins &bins,
                    int32_t range) {
    constexpr int32_t band_rows = 64;
    constexpr int32_t strip_bytes = 1024; // of a row
    const int32_t width = source.Width;
    const int32_t height = source.Height;
    const size_t channels = route.channels.size();
    const int32_t strip = strip_bytes / static_cast<int32_t>(channels);
    const size_t stride = (static_cast<size_t>(bins.count) + 63) / 64 * 64;
    const auto counters = static_cast<int64_t>(static_cast<size_t>(strip + 2 * range) * channels * stride);
    RowRing ring(source, route.channels, band_rows + 2 * int64_t{range});
    PackedRows written(destination, route.channels, width, route.plain_destination);
    const size_t bytes = written.bytes();
    Buffer<uint8_t> results(band_rows * static_cast<int64_t>(bytes));
    Buffer<uint8_t> counts(counters);
    Buffer<uint16_t> sums(bins.count == most_levels ? 0 : counters);
    if (!ring || !written || !results || !counts || !sums) return false;
    kernels::OilColumns columns = {counts.get(), bins.count == most_levels ? nullptr : sums.get(), stride, channels, 0,
                                   &bins};
    for (int32_t top = 0; top < height; top += band_rows) {
        const int32_t bottom = std::min(top + band_rows, height);
        if (!ring.read_through(std::min(bottom - 1 + range, height - 1))) return true;
        for (int32_t left = 0; left < width; left += strip) {
            const int32_t right = std::min(left + strip, width);
            const Stretch reached = {std::max(left - range, 0), std::min(right + range, width)};
            columns.columns = reached.end - reached.start;
            std::memset(counts.get(), 0, static_cast<size_t>(counters));
            if (columns.sums != nullptr) std::memset(columns.sums, 0, static_cast<size_t>(counters) * sizeof(uint16_t));
            const auto count = [&](int32_t y, int32_t sign) {
                kernels::count_row(columns, ring.row(y) + static_cast<size_t>(reached.start) * channels, sign);
            };
            Stretch rows = neighbourhood(top, range, height);
            for (int32_t y = rows.start; y < rows.end; ++y) count(y, 1);
            for (int32_t y = top; y < bottom; ++y) {
                const Stretch next = neighbourhood(y, range, height);
                for (; rows.start < next.start; ++rows.start) count(rows.start, -1);
                for (; rows.end < next.end; ++rows.end) count(rows.end, 1);
                kernels::fullest_means(results.get() + static_cast<size_t>(y - top) * bytes +
                                           static_cast<size_t>(left) * channels,
                                       columns, left - reached.start, right - left, range);
            }
        }
        for (int32_t y = top; y < bottom; ++y)
            if (!written.write(y, results.get() + static_cast<size_t>(y - top) * bytes)) return true;
    }
    return true;
}

} // namespace

ImageObject oil_filter(ImageObject image, ImageObject dest, int32_t levels, int32_t range) {
    auto passage = open_passage(image, dest);
    if (!passage) return nullptr;
    auto &[source, destination, result] = *passage;
    const Channels channels = channels_of(source);
    if (channels.size() == 0 || levels < 1 || range < 0) return result.release();
    const Bins bins(std::min(levels, most_levels));
    const int32_t reach = std::min(range, std::max(source.Width, source.Height));
    const int64_t window = 2 * int64_t{reach} + 1;
    const int64_t most_counted = std::min<int64_t>(window, source.Width) * std::min<int64_t>(window, source.Height);
    const auto by_rows = most_counted <= kernels::Histogram<int16_t>::most   ? oil_by_rows<int16_t>
                         : most_counted <= kernels::Histogram<int32_t>::most ? oil_by_rows<int32_t>
                                                                             : oil_by_rows<int64_t>;
    const RowRoute route = row_route(source, destination, channels);
    if (kernels::column_histograms_pay() && route.by_rows && !route.in_place &&
        reach <= kernels::largest_column_range && oil_by_columns(source, destination, route, bins, reach))
        return result.release();
    if (!route.by_rows || !by_rows(source, destination, route, bins, reach))
        oil_plainly(source, destination, channels, bins, reach);
    return result.release();
}

} // namespace kzb
