// Single rows in the image's own layout, as memory blocks of RowSize bytes. An index outside 0 to Height - 1 raises
// "Index is out of bounds.".
#pragma once

#include "image/record.h"

namespace kzb {

// A row of a Valid image that user code named by index, raising when the index is out of bounds; nil then, and where
// the row cannot be reached.
uint8_t *indexed_row(ImageRecord &image, int32_t index);

// A block that aliases the row, valid until the image is closed or maps another block; nil for an image that is not
// Valid.
MemoryBlock raw_row(ImageObject image, int32_t index);

// A block with a copy of the row; nil for an image that is not Valid, or without memory.
MemoryBlock row(ImageObject image, int32_t index);

// Copies RowSize bytes from the block, however long it is, into the row; a nil block raises "Memoryblock is nil".
void set_row(ImageObject image, int32_t index, MemoryBlock block);

} // namespace kzb
