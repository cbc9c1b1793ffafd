#include "geometry/scale_joined.h"

#include "image/packed_rows.h"
#include "image/storage.h"

#include <algorithm>
#include <cstring>

namespace kzb {

namespace {

// What the rows between the passes may take of the processor's second cache.
constexpr int64_t ring_bytes = 256 * 1024;

// What of them one tile of the output is made from, in the nearest cache, for so many of its rows.
constexpr int64_t tile_bytes = 24 * 1024;
constexpr int32_t output_rows_at_once = 32;

// Rows of the output to be made at a time, and the most rows between the passes that are made ahead for them.
constexpr int32_t outputs_wanted = 6;
constexpr int64_t most_rows_between = 32;

// Lanes of columns that stay in the nearest cache, and outputs that are made from them at a time.
constexpr int32_t cached_lanes = 512;
constexpr int32_t outputs_at_once = 64;

// Eights of rows that a column's lanes hold, at most.
constexpr size_t most_parts = 4;

// An intermediate image above this is out of the caches before a program can look at it.
constexpr int64_t cached_bytes = 4 * 1024 * 1024;

// The least width of a strip.
constexpr int64_t least_strip = 32;

int32_t last_of(const kernels::ContributionList &list) {
    return list.first + list.count - 1;
}

int64_t rounded_up(int64_t value, int64_t multiple) {
    return (value + multiple - 1) / multiple * multiple;
}

bool apart(const ImageRecord &a, const ImageRecord &b) {
    return sharing_of(a, b, {}) == Sharing::none;
}

// The channels of a pixel that are read from the source, in the order of RowGroup.
Channels read_channels(const CarriedChannels &carried) {
    if (!carried.mixes_gray) return carried.lanes;
    Channels channels = {Channel::red, Channel::green, Channel::blue};
    if (carried.lanes.size() == 2) channels.add(Channel::alpha);
    return channels;
}

Channels written_channels(const CarriedChannels &carried) {
    Channels channels;
    for (Channel lane : carried.lanes)
        for (Channel channel : carried.targets_of(lane)) channels.add(channel);
    return channels;
}

} // namespace

CarriedChannels in_best_order(const CarriedChannels &carried, const ImageRecord *temp, const ImageRecord &destination) {
    CarriedChannels ordered = carried;
    if (temp == nullptr && !carried.spreads_gray && !carried.mixes_gray)
        ordered.lanes = in_byte_order(carried.lanes, destination);
    return ordered;
}

bool JoinedPasses::fit(const ImageRecord &source, const ImageRecord *temp, const ImageRecord &destination,
                       const CarriedChannels &carried, const Contributions &columns, const Contributions &rows,
                       int32_t width, int32_t height) {
    if (destination.YieldTicks > 0 || source.IsMapping || destination.IsMapping) return false;
    if (!columns.ordinary() || !rows.ordinary() || !apart(source, destination)) return false;
    if (temp != nullptr) {
        const bool rows_apart = static_cast<int64_t>(width) * temp->PixelSize <= temp->RowSize;
        if (temp->IsMapping || !rows_apart || !apart(*temp, source) || !apart(*temp, destination)) return false;
    }
    const Channels written = written_channels(carried);
    if (!rows_may_run(source, destination, written, width, height) || !rows_lie_apart(destination, written, width))
        return false;
    // A pixel's bytes must lie together.
    const ChannelOffsets offsets = offsets_of(source, read_channels(carried));
    const auto [first, last] = std::minmax_element(offsets.begin(), offsets.begin() + read_channels(carried).size());
    return *last - *first < source.PixelSize;
}

JoinedPasses::JoinedPasses(ImageRecord &source, ImageRecord *temp, ImageRecord &destination,
                           const CarriedChannels &carried, const Contributions &columns, const Contributions &rows,
                           int32_t width, int32_t height)
    : source_(source), temp_(temp), carried_(carried), column_lists_(columns.lists()), row_lists_(rows.lists()),
      width_(width), height_(height), channels_(carried.lanes.size()), lanes_(kernels::lanes_for(channels_)),
      writer_(destination, carried), rows_at_once_(static_cast<int32_t>(lanes_ / channels_ * kernels::rows_together)) {
    // Enough for some rows of the output, which then share what they load.
    const int64_t shrinking =
        std::clamp<int64_t>(int64_t{source.Height} * outputs_wanted / height, 1, most_rows_between);
    rows_between_ = static_cast<int32_t>(rounded_up(shrinking, rows_at_once_));
    int32_t longest_column_list = 0;
    int64_t made = 0; // rows before the output's
    for (int32_t y = 0; y < height; ++y) {
        const kernels::ContributionList &list = row_lists_[y];
        made = std::max(made, rounded_up(int64_t{last_of(list)} + 1, rows_between_));
        ring_rows_ = std::max(ring_rows_, rounded_up(made - list.first, rows_at_once_));
        longest_row_list_ = std::max(longest_row_list_, list.count);
    }
    for (int32_t x = 0; x < width; ++x) longest_column_list = std::max(longest_column_list, column_lists_[x].count);

    const auto channels = static_cast<int64_t>(channels_), lanes = static_cast<int64_t>(lanes_);
    const int64_t fitting = ring_bytes / static_cast<int64_t>(sizeof(double)) / ring_rows_ / channels;
    const int64_t strips = (width + std::max(fitting, least_strip) - 1) / std::max(fitting, least_strip);
    strip_ = static_cast<int32_t>((width + strips - 1) / strips);
    // An odd number of cache lines, so that the rows do not compete for the same places of the cache.
    row_size_ = static_cast<size_t>(rounded_up(strip_ * channels, kernels::block_of_values) + 8);
    // Whole blocks of values, and so whole pixels.
    const int64_t tile =
        std::max<int64_t>(tile_bytes / static_cast<int64_t>(sizeof(double)) / ring_rows_ / channels, 1);
    tile_ = static_cast<int32_t>(rounded_up(tile, kernels::block_of_values));
    held_columns_ = std::max(cached_lanes / static_cast<int32_t>(lanes_), longest_column_list);
    constexpr auto together = static_cast<int64_t>(kernels::rows_together);
    ring_ = Lines<double>(ring_rows_ * static_cast<int64_t>(row_size_));
    columns_ = Lines<double>(held_columns_ * lanes * together);
    means_ = Lines<float>((outputs_at_once + 1) * lanes * together + 8 * together);
    bytes_ = Buffer<uint8_t>(tile_ * channels);
    list_rows_ = Buffer<const double *>(int64_t{longest_row_list_} * output_rows_at_once);
    blocks_ = Buffer<Block>(strip_);
}

void JoinedPasses::run() {
    for (int32_t start = 0; start < width_;) {
        const int32_t end = start + std::min(strip_, width_ - start);
        plan_blocks(start, end);
        int32_t y = 0;
        for (int64_t row = 0; row < source_.Height;) {
            const int64_t made = std::min<int64_t>(row + rows_between_, source_.Height);
            for (; row < made; row += rows_at_once_) make_rows(static_cast<int32_t>(row), start, end);
            int32_t ready = y;
            for (; ready < height_ && last_of(row_lists_[ready]) < made; ++ready)
                ;
            for (; y < ready; y += std::min(output_rows_at_once, ready - y))
                make_outputs(y, std::min(output_rows_at_once, ready - y), start, end);
        }
        start = end;
    }
}

kernels::RowGroup JoinedPasses::group_at(int64_t row) const {
    kernels::RowGroup group = {};
    const Channels channels = read_channels(carried_);
    const ChannelOffsets offsets = offsets_of(source_, channels);
    const int32_t first_offset = *std::min_element(offsets.begin(), offsets.begin() + channels.size());
    for (size_t i = 0; i < channels.size(); ++i) group.offsets[i] = static_cast<size_t>(offsets[i] - first_offset);
    for (size_t r = 0; r < kernels::rows_together; ++r) {
        // The last row stands for those below the image.
        const int64_t y = std::min<int64_t>(row + static_cast<int64_t>(r), source_.Height - 1);
        group.rows[r] = source_.row_accessor(source_, static_cast<int32_t>(y)) + first_offset;
    }
    group.ahead = static_cast<ptrdiff_t>(source_.RowSize) * rows_at_once_;
    group.pixel_size = static_cast<size_t>(source_.PixelSize);
    group.channels = channels_;
    group.mixes_gray = carried_.mixes_gray;
    return group;
}

void JoinedPasses::ready_columns(const kernels::RowGroup *groups, int32_t first, int32_t end) {
    const size_t column_size = lanes_ * kernels::rows_together;
    if (first >= held_first_ && end <= held_end_) return;
    int32_t from = first;
    if (first >= held_first_ && first < held_end_) {
        std::memmove(columns_.get(), columns_.get() + static_cast<size_t>(first - held_first_) * column_size,
                     static_cast<size_t>(held_end_ - first) * column_size * sizeof(double));
        from = held_end_;
    }
    held_first_ = first;
    held_end_ = end;
    double *target = columns_.get() + static_cast<size_t>(from - first) * column_size;
    for (size_t lane = 0; lane < lanes_; lane += channels_, target += channels_ * kernels::rows_together)
        kernels::gather_columns(target, lanes_, *groups++, static_cast<size_t>(from), static_cast<size_t>(end - from));
}

void JoinedPasses::plan_blocks(int32_t start, int32_t end) {
    block_count_ = 0;
    for (int32_t x = start; x < end;) {
        int32_t next = x, first = column_lists_[x].first, last = first;
        for (; next < end && next - x < outputs_at_once; ++next) {
            const kernels::ContributionList &list = column_lists_[next];
            const int32_t lower = std::min(first, list.first), upper = std::max(last, last_of(list));
            if (upper - lower >= held_columns_) break;
            first = lower;
            last = upper;
        }
        // The next block's values then start a cache line too.
        if (next != end && next - x > 8) next -= (next - x) % 8;
        blocks_[static_cast<size_t>(block_count_++)] = {x, next, first, last + 1};
        x = next;
    }
}

void JoinedPasses::make_rows(int32_t row, int32_t start, int32_t end) {
    held_first_ = held_end_ = 0;
    const size_t group_size = outputs_at_once * channels_ * kernels::rows_together;
    const auto parts = static_cast<size_t>(rows_at_once_) / kernels::rows_together;
    std::array<kernels::RowGroup, most_parts> groups;
    std::array<std::array<double *, kernels::rows_together>, most_parts> targets;
    for (size_t part = 0; part < parts; ++part) {
        const int64_t first = int64_t{row} + static_cast<int64_t>(part * kernels::rows_together);
        groups[part] = group_at(first);
        for (size_t r = 0; r < kernels::rows_together; ++r)
            targets[part][r] = ring_row(first + static_cast<int64_t>(r));
    }
    for (int32_t i = 0; i < block_count_; ++i) {
        const Block &block = blocks_[static_cast<size_t>(i)];
        ready_columns(groups.data(), block.first_input, block.inputs_end);
        const auto count = static_cast<size_t>(block.end - block.start);
        kernels::weigh_columns(means_.get(), group_size, columns_.get(), held_first_, channels_,
                               column_lists_ + block.start, count);
        for (size_t part = 0; part < parts; ++part) {
            kernels::deal_means(targets[part], means_.get() + part * group_size, count * channels_);
            for (double *&target : targets[part]) target += count * channels_;
        }
    }
    if (temp_ == nullptr) return;
    const bool passes_by = static_cast<int64_t>(temp_->RowSize) * source_.Height > cached_bytes;
    for (int32_t y = row; y < source_.Height && y - row < rows_at_once_; ++y)
        kernels::write_working_pixels(temp_->row_accessor(*temp_, y) +
                                          static_cast<size_t>(start) * kernels::working_pixel_size,
                                      ring_row(y), channels_, static_cast<size_t>(end - start), passes_by);
}

void JoinedPasses::make_outputs(int32_t first, int32_t rows, int32_t start, int32_t end) {
    for (int32_t i = 0; i < rows; ++i) {
        const kernels::ContributionList &list = row_lists_[first + i];
        const double **listed = list_rows_.get() + static_cast<size_t>(i * longest_row_list_);
        for (int32_t k = 0; k < list.count; ++k) listed[k] = ring_row(int64_t{list.first} + k);
    }
    for (int32_t x = start; x < end; x += tile_)
        for (int32_t i = 0; i < rows; ++i)
            make_output(first + i, list_rows_.get() + static_cast<size_t>(i * longest_row_list_), start, x,
                        std::min(tile_, end - x));
}

void JoinedPasses::make_output(int32_t y, const double *const *rows, int32_t start, int32_t x, int32_t width) {
    const auto count = static_cast<size_t>(width);
    uint8_t *target = writer_.start(x, y, bytes_.get());
    kernels::mean_of_rows(target, rows, static_cast<size_t>(x - start) * channels_, row_lists_[y], count * channels_);
    writer_.finish(count);
}

} // namespace kzb
