// The rows of a box blur, one after the other, with no image between repeated ones.
#pragma once

#include "filters/tables.h"
#include "image/packed_rows.h"
#include "image/row_window.h"
#include "kernels/narrow_box.h"

#include <optional>

namespace kzb {

// Gives the packed rows of one blur in ascending order. Its input may be the rows of another one.
class BlurredRows {
public:
    static constexpr int64_t largest_radius = kernels::largest_narrow_box_radius;

    // Of an image of at least one pixel, which must hold its rows.
    BlurredRows(ImageRecord &source, const Channels &channels, int64_t radius);
    // Of another's rows, none of which has been asked for.
    explicit BlurredRows(BlurredRows &before);

    // False when there is no memory for it.
    explicit operator bool() const;

    // Bytes of a row.
    size_t bytes() const { return width_ * channels_; }

    // Writes the next row; false when one of its input cannot be reached.
    [[nodiscard]] bool write_next(uint8_t *target);

    // Writes all rows to an image that holds them and shares no byte with the source; each channel through its table
    // where there are tables, which then are given for all or for the colours alone, alpha becoming 0. Stops
    // where a row cannot be reached; false, with nothing written, when there is no memory for it.
    bool write_all(ImageRecord &destination, const Channels &channels, const ChannelTables *tables = nullptr);

private:
    // The image's rows as they enter and leave a window.
    struct ImageRows {
        ImageRows(ImageRecord &source, const Channels &channels)
            : entering_window(source), leaving_window(source),
              entering(entering_window.image(), channels, source.Width, false),
              leaving(leaving_window.image(), channels, source.Width, false) {}

        RowWindow entering_window, leaving_window;
        PackedRows entering, leaving;
    };

    BlurredRows(size_t width, int32_t height, size_t channels, int64_t radius);
    const uint8_t *entering(int32_t y);
    const uint8_t *leaving(int32_t y) { return image_ ? image_->leaving.read(y) : held_row(y); }
    uint8_t *held_row(int32_t y) const { return held_.get() + static_cast<size_t>(y % held_rows_) * bytes(); }
    bool start();
    void blur_line(uint8_t *target);
    void send_through(uint8_t *row, const Channels &channels, const ChannelTables &tables) const;

    const size_t width_;
    const int32_t height_;
    const size_t channels_;
    const int32_t radius_;
    const kernels::NarrowMean mean_;
    int32_t next_ = 0;

    std::optional<ImageRows> image_;
    BlurredRows *before_ = nullptr;
    int32_t held_rows_ = 0; // the last rows of `before_`
    int32_t taken_ = 0;     // so many of its rows have been held
    Buffer<uint8_t> held_;

    Buffer<uint16_t> column_sums_;
    Buffer<uint8_t> line_;       // blurred along the columns, with its first and last pixel repeated at the ends
    Buffer<uint16_t> line_sums_; // of all pixels up to each of the line
};

} // namespace kzb
