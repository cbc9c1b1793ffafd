// The image record: the instance data of PictureKZB, zero-filled by the host when the object is made.
#pragma once

#include "host/values.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace kzb {

struct ImageRecord;

// Gives the address of the first byte of an image's row, or nil when the row cannot be reached. The address is void at
// the next call for the same image: a file-backed image may map another block.
using RowAccessor = uint8_t *(ImageRecord &image, int32_t row);

struct ImageRecord {
    int32_t YieldTicks; // pacing interval in sixtieths of a second; not positive: never yield
    uint32_t last_yield_tick;
    FactoryObject Factory;    // written by the host, which also counts the reference
    MemoryBlock MemoryTarget; // one reference: the block whose bytes are the pixels
    Boolean DebugPictureEnabled;

    // The format descriptor: see image/format.h. Offsets are bytes from the pixel's start, 0 for an absent channel; in
    // a view they include the view's first column.
    int32_t RedOffset;
    int32_t IsGray;
    int32_t GreenOffset;
    int32_t IsRGB;
    int32_t BlueOffset;
    int32_t HasGreen;
    int32_t GrayOffset;
    int32_t HasRed;
    int32_t AlphaOffset;
    int32_t HasBlue;
    int32_t Width;
    int32_t HasGray;
    int32_t Height;
    int32_t HasAlpha;
    int32_t PixelSize; // bytes

    Boolean Valid;
    int32_t RowSize; // bytes from the start of one row to the start of the next
    int32_t ImageFormat;
    int32_t RowOffset; // index, within the storage, of this image's row 0
    int64_t TotalSize; // bytes of storage

    ImageObject Parent;             // one reference: the image whose storage a view shows
    FolderItem backing_folder_item; // one reference
    Picture Target;                 // one reference: the host picture that holds the pixels
    char *backing_file_path;        // owned, NUL-terminated

    Boolean owns_buffer;   // the pixel buffer is freed at Close
    uint8_t *pixel_buffer; // start of the storage, or of the mapped block of a file-backed image

    Boolean delete_backing_file; // Close truncates, closes and deletes the backing file
    Boolean block_mapped;        // a block of the backing file is mapped at the pixel buffer
    int32_t backing_file_descriptor;
    Boolean IsMapping;        // file-backed
    int32_t MappingBlockSize; // bytes per mapped block

    RowAccessor *row_accessor;
    int32_t first_mapped_row; // storage rows that the mapped block covers; -1 when none
    int32_t last_mapped_row;
    int32_t rows_per_block; // rows that a mapped block holds; Height for in-memory images

    // Tells one storage from every other, also from a later one of the same image: set when storage is, shared with
    // views, 0 after Close.
    uint64_t storage_id;

    // What TotalSize reads in a clone and its views: that of the image it was made from, which for a view was more than
    // the clone's own storage. 0 in all other images.
    int64_t original_total_size;
};

static_assert(std::is_trivial_v<ImageRecord> && std::is_standard_layout_v<ImageRecord>);

// Where the host finds the one byte of a Boolean property that the record keeps as 32 bits.
inline constexpr size_t flag_byte = std::endian::native == std::endian::big ? sizeof(int32_t) - 1 : 0;

// The record of an image object; nil for nil.
ImageRecord *record_of(ImageObject image);

// Whether the image has storage that its row accessor can reach: constructed and not closed, and for a view that the
// image it was made from still has the storage that it shows.
[[nodiscard]] inline bool storage_present(const ImageRecord &image);

// The validity test that every operation starts with: Valid, storage present and mapped, Height not zero.
[[nodiscard]] inline bool usable(const ImageRecord &image);

// A new storage_id.
uint64_t next_storage_id();

// For a view: whether the images that it was made from still have its storage.
bool parents_have_storage(const ImageRecord &view);

// Asked after every row, and so inline.
inline bool storage_present(const ImageRecord &image) {
    return image.row_accessor != nullptr && (image.Parent == nullptr || parents_have_storage(image));
}

inline bool usable(const ImageRecord &image) {
    return image.Valid && storage_present(image) && image.pixel_buffer != nullptr && image.Height != 0;
}

} // namespace kzb
