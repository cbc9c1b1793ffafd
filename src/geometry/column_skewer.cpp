#include "geometry/column_skewer.h"

#include "kernels/moves.h"
#include "kernels/shear.h"

#include <cstring>

namespace kzb {

void ColumnSkewer::skew() {
    for (; left_ < source_.Width; left_ += width_) {
        take_strip();
        if (!skew_strip()) return;
    }
}

void ColumnSkewer::take_strip() {
    const int32_t rows = destination_.IsMapping ? std::clamp(destination_.rows_per_block / 2, 1, most_rows) : most_rows;
    const int32_t most = std::min(most_columns, source_.Width - left_);
    lowest_ = highest_ = shifts_[left_].pixels;
    for (width_ = 1; width_ < most; ++width_) {
        const int64_t pixels = shifts_[left_ + width_].pixels;
        if (std::max(highest_, pixels) - std::min(lowest_, pixels) >= rows) break;
        lowest_ = std::min(lowest_, pixels);
        highest_ = std::max(highest_, pixels);
    }
    for (size_t i = 0; i < width(); ++i) {
        const int64_t column = left_ + static_cast<int64_t>(i);
        const Shift &shift = shifts_[column];
        strip().places[i] =
            static_cast<ptrdiff_t>((shift.pixels - lowest_) * destination_.RowSize + column * destination_.PixelSize);
        std::fill_n(&strip().fractions[i * channels_], channels_, shift.fraction);
    }
    strip().parts = {};
    filled_ = 0;
}

bool ColumnSkewer::skew_strip() {
    for (int32_t y = 0; y < source_.Height; ++y) {
        const uint8_t *row = source_.row_accessor(source_, y);
        if (row == nullptr) return false;
        skew_row(packed_pixels(row + int64_t{left_} * source_.PixelSize), y);
        const int64_t first = std::clamp<int64_t>(y + lowest_, 0, destination_.Height);
        const int64_t end = std::clamp<int64_t>(y + highest_ + 1, 0, destination_.Height);
        if (first == end) continue;
        if (!fill_rows(end)) return false;
        write_row(y, first, end - 1);
    }
    return fill_rows(destination_.Height);
}

const uint8_t *ColumnSkewer::packed_pixels(const uint8_t *row) const {
    if (static_cast<size_t>(source_.PixelSize) == channels_ && pieces_.count == 1) return row + pieces_.from[0];
    for (size_t i = 0; i < pieces_.count; ++i)
        kernels::move_runs(strip().packed.data() + i, static_cast<ptrdiff_t>(channels_), row + pieces_.from[i],
                           source_.PixelSize, width(), pieces_.bytes);
    return strip().packed.data();
}

// Leaves in `result` what source row y becomes.
void ColumnSkewer::skew_row(const uint8_t *pixels, int32_t y) {
    const size_t count = width() * channels_;
    Row &given = strip().parts[static_cast<size_t>(y % 2)];
    const Row &received = strip().parts[static_cast<size_t>(1 - y % 2)];
    kernels::take_parts(given.data(), pixels, strip().fractions.data(), count);
    if (y < source_.Height - 1)
        return kernels::hand_on(strip().result.data(), pixels, given.data(), received.data(), count);
    for (size_t i = 0; i < count; ++i)
        strip().result[i] = kernels::blend_with_background(background_[i % channels_], strip().fractions[i], given[i]);
}

// Fills the destination's rows above `end` as far as they are not; false when one is out of reach.
bool ColumnSkewer::fill_rows(int64_t end) {
    for (; filled_ < end; ++filled_) {
        uint8_t *row = destination_.row_accessor(destination_, static_cast<int32_t>(filled_));
        if (row == nullptr) return false;
        row += int64_t{left_} * destination_.PixelSize;
        for (size_t i = 0; i < pieces_.count; ++i)
            kernels::fill_runs(row + pieces_.to[i], destination_.PixelSize, background_.data() + i, width(),
                               pieces_.bytes);
    }
    return true;
}

// Writes the result of source row y, whose pixels go to the rows `first` to `last` or fall outside.
void ColumnSkewer::write_row(int32_t y, int64_t first, int64_t last) {
    const RowBand band = rows_between(destination_, static_cast<int32_t>(first), static_cast<int32_t>(last));
    if (first == y + lowest_ && last == y + highest_) return write_run(y, first, band, 0, width_);
    const auto inside = [&](int32_t column) {
        const int64_t row = y + shifts_[left_ + column].pixels;
        return row >= first && row <= last;
    };
    for (int32_t column = 0; column < width_;) {
        int32_t end = column;
        while (end < width_ && inside(end)) ++end;
        write_run(y, first, band, column, end);
        column = end + 1;
    }
}

// Writes the strip's columns from `column` up to `end`, the band's first row being `first`.
void ColumnSkewer::write_run(int32_t y, int64_t first, const RowBand &band, int32_t column, int32_t end) {
    for (size_t i = 0; i < pieces_.count; ++i) {
        const uint8_t *piece = strip().result.data() + static_cast<size_t>(column) * channels_ + i;
        if (band.first != nullptr) {
            const auto above = static_cast<ptrdiff_t>((y + lowest_ - first) * destination_.RowSize);
            kernels::scatter_runs(band.first + pieces_.to[i], above, &strip().places[static_cast<size_t>(column)],
                                  piece, static_cast<ptrdiff_t>(channels_), static_cast<size_t>(end - column),
                                  pieces_.bytes);
            continue;
        }
        for (int32_t x = left_ + column; x < left_ + end; ++x, piece += channels_)
            if (uint8_t *written = channel_at(destination_, x, y + shifts_[x].pixels, pieces_.to[i]))
                std::memcpy(written, piece, pieces_.bytes);
    }
}

} // namespace kzb
