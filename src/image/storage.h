// Bytes of an image's storage beyond the plain walk over its own rows: destinations that are too small, images that
// share storage, runs that leave a row.
#pragma once

#include "image/channels.h"
#include "image/mapped_store.h"

#include <algorithm>

namespace kzb {

// Whether the image's own rectangle has at least this size.
inline bool holds(const ImageRecord &image, int64_t width, int64_t height) {
    return image.Width >= width && image.Height >= height;
}

// The address of the byte `byte` bytes after the start of a row, or nil when it lies outside the image's storage. The
// byte may lie in a later row. The address is void at the next call for the same image.
uint8_t *byte_at(ImageRecord &image, int64_t row, int64_t byte);

// The address of a channel of a pixel: always within the image's rectangle, elsewhere where it lies inside the
// storage; nil otherwise. The address is void at the next call for the same image.
uint8_t *channel_at(ImageRecord &image, int64_t x, int64_t y, int32_t offset);

// Calls fill(address, bytes) for the bytes [byte, byte + count) counted from the start of a row, cut to the storage, in
// ascending order: in one run in memory, in one run for each row it touches in a file-backed image.
template <class Fill> void for_each_run(ImageRecord &image, int64_t row, int64_t byte, int64_t count, Fill fill);

// How the storage of two images relates.
enum class Sharing {
    none,      // no byte in common
    identical, // the same pixels at the same places, with the same offsets of `channels`
    mixed      // bytes in common in some other way: only the stated order of processing gives the right bytes
};
Sharing sharing_of(const ImageRecord &a, const ImageRecord &b, const Channels &channels);

// Whether row functions may run from source to destination instead of the plain walk: the destination holds
// width × height pixels, no byte is a channel of two of them or two channels of one, and the two images share no bytes
// or are the same pixels. A row function that reads a row's neighbourhood also needs Sharing::none.
bool rows_may_run(const ImageRecord &source, const ImageRecord &destination, const Channels &channels, int64_t width,
                  int64_t height);

template <class Fill> void for_each_run(ImageRecord &image, int64_t row, int64_t byte, int64_t count, Fill fill) {
    const int64_t start = (image.RowOffset + row) * image.RowSize + byte;
    const int64_t end = std::min(start + count, image.TotalSize);
    int64_t at = std::max<int64_t>(start, 0);
    if (!image.IsMapping) {
        if (at < end) fill(image.pixel_buffer + at, static_cast<size_t>(end - at));
        return;
    }
    while (at < end) {
        uint8_t *storage_row = walked_row(image, static_cast<int32_t>(at / image.RowSize) - image.RowOffset);
        if (storage_row == nullptr) return;
        const int64_t run_end = std::min(end, (at / image.RowSize + 1) * image.RowSize);
        fill(storage_row + at % image.RowSize, static_cast<size_t>(run_end - at));
        at = run_end;
    }
}

} // namespace kzb
