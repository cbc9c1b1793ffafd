// Rows and whole images in any layout, as packed bytes: pixels side by side, rows one after another.
//
// One rule converts between all layouts: colour becomes gray by (77 red + 151 green + 28 blue) / 256, gray becomes
// equal colours, alpha goes along where both have it and is left as it was where the source has none; padding is
// neither read nor written.
//
// Getters give nil for an image that is not Valid, an unknown layout, the working layout of the scaling, and without
// memory. Setters do nothing then; they read as many bytes as the row or image takes in the named layout, however many
// the value holds. An index outside 0 to Height - 1 raises "Index is out of bounds.", an assigned nil
// "Memoryblock is nil".
#pragma once

#include "image/record.h"

namespace kzb {

MemoryBlock row_in_format(ImageObject image, int32_t index, int32_t image_format);
void set_row_in_format(ImageObject image, int32_t index, int32_t image_format, MemoryBlock block);

// With invert_alpha, alpha that is carried over becomes 255 - alpha.
MemoryBlock row_in_format_inverting(ImageObject image, int32_t index, int32_t image_format, Boolean invert_alpha);
void set_row_in_format_inverting(ImageObject image, int32_t index, int32_t image_format, Boolean invert_alpha,
                                 MemoryBlock block);

String row_string_in_format(ImageObject image, int32_t index, int32_t image_format);
void set_row_string_in_format(ImageObject image, int32_t index, int32_t image_format, String string);

String data_string_in_format(ImageObject image, int32_t image_format);
void set_data_string_in_format(ImageObject image, int32_t image_format, String string);

} // namespace kzb
