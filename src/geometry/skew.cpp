#include "geometry/skew.h"

#include "geometry/pieces.h"
#include "geometry/row_band.h"
#include "kernels/moves.h"
#include "kernels/shear.h"
#include "platform/buffer.h"

#include <cmath>
#include <cstring>

namespace kzb {

namespace {

enum class Along { rows, columns };

// One row or column, a pixel after the other in the stated order.
void skew_line_plainly(const Skew &skew, Along along, int32_t line, Shift shift) {
    const bool row = along == Along::rows;
    const auto at = [&](ImageRecord &image, int64_t i, int32_t offset) {
        return row ? channel_at(image, i, line, offset) : channel_at(image, line, i, offset);
    };
    const auto put = [&](int64_t i, size_t channel, uint8_t value) {
        const int32_t offset = offset_of(skew.destination, skew.channels[channel]);
        if (uint8_t *written = at(skew.destination, i, offset)) *written = value;
    };
    const size_t channels = skew.channels.size();
    const int64_t length = row ? skew.source.Width : skew.source.Height;
    const int64_t room = row ? skew.destination.Width : skew.destination.Height;
    for (int64_t i = 0; i < room; ++i)
        for (size_t c = 0; c < channels; ++c) put(i, c, skew.background[c]);
    std::array<uint8_t, 4> received = {};
    for (int64_t i = 0; i < length; ++i) {
        for (size_t c = 0; c < channels; ++c) {
            const uint8_t *read = at(skew.source, i, offset_of(skew.source, skew.channels[c]));
            const uint8_t value = read == nullptr ? uint8_t{0} : *read;
            const uint8_t given = kernels::part_of(value, shift.fraction);
            const int64_t to = i + shift.pixels;
            if (to >= 0 && to < room) put(to, c, static_cast<uint8_t>(value - given + received[c]));
            received[c] = given;
        }
    }
    const int64_t end = shift.pixels + length - (row ? 0 : 1);
    if (end < 0 || end >= room) return;
    for (size_t c = 0; c < channels; ++c)
        put(end, c, kernels::blend_with_background(skew.background[c], shift.fraction, received[c]));
}

// A skew in canonical form: the pieces that move, and the pixel as `lanes` bytes, the pieces one after the other.
struct Lanes {
    explicit Lanes(const Skew &skew)
        : pieces(pieces_of(skew.source, skew.destination, skew.channels)), count(pieces.bytes_per_pixel()),
          whole(pieces.count == 1 && static_cast<size_t>(skew.source.PixelSize) == pieces.bytes &&
                static_cast<size_t>(skew.destination.PixelSize) == pieces.bytes) {
        for (size_t c = 0; c < skew.channels.size(); ++c) {
            const int32_t offset = offset_of(skew.destination, skew.channels[c]);
            background[pieces.count == 1 ? static_cast<size_t>(offset - pieces.to[0]) : c] = skew.background[c];
        }
    }

    // The pixels' lanes: where they lie in the row, else in `room`.
    const uint8_t *of(const ImageRecord &source, const uint8_t *pixels, uint8_t *room, size_t width) const {
        if (whole) return pixels + pieces.from[0];
        for (size_t i = 0; i < pieces.count; ++i)
            kernels::move_runs(room + i * pieces.bytes, static_cast<ptrdiff_t>(count), pixels + pieces.from[i],
                               source.PixelSize, width, pieces.bytes);
        return room;
    }

    void put(const ImageRecord &destination, uint8_t *pixels, const uint8_t *lanes, size_t width) const {
        for (size_t i = 0; i < pieces.count; ++i)
            kernels::move_runs(pixels + pieces.to[i], destination.PixelSize, lanes + i * pieces.bytes,
                               static_cast<ptrdiff_t>(count), width, pieces.bytes);
    }

    void fill(const ImageRecord &destination, uint8_t *pixels, size_t width) const {
        for (size_t i = 0; i < pieces.count; ++i)
            kernels::fill_runs(pixels + pieces.to[i], destination.PixelSize, background.data() + i * pieces.bytes,
                               width, pieces.bytes);
    }

