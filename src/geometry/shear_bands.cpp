#include "geometry/shear_bands.h"

#include "kernels/moves.h"
#include "kernels/shear.h"
#include "kernels/shear_rows.h"

#include <algorithm>
#include <cstring>

namespace kzb {

ShearBands::ShearBands(const Skew &skew, const ThreeShifts &shifts)
    : written_(skew.destination, skew.channels, skew.destination.Width, false), result_width_(skew.destination.Width),
      background_(skew.background), channels_(skew.channels.size()),
      tile_columns_(channels_ > 2 ? most_columns / 2 : most_columns), width_(skew.source.Width),
      height_(skew.source.Height), first_width_(shifts.first_width), second_height_(shifts.second_height),
      first_(shears_of(shifts.first, height_)), second_(shears_of(shifts.second, first_width_)),
      third_(shears_of(shifts.third, second_height_)), factors_(bytes(first_width_)), stairs_(bytes(first_width_)),
      odd_(first_width_), tile_(bytes(tile_columns_) * (band_rows + tile_columns_ + 2)),
      shifted_rows_(2 * bytes(tile_columns_)), band_(bytes(first_width_) * band_rows),
      background_row_(bytes(std::max(first_width_, skew.destination.Width))) {
    ready_ = written_ && first_ && second_ && third_ && factors_ && stairs_ && odd_ && tile_ && shifted_rows_ &&
             band_ && background_row_ && take_source(skew);
    if (!ready_) return;
    kernels::fill_runs(background_row_.get(), static_cast<ptrdiff_t>(channels_), background_.data(),
                       static_cast<size_t>(std::max(first_width_, skew.destination.Width)), channels_);
    take_columns(shifts.second);
}

Buffer<ShearBands::Shear> ShearBands::shears_of(const Shift *shifts, int32_t count) {
    Buffer<Shear> shears(count);
    if (shears)
        for (int32_t i = 0; i < count; ++i)
            shears[static_cast<size_t>(i)] = {shifts[i].pixels, shifts[i].fraction,
                                              kernels::factor_of(shifts[i].fraction)};
    return shears;
}

// Rows in memory are read where they are, if their pixels are the channels; others are copied once.
bool ShearBands::take_source(const Skew &skew) {
    ImageRecord &source = skew.source;
    const ChannelOffsets offsets = offsets_of(source, skew.channels);
    bool dense = !source.IsMapping && static_cast<size_t>(source.PixelSize) == channels_;
    for (size_t i = 1; i < channels_; ++i) dense = dense && offsets[i] == offsets[i - 1] + 1;
    if (dense) {
        source_ = source.row_accessor(source, 0) + offsets[0];
        source_step_ = source.RowSize;
        return true;
    }
    source_step_ = static_cast<ptrdiff_t>(bytes(width_));
    packed_source_ = Buffer<uint8_t>(bytes(width_) * height_);
    PackedRows rows(source, skew.channels, width_, false);
    if (!packed_source_ || !rows) return false;
    source_ = packed_source_.get();
    for (int32_t y = 0; y < height_; ++y) {
        const uint8_t *row = rows.read(y);
        if (row == nullptr) return false;
        std::memcpy(packed_source_.get() + y * source_step_, row, rows.bytes());
    }
    return true;
}

void ShearBands::take_columns(const Shift *shifts) {
    for (int32_t left = 0; left < first_width_; left += tile_columns_) {
        const int32_t last = std::min(left + tile_columns_, first_width_) - 1;
        const int64_t highest = std::max(shifts[left].pixels, shifts[last].pixels);
        for (int32_t x = left; x <= last; ++x) {
            const Shear &shear = second_[static_cast<size_t>(x)];
            const int32_t factor = std::max(shear.factor, 0);
            std::fill_n(factors_.get() + size(x), channels_, static_cast<uint16_t>(factor));
            std::fill_n(stairs_.get() + size(x), channels_, static_cast<uint8_t>(highest - shear.pixels));
            if (shear.factor < 0) odd_[odd_count_++] = {x, shear.fraction};
        }
    }
}

void ShearBands::fill(uint8_t *target, int64_t pixels) const {
    std::memcpy(target, background_row_.get(), size(pixels));
}

// The pixels from `start` to before `end` of what a row of `width` pixels is sheared to.
void ShearBands::write_sheared(uint8_t *target, int64_t start, int64_t end, const uint8_t *row, int64_t width,
                               const Shear &shear) const {
    const int64_t first = std::clamp(shear.pixels, start, end);
    const int64_t behind = std::clamp(shear.pixels + width, start, end);
    fill(target, first - start);
    target += bytes(first - start);
    const uint8_t *source = row + bytes(first - shear.pixels);
    size_t count = size(behind - first);
    if (count != 0 && first == shear.pixels) {
        // Nothing comes before the first pixel.
        for (size_t i = 0; i < channels_; ++i)
            *target++ = static_cast<uint8_t>(source[i] - kernels::part_of(source[i], shear.fraction));
        source += channels_;
        count -= channels_;
    }
    if (count != 0 && shear.factor >= 0)
        kernels::hand_parts_on(target, source, source - channels_, static_cast<uint16_t>(shear.factor), count);
    else if (count != 0)
        kernels::hand_exact_parts_on(target, source, source - channels_, shear.fraction, count);
    target += count;
    fill(target, end - behind);
    if (const int64_t blended = shear.pixels + width; blended >= start && blended < end) {
        const uint8_t *last = row + bytes(width - 1);
        for (size_t i = 0; i < channels_; ++i)
            target[i] = kernels::blend_with_background(background_[i], shear.fraction,
                                                       kernels::part_of(last[i], shear.fraction));
    }
}

void ShearBands::run() {
    for (int32_t top = 0; top < second_height_; top += band_rows) {
        const int32_t bottom = std::min(top + band_rows, second_height_);
        for (int32_t left = 0; left < first_width_; left += tile_columns_)
            make_tile(top, bottom, left, std::min(left + tile_columns_, first_width_));
        for (int32_t y = top; y < bottom; ++y) {
            uint8_t *row = written_.place(y);
            if (row == nullptr) return;
            write_sheared(row, 0, result_width_, band_.get() + bytes(first_width_) * (y - top), first_width_,
                          third_[static_cast<size_t>(y)]);
            if (!written_.finish(y)) return;
        }
    }
}

// Makes the second image's rows `top` to before `bottom` in the columns `left` to before `right`.
void ShearBands::make_tile(int32_t top, int32_t bottom, int32_t left, int32_t right) {
    const int64_t at_left = second_[static_cast<size_t>(left)].pixels;
    const int64_t at_right = second_[static_cast<size_t>(right) - 1].pixels;
    const int64_t highest = std::max(at_left, at_right), lowest = std::min(at_left, at_right);
    if (bottom <= lowest || top > highest + height_ - 1) {
        for (int32_t y = top; y < bottom; ++y)
            fill(band_.get() + bytes(first_width_) * (y - top) + bytes(left), right - left);
        return;
    }
    // One row more, which hands its parts to the topmost. There is nothing above the first and below the last.
    const int64_t first_row = top - highest - 1;
    const int64_t last_row = bottom - 1 - lowest;
    uint8_t *row = tile_.get();
    for (int64_t i = first_row; i <= last_row; ++i, row += bytes(tile_columns_)) {
        if (i < 0 || i >= height_)
            std::memset(row, 0, size(right - left));
        else
            write_sheared(row, left, right, source_ + i * source_step_, width_, first_[static_cast<size_t>(i)]);
    }
    shear_tile(top, bottom, left, right);
    if (first_row < 0 || last_row >= height_ - 1)
        for (int32_t x = left; x < right; ++x) mend_column(top, bottom, x);
}

// Shears the tile's columns into the band as if they were continued above and below.
void ShearBands::shear_tile(int32_t top, int32_t bottom, int32_t left, int32_t right) {
    const auto step = static_cast<ptrdiff_t>(bytes(tile_columns_));
    const size_t count = size(right - left);
    uint8_t *above = shifted_rows_.get();
    uint8_t *shifted = above + step;
    const uint8_t *stairs = stairs_.get() + size(left);
    const OddColumn *odd = std::lower_bound(odd_.get(), odd_.get() + odd_count_, left,
                                            [](const OddColumn &one, int32_t column) { return one.column < column; });
    const OddColumn *odd_end = odd;
    while (odd_end != odd_.get() + odd_count_ && odd_end->column < right) ++odd_end;
    kernels::take_stairs(above, tile_.get(), step, stairs, channels_, count);
    for (int32_t y = top; y < bottom; ++y) {
        uint8_t *target = band_.get() + bytes(first_width_) * (y - top) + bytes(left);
        kernels::take_stairs(shifted, tile_.get() + (y - top + 1) * step, step, stairs, channels_, count);
        kernels::hand_own_parts_on(target, shifted, above, factors_.get() + size(left), count);
        for (const OddColumn *one = odd; one != odd_end; ++one) {
            const size_t at = size(one->column - left);
            kernels::hand_exact_parts_on(target + at, shifted + at, above + at, one->fraction, channels_);
        }
        std::swap(above, shifted);
    }
}

// Puts the background above and below a column, and the blend in place of its last pixel.
void ShearBands::mend_column(int32_t top, int32_t bottom, int32_t column) {
    const Shear &shear = second_[static_cast<size_t>(column)];
    const int64_t first = std::clamp<int64_t>(shear.pixels, top, bottom);
    const int64_t last = shear.pixels + height_ - 1;
    const ptrdiff_t step = static_cast<ptrdiff_t>(bytes(first_width_));
    uint8_t *at_top = band_.get() + bytes(column);
    kernels::fill_runs(at_top, step, background_.data(), static_cast<size_t>(first - top), channels_);
    if (last >= bottom) return;
    const int64_t behind = std::clamp<int64_t>(last + 1, top, bottom);
    kernels::fill_runs(at_top + (behind - top) * step, step, background_.data(), static_cast<size_t>(bottom - behind),
                       channels_);
    if (last < top) return;
    std::array<uint8_t, 4> pixel;
    write_sheared(pixel.data(), column, column + 1, source_ + (height_ - 1) * source_step_, width_,
                  first_[static_cast<size_t>(height_) - 1]);
    for (size_t i = 0; i < channels_; ++i)
        at_top[(last - top) * step + static_cast<ptrdiff_t>(i)] =
            kernels::blend_with_background(background_[i], shear.fraction, kernels::part_of(pixel[i], shear.fraction));
}

} // namespace kzb
