// Making and closing images. Constructors report failure only by leaving Valid false; the size and the layout code
// that were asked for can be read all the same.
#pragma once

#include "image/record.h"

namespace kzb {

// Constructor(width, height, ImageFormat): zero-filled storage of its own, rows padded to a multiple of 64 bytes.
// Refused: unknown layouts, negative sizes, more than 2^31 - 1 bytes.
void construct_in_memory(ImageObject image, int32_t width, int32_t height, int32_t image_format);

// Whether an image of this size, which is not negative, could be constructed so, given the memory.
bool fits_in_memory(int32_t width, int32_t height, int32_t pixel_size);

// Constructor(Buf, width, height, ImageFormat, RowSize): over the bytes of a memory block, which the image holds. The
// caller answers for the row size and for the block's size. Refused: a nil block, unknown layouts, negative sizes, 2^32
// bytes and more.
void construct_over_block(ImageObject image, MemoryBlock block, int32_t width, int32_t height, int32_t image_format,
                          int32_t row_size);

// Close, also the destructor: releases everything the image holds. May be called again.
void close_image(ImageObject image);
void close_record(ImageRecord &image);

// What every constructor does first: gives back what an earlier constructor of the same object left, as user code may
// call one twice.
void begin_construction(ImageRecord &image);

// Readers of Memory and TotalSize.
MemoryBlock image_memory(ImageObject image, word);
int64_t image_total_size(ImageObject image, word);

// The in-memory row accessor. It checks nothing.
uint8_t *memory_row(ImageRecord &image, int32_t row);

} // namespace kzb