    Pieces pieces;
    size_t count;
    bool whole; // the lanes are the pixels' own bytes
    Background background = {};
};

// Skews row by row with all pixels of a row at once.
class RowSkewer {
public:
    explicit RowSkewer(const Skew &skew)
        : source_(skew.source), destination_(skew.destination), lanes_(skew), width_(skew.source.Width),
          row_(lanes_.whole ? 0 : size(width_)), parts_(size(width_ + 1)), result_(lanes_.whole ? 0 : size(width_)) {}

    // False without work memory.
    explicit operator bool() const { return row_ && parts_ && result_; }

    // False when the row is out of reach.
    bool skew(int32_t y, Shift shift);

private:
    int64_t size(int64_t width) const { return width * static_cast<int64_t>(lanes_.count); }
    uint8_t *pixel(uint8_t *row, int64_t x) const { return row + x * destination_.PixelSize; }
    void move(uint8_t *target, const uint8_t *row, int64_t first, int64_t last, int64_t pixels);

    ImageRecord &source_;
    ImageRecord &destination_;
    const Lanes lanes_;
    const int64_t width_;
    Buffer<uint8_t> row_;
    Buffer<uint8_t> parts_; // what each pixel receives from the one before it, the first one nothing
    Buffer<uint8_t> result_;
};

bool RowSkewer::skew(int32_t y, Shift shift) {
    const uint8_t *source = source_.row_accessor(source_, y);
    uint8_t *target = destination_.row_accessor(destination_, y);
    if (source == nullptr || target == nullptr) return false;
    const uint8_t *row = lanes_.of(source_, source, row_.get(), static_cast<size_t>(width_));
    kernels::take_parts(parts_.get() + lanes_.count, row, shift.fraction, static_cast<size_t>(size(width_)));

    const int64_t room = destination_.Width;
    const int64_t start = std::clamp<int64_t>(shift.pixels, 0, room);
    const int64_t end = std::clamp<int64_t>(shift.pixels + width_, 0, room);
    lanes_.fill(destination_, target, static_cast<size_t>(start));
    if (start < end) move(target, row, start, end, shift.pixels);
    lanes_.fill(destination_, pixel(target, end), static_cast<size_t>(room - end));

    const int64_t blended = shift.pixels + width_;
    if (blended < 0 || blended >= room) return true;
    Background pixel_lanes = {};
    for (size_t lane = 0; lane < lanes_.count; ++lane)
        pixel_lanes[lane] = kernels::blend_with_background(lanes_.background[lane], shift.fraction,
                                                           parts_[static_cast<size_t>(size(width_)) + lane]);
    lanes_.put(destination_, pixel(target, blended), pixel_lanes.data(), 1);
    return true;
}

// Writes the destination's pixels `first` to `last`, the latter not included.
void RowSkewer::move(uint8_t *target, const uint8_t *row, int64_t first, int64_t last, int64_t pixels) {
    const int64_t from = size(first - pixels);
    const uint8_t *received = parts_.get() + from;
    uint8_t *result = lanes_.whole ? pixel(target, first) + lanes_.pieces.to[0] : result_.get();
    kernels::hand_on(result, row + from, received + lanes_.count, received, static_cast<size_t>(size(last - first)));
    if (!lanes_.whole) lanes_.put(destination_, pixel(target, first), result, static_cast<size_t>(last - first));
}

// Skews strips of columns, all columns of a strip together from row to row. A strip is so narrow that the rows it
// writes at a time stay in the cache, and in a file-backed destination within a block.
class ColumnSkewer {
public:
    ColumnSkewer(const Skew &skew, const Shift *shifts)
        : source_(skew.source), destination_(skew.destination), lanes_(skew), shifts_(shifts), strip_(1) {}

    // False without work memory.
    explicit operator bool() const { return static_cast<bool>(strip_); }

    void skew();

private:
    static constexpr int32_t most_columns = 512;
    static constexpr int32_t most_rows = 256;
    static constexpr size_t most_lanes = size_t{most_columns} * 4;
    using LaneBytes = std::array<uint8_t, most_lanes>;

