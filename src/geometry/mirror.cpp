#include "geometry/mirror.h"

#include "geometry/pieces.h"
#include "image/mapped_store.h"
#include "image/paced_image.h"
#include "image/row_window.h"
#include "kernels/lanes.h"
#include "kernels/moves.h"
#include "kernels/permute.h"
#include "platform/buffer.h"

#include <cstring>
#include <optional>

namespace kzb {

namespace {

enum class Pixels { in_order, reversed };

// The bytes of a row from the first channel of its first pixel to the last of its last.
struct Span {
    int32_t start; // from the row's first byte
    int32_t width; // of a pixel's channels
    int64_t last_pixel;

    Span(const ImageRecord &image, const Pieces &pieces) : last_pixel((int64_t{image.Width} - 1) * image.PixelSize) {
        const auto [low, high] = std::minmax_element(pieces.from.begin(), pieces.from.begin() + pieces.count);
        start = *low;
        width = *high - *low + static_cast<int32_t>(pieces.bytes);
    }
    int64_t length() const { return last_pixel + width; }
};

// A copy of a row's span.
class HeldRow {
public:
    HeldRow(const ImageRecord &image, const Pieces &pieces, const Span &span)
        : image_(image), pieces_(pieces), span_(span), bytes_(span.length()) {}
    explicit operator bool() const { return static_cast<bool>(bytes_); }

    void take(const uint8_t *row) { std::memcpy(bytes_.get(), row + span_.start, static_cast<size_t>(span_.length())); }

    void give(uint8_t *row, Pixels pixels) const {
        const bool reversed = pixels == Pixels::reversed;
        for (size_t i = 0; i < pieces_.count; ++i) {
            const int32_t offset = pieces_.from[i];
            kernels::move_runs(
                row + offset, image_.PixelSize, &bytes_[0] + (offset - span_.start + (reversed ? span_.last_pixel : 0)),
                reversed ? -image_.PixelSize : image_.PixelSize, static_cast<size_t>(image_.Width), pieces_.bytes);
        }
    }

private:
    const ImageRecord &image_;
    const Pieces &pieces_;
    const Span &span_;
    Buffer<uint8_t> bytes_;
};

// Exchanges two rows whose caller may have laid one over the other: the upper one is written first.
class HeldRows {
public:
    HeldRows(const ImageRecord &image, const Pieces &pieces, const Span &span, Pixels pixels)
        : pixels_(pixels), upper_(image, pieces, span), lower_(image, pieces, span) {}
    explicit operator bool() const { return upper_ && lower_; }

    void exchange(uint8_t *upper, uint8_t *lower) {
        upper_.take(upper);
        lower_.take(lower);
        lower_.give(upper, pixels_);
        upper_.give(lower, pixels_);
    }

private:
    Pixels pixels_;
    HeldRow upper_, lower_;
};

// The bytes of a row's span that are channels; none where pixels are no whole part of a period, or lie over each other.
std::optional<kernels::Lanes> lanes_of(const ImageRecord &image, const Pieces &pieces, const Span &span) {
    const auto step = static_cast<size_t>(image.PixelSize);
    if (kernels::lane_period % step != 0 || span.width > image.PixelSize) return std::nullopt;
    kernels::Lanes lanes = {};
    for (size_t i = 0; i < pieces.count; ++i)
        for (auto pixel = static_cast<size_t>(pieces.from[i] - span.start); pixel < lanes.size(); pixel += step)
            std::fill_n(lanes.begin() + pixel, pieces.bytes, uint8_t{0xff});
    return lanes;
}

// Exchanges the rows of the upper half with those of the lower half; the middle row of an odd height stays.
void exchange_halves(ImageObject object, Pixels pixels) {
    ImageRecord &image = *record_of(object);
    PacedImage paced(image);
    if (!usable(image) || !paced.pace()) return;
    const Pieces pieces = pieces_of(image, image, channels_of(image));
    if (pieces.count == 0 || image.Width < 1 || image.Height < 2) return;
    const Span span(image, pieces);
    const auto lanes = pixels == Pixels::in_order ? lanes_of(image, pieces, span) : std::nullopt;
    const bool apart = image.RowSize >= span.length();
    std::optional<HeldRows> held;
    if (!(lanes && apart) && !held.emplace(image, pieces, span, pixels)) return;
    RowWindow window(image);
    ImageRecord &below = window.image();
    for (int32_t y = 0; y < image.Height / 2; ++y) {
        uint8_t *upper = walked_row(image, y);
        uint8_t *lower = walked_row(below, image.Height - 1 - y);
        if (upper == nullptr || lower == nullptr) return;
        if (held)
            held->exchange(upper, lower);
        else
            kernels::exchange_lanes(upper + span.start, lower + span.start, static_cast<size_t>(span.length()), *lanes);
        if (!paced.pace()) return;
    }
}

} // namespace

void h_mirror(ImageObject object) {
    ImageRecord &image = *record_of(object);
    PacedImage paced(image);
    if (!usable(image) || !paced.pace()) return;
    const Pieces pieces = pieces_of(image, image, channels_of(image));
    if (pieces.count == 0 || image.Width < 2) return;
    for (int32_t y = 0; y < image.Height; ++y) {
        uint8_t *row = walked_row(image, y);
        if (row == nullptr) return;
        for (size_t i = 0; i < pieces.count; ++i)
            kernels::reverse_pixels(row + pieces.from[i], static_cast<size_t>(image.PixelSize), pieces.bytes,
                                    static_cast<size_t>(image.Width));
        if (!paced.pace()) return;
    }
}

void v_mirror(ImageObject image) {
    exchange_halves(image, Pixels::in_order);
}

void rotate_180_in_place(ImageObject image) {
    exchange_halves(image, Pixels::reversed);
}

} // namespace kzb
