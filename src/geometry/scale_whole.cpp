#include "geometry/scale_whole.h"

#include "kernels/resample_groups.h"

#include <algorithm>
#include <bit>

namespace kzb {

namespace {

constexpr unsigned most_pick_bits = 3, sum_bits = 16;

// An intermediate image above this is out of the caches before a program can look at it.
constexpr int64_t cached_bytes = 4 * 1024 * 1024;

unsigned bits_of(int32_t count) {
    return static_cast<unsigned>(std::countr_zero(static_cast<uint32_t>(count)));
}

// The bits of the longest list; none when one of the lists is not a power of two of equal pixels.
std::optional<unsigned> bits_of_lists(const kernels::ContributionList *lists, int32_t count) {
    unsigned bits = 0;
    for (int32_t i = 0; i < count; ++i) {
        const kernels::ContributionList &list = lists[i];
        if (!std::has_single_bit(static_cast<uint32_t>(list.count))) return std::nullopt;
        if (!std::all_of(list.weights, list.weights + list.count, [](double weight) { return weight == 1.0; }))
            return std::nullopt;
        bits = std::max(bits, bits_of(list.count));
    }
    return bits;
}

struct Span {
    int32_t first, last;
};

// The least and the greatest offset of the lanes' bytes.
Span bytes_of_lanes(const ImageRecord &source, const Channels &lanes) {
    const ChannelOffsets offsets = offsets_of(source, lanes);
    const auto [first, last] = std::minmax_element(offsets.begin(), offsets.begin() + lanes.size());
    return {*first, *last};
}

} // namespace

bool WholePasses::fit(const CarriedChannels &carried, const Contributions &columns, const Contributions &rows,
                      int32_t width, int32_t height) {
    if (carried.mixes_gray) return false;
    const auto column_bits = bits_of_lists(columns.lists(), width), row_bits = bits_of_lists(rows.lists(), height);
    if (!column_bits || !row_bits) return false;
    // The longest list's bytes lie in one window: pixels with channels have at most four.
    static_assert(((1 << most_pick_bits) + 1) * 4 <= kernels::pick_window);
    return *column_bits <= most_pick_bits && 8 + *column_bits + *row_bits <= sum_bits;
}

WholePasses::WholePasses(ImageRecord &source, ImageRecord *temp, ImageRecord &destination,
                         const CarriedChannels &carried, const Contributions &columns, const Contributions &rows,
                         int32_t width, int32_t height)
    : source_(source), temp_(temp), carried_(carried), column_lists_(columns.lists()), row_lists_(rows.lists()),
      width_(width), height_(height), channels_(carried.lanes.size()), writer_(destination, carried) {
    picks_bits_ = bits_of_lists(column_lists_, width).value_or(0);
    int32_t longest = 0;
    int64_t made = 0; // rows before the output's
    for (int32_t y = 0; y < height; ++y) {
        const kernels::ContributionList &list = row_lists_[y];
        made = std::max(made, int64_t{list.first} + list.count);
        ring_rows_ = std::max(ring_rows_, made - list.first);
        longest = std::max(longest, list.count);
    }
    entry_count_ = plan(false);
    entries_ = Buffer<kernels::Picks>(entry_count_);
    places_ = Buffer<kernels::PickPlaces>(entry_count_ << picks_bits_);
    const int64_t values = width * static_cast<int64_t>(channels_);
    row_size_ = static_cast<size_t>(values) + kernels::picks_together;
    ring_ = Buffer<uint16_t>(ring_rows_ * static_cast<int64_t>(row_size_));
    bytes_ = Buffer<uint8_t>(values);
    list_rows_ = Buffer<const uint16_t *>(longest);
    floats_ = Buffer<double>(temp == nullptr ? 0 : values);
    if (*this) plan(true);
}

int64_t WholePasses::plan(bool write) {
    const Span bytes = bytes_of_lanes(source_, carried_.lanes);
    const ChannelOffsets offsets = offsets_of(source_, carried_.lanes);
    const auto pixel_size = static_cast<int64_t>(source_.PixelSize), span = int64_t{bytes.last} - bytes.first + 1;
    const int64_t row_bytes = (source_.Width - 1) * pixel_size + span;
    int64_t entries = 0;
    for (int32_t x = 0; x < width_; ++entries) {
        const int64_t start = column_lists_[x].first * pixel_size;
        const int32_t first = x;
        for (; x < width_ && static_cast<size_t>(x - first + 1) * channels_ <= kernels::picks_together; ++x) {
            const kernels::ContributionList &list = column_lists_[x];
            const int64_t end = (int64_t{list.first} + list.count - 1) * pixel_size + span;
            if (list.first * pixel_size < start || end - start > static_cast<int64_t>(kernels::pick_window)) break;
            for (int32_t pick = 0; write && pick < 1 << picks_bits_; ++pick) {
                // A list shorter than the longest has its pixels picked more often.
                const int64_t pixel = list.first + (pick >> (picks_bits_ - bits_of(list.count)));
                auto &places = places_[static_cast<size_t>((entries << picks_bits_) + pick)];
                for (size_t i = 0; i < channels_; ++i)
                    places[static_cast<size_t>(x - first) * channels_ + i] =
                        static_cast<uint8_t>(pixel * pixel_size + offsets[i] - bytes.first - start);
            }
        }
        if (write)
            entries_[static_cast<size_t>(entries)] = {
                static_cast<size_t>(start),
                static_cast<size_t>(std::min<int64_t>(row_bytes - start, kernels::pick_window)),
                static_cast<size_t>(first) * channels_, static_cast<size_t>(x - first) * channels_};
    }
    return entries;
}

void WholePasses::run() {
    const int32_t first_offset = bytes_of_lanes(source_, carried_.lanes).first;
    const bool passes_by = temp_ != nullptr && static_cast<int64_t>(temp_->RowSize) * source_.Height > cached_bytes;
    const double unit = 1.0 / (1 << picks_bits_);
    int32_t y = 0;
    for (int32_t row = 0; row < source_.Height; ++row) {
        uint16_t *sums = ring_row(row);
        kernels::sum_picks(sums, source_.row_accessor(source_, row) + first_offset, entries_.get(), places_.get(),
                           static_cast<size_t>(entry_count_), size_t{1} << picks_bits_);
        if (temp_ != nullptr) {
            for (size_t i = 0; i < static_cast<size_t>(width_) * channels_; ++i) floats_[i] = sums[i] * unit;
            kernels::write_working_pixels(temp_->row_accessor(*temp_, row), floats_.get(), channels_,
                                          static_cast<size_t>(width_), passes_by);
        }
        for (; y < height_ && row_lists_[y].first + row_lists_[y].count <= row + 1; ++y) make_output(y);
    }
}

void WholePasses::make_output(int32_t y) {
    const kernels::ContributionList &list = row_lists_[y];
    for (int32_t k = 0; k < list.count; ++k) list_rows_[static_cast<size_t>(k)] = ring_row(int64_t{list.first} + k);
    uint8_t *target = writer_.start(0, y, bytes_.get());
    kernels::average_sums(target, list_rows_.get(), static_cast<size_t>(list.count), picks_bits_ + bits_of(list.count),
                          static_cast<size_t>(width_) * channels_);
    writer_.finish(static_cast<size_t>(width_));
}

} // namespace kzb