    struct Strip {
        std::array<ptrdiff_t, most_columns> places; // bytes from the start of the row with the lowest shift
        std::array<double, most_lanes> fractions;
        LaneBytes row, result;
        std::array<LaneBytes, 2> parts; // given by one row and received by the next, in turns
    };

    Strip &strip() const { return strip_[0]; }
    void take_strip(int32_t left);
    bool skew_strip();
    const uint8_t *skew_row(const uint8_t *row, int32_t y);
    bool fill_rows(int64_t end);
    void write_row(const uint8_t *lanes, int32_t y, int64_t first, int64_t last);
    void write_run(const uint8_t *lanes, int32_t y, int64_t first, const RowBand &band, int32_t column, int32_t end);

    ImageRecord &source_;
    ImageRecord &destination_;
    const Lanes lanes_;
    const Shift *shifts_;
    Buffer<Strip> strip_;

    int32_t left_ = 0;                 // the strip's first column
    int32_t width_ = 0;                // its columns
    int64_t lowest_ = 0, highest_ = 0; // the bounds of their shifts
    int64_t filled_ = 0;               // so many of the destination's rows have the background in the strip
};

void ColumnSkewer::skew() {
    for (left_ = 0; left_ < source_.Width; left_ += width_) {
        take_strip(left_);
        if (!skew_strip()) return;
    }
}

void ColumnSkewer::take_strip(int32_t left) {
    const int32_t rows = destination_.IsMapping ? std::clamp(destination_.rows_per_block / 2, 1, most_rows) : most_rows;
    const int32_t most = std::min(most_columns, source_.Width - left);
    lowest_ = highest_ = shifts_[left].pixels;
    for (width_ = 1; width_ < most; ++width_) {
        const int64_t pixels = shifts_[left + width_].pixels;
        if (std::max(highest_, pixels) - std::min(lowest_, pixels) >= rows) break;
        lowest_ = std::min(lowest_, pixels);
        highest_ = std::max(highest_, pixels);
    }
    for (int32_t i = 0; i < width_; ++i) {
        const Shift &shift = shifts_[left + i];
        const auto column = static_cast<size_t>(i);
        strip().places[column] = static_cast<ptrdiff_t>((shift.pixels - lowest_) * destination_.RowSize +
                                                        int64_t{left + i} * destination_.PixelSize);
        std::fill_n(&strip().fractions[column * lanes_.count], lanes_.count, shift.fraction);
    }
    strip().parts = {};
    filled_ = 0;
}

bool ColumnSkewer::skew_strip() {
    for (int32_t y = 0; y < source_.Height; ++y) {
        const uint8_t *row = source_.row_accessor(source_, y);
        if (row == nullptr) return false;
        const uint8_t *lanes = skew_row(row, y);
        const int64_t first = std::clamp<int64_t>(y + lowest_, 0, destination_.Height);
        const int64_t end = std::clamp<int64_t>(y + highest_ + 1, 0, destination_.Height);
        if (first == end) continue;
        if (!fill_rows(end)) return false;
        write_row(lanes, y, first, end - 1);
    }
    return fill_rows(destination_.Height);
}

// The strip's lanes of a source row as they are written.
const uint8_t *ColumnSkewer::skew_row(const uint8_t *row, int32_t y) {
    const size_t count = static_cast<size_t>(width_) * lanes_.count;
    const uint8_t *pixels =
        lanes_.of(source_, row + int64_t{left_} * source_.PixelSize, strip().row.data(), static_cast<size_t>(width_));
    LaneBytes &given = strip().parts[static_cast<size_t>(y % 2)];
    const LaneBytes &received = strip().parts[static_cast<size_t>(1 - y % 2)];
    LaneBytes &result = strip().result;
    kernels::take_parts(given.data(), pixels, strip().fractions.data(), count);
    if (y < source_.Height - 1) {
        kernels::hand_on(result.data(), pixels, given.data(), received.data(), count);
    } else {
        for (size_t i = 0; i < count; ++i)
            result[i] =
                kernels::blend_with_background(lanes_.background[i % lanes_.count], strip().fractions[i], given[i]);
    }
    return result.data();
}

// Fills the destination's rows above `end` as far as they are not; false when one is out of reach.
bool ColumnSkewer::fill_rows(int64_t end) {
    for (; filled_ < end; ++filled_) {
        uint8_t *row = destination_.row_accessor(destination_, static_cast<int32_t>(filled_));
        if (row == nullptr) return false;
        lanes_.fill(destination_, row + int64_t{left_} * destination_.PixelSize, static_cast<size_t>(width_));
    }
    return true;
}

// Writes the lanes of source row y, which go to rows from `first` to `last` or fall outside.
void ColumnSkewer::write_row(const uint8_t *lanes, int32_t y, int64_t first, int64_t last) {
    const RowBand band = rows_between(destination_, static_cast<int32_t>(first), static_cast<int32_t>(last));
    if (first == y + lowest_ && last == y + highest_) return write_run(lanes, y, first, band, 0, width_);
    const auto inside = [&](int32_t column) {
        const int64_t row = y + shifts_[left_ + column].pixels;
        return row >= first && row <= last;
    };
    for (int32_t column = 0; column < width_;) {
        int32_t end = column;
        while (end < width_ && inside(end)) ++end;
        write_run(lanes, y, first, band, column, end);
        column = end + 1;
    }
}

// Writes the strip's columns from `column` up to `end`, the band's first row being `first`.
void ColumnSkewer::write_run(const uint8_t *lanes, int32_t y, int64_t first, const RowBand &band, int32_t column,
                             int32_t end) {
    const Pieces &pieces = lanes_.pieces;
    for (size_t i = 0; i < pieces.count; ++i) {
        const uint8_t *piece = lanes + static_cast<size_t>(column) * lanes_.count + i * pieces.bytes;
        if (band.first != nullptr) {
            kernels::scatter_runs(
                band.first + pieces.to[i], static_cast<ptrdiff_t>((y + lowest_ - first) * destination_.RowSize),
                &strip().places[static_cast<size_t>(column)], piece, static_cast<ptrdiff_t>(lanes_.count),
                static_cast<size_t>(end - column), pieces.bytes);
            continue;
        }
        for (int32_t x = left_ + column; x < left_ + end; ++x, piece += lanes_.count) {
            uint8_t *written = channel_at(destination_, x, y + shifts_[x].pixels, pieces.to[i]);
            if (written != nullptr) std::memcpy(written, piece, pieces.bytes);
        }
    }
}

// Whether lines may be skewed other than one by one: they are written to width × height pixels of the destination.
bool lines_may_run(const Skew &skew, int32_t width, int32_t height) {
    return skew.source.Width > 0 && skew.source.Height > 0 && width > 0 && height > 0 &&
           any_order_serves(skew.source, skew.destination, skew.channels, width, height);
}

} // namespace

Shift shift_of(double distance) {
    const double pixels = std::floor(distance);
    return {static_cast<int64_t>(pixels), distance - pixels};
}

void skew_rows(const Skew &skew, const Shift *shifts, int32_t rows) {
    int32_t y = 0;
    if (skew.source.Height >= rows && lines_may_run(skew, skew.destination.Width, rows)) {
        RowSkewer skewer(skew);
        if (skewer) {
            while (y < rows && skewer.skew(y, shifts[y])) ++y;
            return;
        }
    }
    for (; y < rows; ++y) skew_line_plainly(skew, Along::rows, y, shifts[y]);
}

void skew_columns(const Skew &skew, const Shift *shifts) {
    if (lines_may_run(skew, skew.source.Width, skew.destination.Height)) {
        ColumnSkewer skewer(skew, shifts);
        if (skewer) return skewer.skew();
    }
    for (int32_t x = 0; x < skew.source.Width; ++x) skew_line_plainly(skew, Along::columns, x, shifts[x]);
}

} // namespace kzb
