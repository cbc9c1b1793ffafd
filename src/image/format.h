// The pixel layouts: one table, and the descriptor that a layout gives an image.
#pragma once

#include "image/record.h"

#include <array>

namespace kzb {

// Layout codes that the code itself names; the table in format.cpp has all of them.
inline constexpr int32_t ImageFormatRGB = 1;
inline constexpr int32_t ImageFormatARGB = 4;
inline constexpr int32_t ImageFormatXRGB = 5;
inline constexpr int32_t ImageFormatBGR = 6;
inline constexpr int32_t ImageFormatXBGR = 10;
inline constexpr int32_t ImageFormatG = 11;
inline constexpr int32_t ImageFormatScaling = 14;

// Sets the record's size, layout code and format descriptor and clears RowSize; everything else is left alone. False
// for a nil record (nothing is written) and for a code that is no layout (PixelSize is then 0, the size and the code
// are set all the same).
bool fill_format_descriptor(ImageRecord *image, int32_t width, int32_t height, int32_t image_format);

// The getter of ImageFormatString: the layout's short name as an ASCII string, nil for a layout without one.
String image_format_string(ImageObject image, word);

} // namespace kzb
