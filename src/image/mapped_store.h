// File-backed images: pixels in a scratch file, of which one block of rows at a time is mapped into memory.
#pragma once

#include "image/record.h"

namespace kzb {

// Reads the system's page size; once, at start-up.
void read_page_size();

// Constructor(width, height, ImageFormat, BlockSize, FilePath): an image in a new private file (0600), rows padded to
// whole pages. BlockSize is the wish for the bytes of a mapped block. On failure the image is not Valid, and the file
// is removed when it was opened; a file that another image uses, or that is no plain file, is left alone.
void construct_file_backed(ImageObject image, int32_t width, int32_t height, int32_t image_format, int32_t block_size,
                           FolderItem file);

// The setter of MappingBlockSize. Nothing happens to an image without storage.
void set_mapping_block_size(ImageObject image, word, int32_t block_size);

// The row accessor of file-backed images and their views: maps the row's block when another one is mapped. Nil for a
// row outside the file and when the block cannot be mapped, the pixel buffer then being nil.
uint8_t *mapped_row(ImageRecord &image, int32_t row);

// The address of a row, as the row accessor gives it, for operations that go through the rows in either direction. In a
// file-backed image it maps block after block, no rows twice; the last one may reach beyond the file's end.
inline uint8_t *walked_row(ImageRecord &image, int32_t row);

// The same for a file-backed image.
uint8_t *walked_mapped_row(ImageRecord &image, int32_t row);

// Unmaps the mapped block, if any.
void unmap_block(ImageRecord &image);

// Truncates, closes and deletes the backing file; for close_record.
void discard_backing_file(ImageRecord &image);

// Gives a record a window of its own on the file that `image` is backed by, with no block mapped yet.
void open_window(ImageRecord &window, const ImageRecord &image);

inline uint8_t *walked_row(ImageRecord &image, int32_t row) {
    return image.IsMapping ? walked_mapped_row(image, row) : image.row_accessor(image, row);
}

} // namespace kzb
