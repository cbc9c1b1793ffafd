#include "filters/blurred_rows.h"

#include "kernels/box.h"
#include "kernels/look_up.h"
#include "kernels/moves.h"

#include <algorithm>
#include <cstring>

namespace kzb {

BlurredRows::BlurredRows(size_t width, int32_t height, size_t channels, int64_t radius)
    : width_(width), height_(height), channels_(channels), radius_(static_cast<int32_t>(radius)),
      mean_(std::max(2 * radius_ + 1, 3)), column_sums_(static_cast<int64_t>(bytes())),
      line_(static_cast<int64_t>((width_ + 2 * static_cast<size_t>(radius_) + 1) * channels_)),
      line_sums_(static_cast<int64_t>((width_ + 2 * static_cast<size_t>(radius_) + 1) * channels_)) {}

BlurredRows::BlurredRows(ImageRecord &source, const Channels &channels, int64_t radius)
    : BlurredRows(static_cast<size_t>(source.Width), source.Height, channels.size(), radius) {
    image_.emplace(source, channels);
}

BlurredRows::BlurredRows(BlurredRows &before)
    : BlurredRows(before.width_, before.height_, before.channels_, before.radius_) {
    before_ = &before;
    held_rows_ = std::min(2 * radius_ + 2, height_);
    held_ = Buffer<uint8_t>(held_rows_ * static_cast<int64_t>(bytes()));
}

BlurredRows::operator bool() const {
    const bool input = image_ ? image_->entering && image_->leaving : static_cast<bool>(held_);
    return input && column_sums_ && line_ && line_sums_;
}

const uint8_t *BlurredRows::entering(int32_t y) {
    if (image_) return image_->entering.read(y);
    for (; taken_ <= y; ++taken_)
        if (!before_->write_next(held_row(taken_))) return nullptr;
    return held_row(y);
}

bool BlurredRows::start() {
    bool reached = true;
    kernels::for_first_window(radius_, height_, [&](int64_t y, int64_t times) {
        const uint8_t *row = reached ? entering(static_cast<int32_t>(y)) : nullptr;
        reached = row != nullptr;
        if (reached) kernels::accumulate_narrow(column_sums_.get(), row, static_cast<int32_t>(times), bytes());
    });
    return reached;
}

bool BlurredRows::write_next(uint8_t *target) {
    const int32_t y = next_++;
    if (radius_ == 0) {
        const uint8_t *row = entering(y);
        if (row != nullptr) std::memcpy(target, row, bytes());
        return row != nullptr;
    }
    if (y == 0 && !start()) return false;
    const uint8_t *in = entering(std::min(y + radius_, height_ - 1));
    const uint8_t *out = y == 0 ? in : leaving(std::max(y - radius_ - 1, 0));
    if (in == nullptr || out == nullptr) return false;
    const size_t lead = (static_cast<size_t>(radius_) + 1) * channels_;
    kernels::slide_narrow(line_.get() + lead, column_sums_.get(), in, out, mean_, bytes());
    blur_line(target);
    return true;
}

bool BlurredRows::write_all(ImageRecord &destination, const Channels &channels, const ChannelTables *tables) {
    PackedRows written(destination, channels, static_cast<int32_t>(width_), false);
    if (!written) return false;
    for (int32_t y = 0; y < height_; ++y) {
        uint8_t *row = written.place(y);
        if (row == nullptr || !write_next(row)) break;
        if (tables != nullptr) send_through(row, channels, *tables);
        if (!written.finish(y)) break;
    }
    return true;
}

void BlurredRows::send_through(uint8_t *row, const Channels &channels, const ChannelTables &tables) const {
    constexpr Table zeros = {};
    for (size_t i = 0; i < channels_; ++i) {
        const auto *place = std::find(tables.channels.begin(), tables.channels.end(), channels[i]);
        const Table &table = place == tables.channels.end()
                                 ? zeros
                                 : tables.tables[static_cast<size_t>(place - tables.channels.begin())];
        kernels::look_up(row + i, channels_, row + i, channels_, table.data(), width_);
    }
}

void BlurredRows::blur_line(uint8_t *target) {
    const auto radius = static_cast<size_t>(radius_);
    const size_t lead = (radius + 1) * channels_;
    uint8_t *first = line_.get() + lead;
    uint8_t *end = first + bytes();
    const auto step = static_cast<ptrdiff_t>(channels_);
    kernels::fill_runs(line_.get(), step, first, radius + 1, channels_);
    kernels::fill_runs(end, step, end - channels_, radius, channels_);
    kernels::sum_up(line_sums_.get(), line_.get(), channels_, lead + bytes() + radius * channels_);
    kernels::average_differences(target, line_sums_.get() + lead + radius * channels_, line_sums_.get(), mean_,
                                 bytes());
}

} // namespace kzb
