#include "geometry/skew.h"

#include "geometry/column_skewer.h"
#include "image/packed_rows.h"
#include "kernels/moves.h"
#include "kernels/shear.h"

#include <cmath>

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

// Skews row by row, all pixels of a row at once.
class RowSkewer {
public:
    explicit RowSkewer(const Skew &skew)
        : background_(skew.background), channels_(skew.channels.size()), width_(skew.source.Width),
          room_(skew.destination.Width), source_(skew.source, skew.channels, skew.source.Width, false),
          destination_(skew.destination, skew.channels, skew.destination.Width, false), parts_(size(width_ + 1)),
          result_(size(room_)) {}

    // False without work memory.
    explicit operator bool() const { return source_ && destination_ && parts_ && result_; }

    // False when the row is out of reach.
    bool skew(int32_t y, Shift shift);

private:
    // Bytes of so many packed pixels.
    int64_t size(int64_t pixels) const { return pixels * static_cast<int64_t>(channels_); }
    void fill(int64_t start, int64_t end) {
        kernels::fill_runs(result_.get() + size(start), static_cast<ptrdiff_t>(channels_), background_.data(),
                           static_cast<size_t>(end - start), channels_);
    }

    const Background background_;
    const size_t channels_;
    const int64_t width_; // of the source
    const int64_t room_;  // of the destination
    PackedRows source_;
    PackedRows destination_;
    Buffer<uint8_t> parts_; // what each pixel receives from the one before it, the first one nothing
    Buffer<uint8_t> result_;
};

bool RowSkewer::skew(int32_t y, Shift shift) {
    const uint8_t *row = source_.read(y);
    if (row == nullptr) return false;
    kernels::take_parts(parts_.get() + channels_, row, shift.fraction, source_.bytes());

    const int64_t start = std::clamp<int64_t>(shift.pixels, 0, room_);
    const int64_t end = std::clamp<int64_t>(shift.pixels + width_, 0, room_);
    fill(0, start);
    if (start < end) {
        const int64_t from = size(start - shift.pixels);
        const uint8_t *received = parts_.get() + from;
        kernels::hand_on(result_.get() + size(start), row + from, received + channels_, received,
                         static_cast<size_t>(size(end - start)));
    }
    fill(end, room_);
    const int64_t blended = shift.pixels + width_;
    if (blended >= 0 && blended < room_)
        for (size_t i = 0; i < channels_; ++i)
            result_[static_cast<size_t>(size(blended)) + i] = kernels::blend_with_background(
                background_[i], shift.fraction, parts_[static_cast<size_t>(size(width_)) + i]);
    return destination_.write(y, result_.get());
}

// Whether lines may be skewed other than one by one: they are written to width × height pixels of the destination.
bool lines_may_run(const Skew &skew, int32_t width, int32_t height) {
    return skew.source.Width > 0 && width > 0 &&
           any_order_serves(skew.source, skew.destination, skew.channels, width, height);
}

} // namespace

Shift shift_of(double distance) {
    const double pixels = std::floor(distance);
    return {static_cast<int64_t>(pixels), distance - pixels};
}

Skew packed_order(const Skew &skew) {
    Skew packed = {skew.source, skew.destination, in_byte_order(skew.channels, skew.source), {}};
    for (size_t i = 0; i < packed.channels.size(); ++i) {
        const auto *place = std::find(skew.channels.begin(), skew.channels.end(), packed.channels[i]);
        packed.background[i] = skew.background[static_cast<size_t>(place - skew.channels.begin())];
    }
    return packed;
}

void skew_rows(const Skew &skew, const Shift *shifts, int32_t rows) {
    if (skew.source.Height >= rows && lines_may_run(skew, skew.destination.Width, rows)) {
        RowSkewer skewer(packed_order(skew));
        if (skewer) {
            for (int32_t y = 0; y < rows; ++y)
                if (!skewer.skew(y, shifts[y])) return;
            return;
        }
    }
    for (int32_t y = 0; y < rows; ++y) skew_line_plainly(skew, Along::rows, y, shifts[y]);
}

void skew_columns(const Skew &skew, const Shift *shifts) {
    if (lines_may_run(skew, skew.source.Width, skew.destination.Height)) {
        ColumnSkewer skewer(packed_order(skew), shifts);
        if (skewer) return skewer.skew();
    }
    for (int32_t x = 0; x < skew.source.Width; ++x) skew_line_plainly(skew, Along::columns, x, shifts[x]);
}

} // namespace kzb
