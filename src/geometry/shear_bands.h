// The three shears of a rotation in one go, band by band, without images between them.
#pragma once

#include "geometry/skew.h"
#include "image/packed_rows.h"
#include "platform/buffer.h"

namespace kzb {

// The images of a rotation and how far their lines are shifted: rows from the source to the first, columns from the
// first to the second, rows from the second to the result.
struct ThreeShifts {
    int32_t first_width;
    int32_t second_height;
    const Shift *first;  // for each of the source's rows
    const Shift *second; // for each of the first image's columns; they only grow or only shrink, by less than a row
    const Shift *third;  // for each of the second image's rows, which are as many as the result's
};

// Writes what skew_rows, skew_columns and skew_rows would give with two images of the source's layout between.
class ShearBands {
public:
    // The result holds its rows, has the second image's height and shares no byte with the source.
    ShearBands(const Skew &skew, const ThreeShifts &shifts);

    // False without work memory, or when a row of a file-backed source is out of reach.
    explicit operator bool() const { return ready_; }

    // Stops where a row of the result is out of reach.
    void run();

private:
    static constexpr int32_t band_rows = 64;
    static constexpr int32_t most_columns = 128; // of a tile, shifted against each other by fewer rows

    // A shift with the factor that stands for its fraction.
    struct Shear {
        int64_t pixels;
        double fraction;
        int32_t factor; // -1: the fraction itself must be used
    };
    // A column whose fraction has no factor.
    struct OddColumn {
        int32_t column;
        double fraction;
    };

    static Buffer<Shear> shears_of(const Shift *shifts, int32_t count);
    size_t size(int64_t pixels) const { return static_cast<size_t>(pixels) * channels_; }
    int64_t bytes(int64_t pixels) const { return pixels * static_cast<int64_t>(channels_); }
    bool take_source(const Skew &skew);
    void take_columns(const Shift *shifts);
    void write_sheared(uint8_t *target, int64_t start, int64_t end, const uint8_t *row, int64_t width,
                       const Shear &shear) const;
    void fill(uint8_t *target, int64_t pixels) const;
    void make_tile(int32_t top, int32_t bottom, int32_t left, int32_t right);
    void shear_tile(int32_t top, int32_t bottom, int32_t left, int32_t right);
    void mend_column(int32_t top, int32_t bottom, int32_t column);

    PackedRows written_;
    const int32_t result_width_;
    const Background background_;
    const size_t channels_;
    const int32_t tile_columns_;
    const int32_t width_, height_; // of the source
    const int32_t first_width_, second_height_;
    const uint8_t *source_ = nullptr; // packed rows
    ptrdiff_t source_step_ = 0;
    Buffer<uint8_t> packed_source_;
    Buffer<Shear> first_, second_, third_;
    Buffer<uint16_t> factors_; // of each byte of the second image's rows
    Buffer<uint8_t> stairs_;   // for each byte, its column's shift below the highest of its tile
    Buffer<OddColumn> odd_;
    size_t odd_count_ = 0;
    Buffer<uint8_t> tile_; // rows of the first image
    Buffer<uint8_t> shifted_rows_;
    Buffer<uint8_t> band_; // rows of the second image
    Buffer<uint8_t> background_row_;
    bool ready_ = false;
};

} // namespace kzb
