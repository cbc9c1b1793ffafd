// Rows and columns of an image shifted by fractions of a pixel, anti-aliased.
#pragma once

#include "image/channels.h"

namespace kzb {

// The background's bytes, in the order of the channels.
using Background = std::array<uint8_t, 4>;

// How far a row or column is shifted: whole pixels, and a fraction in 0..1.
struct Shift {
    int64_t pixels;
    double fraction;
};
Shift shift_of(double distance);

// What a skew moves.
struct Skew {
    ImageRecord &source;
    ImageRecord &destination;
    Channels channels;
    Background background;
};

// The same skew with the channels in the order in which rows are best packed.
Skew packed_order(const Skew &skew);

// Fills each of the first `rows` rows of the destination with the background and writes the source's row to it,
// shifted to the right by its own shift. What falls beside the row is left out; the pixel that follows the last one
// takes that one's fraction, blended with the background. Right for images of any size that share storage in any way:
// nothing is written outside the destination's storage.
void skew_rows(const Skew &skew, const Shift *shifts, int32_t rows);

// The same for each of the source's columns, shifted downwards; here the blended pixel takes the place of the last one.
void skew_columns(const Skew &skew, const Shift *shifts);

} // namespace kzb
