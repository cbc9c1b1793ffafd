#include "geometry/mirror.h"

#include "geometry/pieces.h"
#include "image/paced_image.h"
#include "kernels/moves.h"
#include "platform/buffer.h"

#include <cstring>

namespace kzb {

namespace {

// So many bytes of rows of a file-backed image are taken at a time: every change between top and bottom may map another
// block.
constexpr int64_t band_size = 1 << 20;

// Copies of successive rows, from their first channel to their last.
class RowCopies {
public:
    RowCopies(ImageRecord &image, const Pieces &pieces, int64_t rows) : image_(image), pieces_(pieces) {
        const auto [low, high] = std::minmax_element(pieces.from.begin(), pieces.from.begin() + pieces.count);
        start_ = *low;
        length_ = last_pixel() + *high - *low + static_cast<int64_t>(pieces.bytes);
        bytes_ = Buffer<uint8_t>(length_ * rows);
    }
    explicit operator bool() const { return static_cast<bool>(bytes_); }

    // Copies the rows from `first` on; false when one is out of reach.
    bool take(int32_t first, int32_t count) {
        for (int32_t i = 0; i < count; ++i) {
            const uint8_t *row = image_.row_accessor(image_, first + i);
            if (row == nullptr) return false;
            std::memcpy(bytes_.get() + i * length_, row + start_, static_cast<size_t>(length_));
        }
        return true;
    }

    // Writes the copies to the rows from `first` on, the last one first, and their pixels in reverse order where
    // `turned` is set. False when a row is out of reach.
    bool give(int32_t first, int32_t count, bool turned) const {
        for (int32_t i = 0; i < count; ++i) {
            uint8_t *row = image_.row_accessor(image_, first + i);
            if (row == nullptr) return false;
            const uint8_t *copy = bytes_.get() + (count - 1 - i) * length_ - start_ + (turned ? last_pixel() : 0);
            for (size_t piece = 0; piece < pieces_.count; ++piece)
                kernels::move_runs(row + pieces_.from[piece], image_.PixelSize, copy + pieces_.from[piece],
                                   turned ? -image_.PixelSize : image_.PixelSize, static_cast<size_t>(image_.Width),
                                   pieces_.bytes);
        }
        return true;
    }

private:
    int64_t last_pixel() const { return (int64_t{image_.Width} - 1) * image_.PixelSize; }

    ImageRecord &image_;
    const Pieces &pieces_;
    int64_t start_;
    int64_t length_;
    Buffer<uint8_t> bytes_;
};

void exchange_top_and_bottom(ImageObject object, bool turned) {
    ImageRecord &image = *record_of(object);
    PacedImage paced(image);
    if (!usable(image) || !paced.pace()) return;
    const Pieces pieces = pieces_of(image, image, channels_of(image));
    const int32_t pairs = image.Height / 2;
    if (pieces.count == 0 || image.Width < 1 || pairs < 1) return;
    int64_t band = 1;
    // Between yields the rows are as the order of the pairs leaves them.
    if (image.IsMapping && image.YieldTicks <= 0) band = std::clamp<int64_t>(band_size / image.RowSize, 1, pairs);
    RowCopies top(image, pieces, band);
    RowCopies bottom(image, pieces, band);
    if (!top || !bottom) return;
    for (int32_t y = 0; y < pairs;) {
        const auto count = static_cast<int32_t>(std::min<int64_t>(band, pairs - y));
        const int32_t opposite = image.Height - y - count;
        if (!top.take(y, count) || !bottom.take(opposite, count)) return;
        if (!bottom.give(y, count, turned) || !top.give(opposite, count, turned)) return;
        if (!paced.pace()) return;
        y += count;
    }
}

} // namespace

void h_mirror(ImageObject object) {
    ImageRecord &image = *record_of(object);
    PacedImage paced(image);
    if (!usable(image) || !paced.pace()) return;
    const Pieces pieces = pieces_of(image, image, channels_of(image));
    if (pieces.count == 0 || image.Width < 2) return;
    const int64_t last_pixel = (int64_t{image.Width} - 1) * image.PixelSize;
    for (int32_t y = 0; y < image.Height; ++y) {
        uint8_t *row = image.row_accessor(image, y);
        if (row == nullptr) return;
        for (size_t piece = 0; piece < pieces.count; ++piece) {
            uint8_t *first = row + pieces.from[piece];
            kernels::swap_runs(first, first + last_pixel, image.PixelSize, static_cast<size_t>(image.Width / 2),
                               pieces.bytes);
        }
        if (!paced.pace()) return;
    }
}

void v_mirror(ImageObject image) {
    exchange_top_and_bottom(image, false);
}

void rotate_180_in_place(ImageObject image) {
    exchange_top_and_bottom(image, true);
}

} // namespace kzb
