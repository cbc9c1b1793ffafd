#include "geometry/mirror.h"

#include "geometry/pieces.h"
#include "image/mapped_store.h"
#include "image/paced_image.h"
#include "image/row_window.h"
#include "kernels/moves.h"
#include "kernels/permute.h"
#include "platform/buffer.h"

#include <cstring>

namespace kzb {

namespace {

enum class Pixels { in_order, reversed };

// A copy of a row, from its first channel to its last.
class HeldRow {
public:
    HeldRow(const ImageRecord &image, const Pieces &pieces) : image_(image), pieces_(pieces) {
        const auto [low, high] = std::minmax_element(pieces.from.begin(), pieces.from.begin() + pieces.count);
        start_ = *low;
        length_ = static_cast<size_t>(last_pixel() + *high - *low) + pieces.bytes;
        bytes_ = Buffer<uint8_t>(static_cast<int64_t>(length_));
    }
    explicit operator bool() const { return static_cast<bool>(bytes_); }

    void take(const uint8_t *row) { std::memcpy(bytes_.get(), row + start_, length_); }

    void give(uint8_t *row, Pixels pixels) const {
        const bool reversed = pixels == Pixels::reversed;
        for (size_t i = 0; i < pieces_.count; ++i) {
            const int32_t offset = pieces_.from[i];
            kernels::move_runs(
                row + offset, image_.PixelSize, &bytes_[0] + (offset - start_ + (reversed ? last_pixel() : 0)),
                reversed ? -image_.PixelSize : image_.PixelSize, static_cast<size_t>(image_.Width), pieces_.bytes);
        }
    }

private:
    int64_t last_pixel() const { return (int64_t{image_.Width} - 1) * image_.PixelSize; }

    const ImageRecord &image_;
    const Pieces &pieces_;
    int32_t start_;
    size_t length_;
    Buffer<uint8_t> bytes_;
};

// Exchanges the rows of the upper half with those of the lower half; the middle row of an odd height stays.
void exchange_halves(ImageObject object, Pixels pixels) {
    ImageRecord &image = *record_of(object);
    PacedImage paced(image);
    if (!usable(image) || !paced.pace()) return;
    const Pieces pieces = pieces_of(image, image, channels_of(image));
    if (pieces.count == 0 || image.Width < 1 || image.Height < 2) return;
    HeldRow upper(image, pieces);
    HeldRow lower(image, pieces);
    if (!upper || !lower) return;
    RowWindow window(image);
    ImageRecord &below = window.image();
    for (int32_t y = 0; y < image.Height / 2; ++y) {
        const int32_t opposite = image.Height - 1 - y;
        uint8_t *upper_row = walked_row(image, y);
        if (upper_row == nullptr) return;
        upper.take(upper_row);
        uint8_t *lower_row = walked_row(below, opposite);
        if (lower_row == nullptr) return;
        lower.take(lower_row);
        lower.give(upper_row, pixels);
        upper.give(lower_row, pixels);
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
