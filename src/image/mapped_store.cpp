#include "image/mapped_store.h"

#include "host/folder_item.h"
#include "host/reference.h"
#include "image/format.h"
#include "image/lifecycle.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <numeric>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kzb {

namespace {

constinit int64_t page_size = 4096;

constexpr int64_t tail_size = 4096;
constexpr int64_t fewest_rows_per_block = 5;

// Of the processor's large pages, those that files come in.
constexpr int64_t large_page_size = 2 << 20;

int64_t whole_pages(int64_t bytes) {
    return (bytes + page_size - 1) / page_size * page_size;
}

// The bytes of a mapped block. The quotient is compared with the page size, not with 1, so that every wish up to the
// square of the page size gives that square.
int64_t mapping_block_size(int64_t wish, int64_t row_size, int64_t total_size) {
    const int64_t block = std::min(std::max(page_size, wish / page_size) * page_size, total_size);
    return whole_pages(std::max(block, fewest_rows_per_block * row_size));
}

// Opens the file for one image alone; -1 when that fails. Never descriptor 0, which an image that is closed twice
// truncates and closes.
int open_scratch_file(const char *path) {
    constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK;
    int descriptor = open(path, flags | O_EXCL, S_IRUSR | S_IWUSR);
    const bool is_new = descriptor >= 0;
    if (!is_new && errno == EEXIST) descriptor = open(path, flags, S_IRUSR | S_IWUSR);
    if (descriptor == 0) {
        descriptor = fcntl(0, F_DUPFD_CLOEXEC, 1);
        close(0);
    }
    struct stat status = {};
    const bool is_known = descriptor >= 0 && fstat(descriptor, &status) == 0;
    // Truncating a file that another image has mapped would take its pages away. A file system without locks is used
    // without them.
    if (is_known && S_ISREG(status.st_mode) && (flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK))
        return descriptor;
    if (descriptor >= 0) close(descriptor);
    if (is_new && !is_known) unlink(path);
    return -1;
}

// Reserves the file's space, so that a full disk is found here and not at the first write to a mapped page. A file
// system that cannot reserve is used as it is.
bool reserve(int descriptor, int64_t length) {
    // Signals may interrupt it, and some file systems then begin anew.
    constexpr int most_attempts = 100;
    for (int attempt = 0; attempt < most_attempts; ++attempt) {
        if (fallocate(descriptor, 0, 0, length) == 0) return true;
        if (errno != EINTR) return errno != ENOSPC && errno != EDQUOT && errno != EFBIG && errno != EIO;
    }
    return false;
}

bool size_scratch_file(int descriptor, int64_t total_size) {
    const int64_t length = total_size + page_size;
    if (fchmod(descriptor, S_IRUSR | S_IWUSR) != 0 || ftruncate(descriptor, 0) != 0 ||
        ftruncate(descriptor, length) != 0 || !reserve(descriptor, length))
        return false;
    static constexpr char tail[tail_size] = {};
    return lseek(descriptor, total_size, SEEK_SET) == total_size &&
           write(descriptor, tail, tail_size) == static_cast<ssize_t>(tail_size);
}

// Truncates, closes and deletes. Nothing can be done about a failure here.
void remove_scratch_file(int descriptor, const char *path) {
    [[maybe_unused]] int ignored = ftruncate(descriptor, 0);
    close(descriptor);
    if (path != nullptr) unlink(path);
}

// The storage row at which the block with storage row `row` starts: two rows before it, so that loops that also read
// the two previous rows stay inside the block, and no later than the last full block.
int64_t block_start(const ImageRecord &image, int64_t row) {
    const int64_t lead = row >= 2 ? row - 2 : row;
    const auto last = static_cast<uint32_t>(image.Height) - static_cast<uint32_t>(image.rows_per_block);
    const int64_t start = std::min<int64_t>(lead, last);
    if (start + image.rows_per_block > row) return start;
    // A view's own height says nothing about where its rows lie in the file.
    return std::min(lead, std::max<int64_t>(image.TotalSize / image.RowSize - image.rows_per_block, 0));
}

// Some file systems can then keep the file in large pages, which take a tenth of the time of small ones to be mapped
// and to be marked as written. One that a block cuts in two takes several times as long.
void ask_for_large_pages([[maybe_unused]] const ImageRecord &image, [[maybe_unused]] void *block,
                         [[maybe_unused]] int64_t offset) {
#ifdef MADV_HUGEPAGE
    const int64_t end = offset + image.MappingBlockSize;
    if (offset % large_page_size == 0 && (end % large_page_size == 0 || end >= image.TotalSize))
        madvise(block, static_cast<size_t>(image.MappingBlockSize), MADV_HUGEPAGE);
#endif
}

// The storage row at which the block starts that a walk over the rows maps for a row: blocks one after the other, that
// hold whole large pages where this takes at most one block more.
int64_t walking_start(const ImageRecord &image, int64_t row) {
    const int64_t rows = image.TotalSize / image.RowSize;
    const int64_t most = image.rows_per_block;
    const int64_t alignment = large_page_size / std::gcd(large_page_size, int64_t{image.RowSize});
    const int64_t aligned = most / alignment * alignment;
    const auto blocks = [&](int64_t stride) { return (rows + stride - 1) / stride; };
    const int64_t stride = aligned != 0 && blocks(aligned) <= blocks(most) + 1 ? aligned : most;
    return row / stride * stride;
}

void map_block(ImageRecord &image, int64_t start) {
    void *block = mmap(nullptr, static_cast<size_t>(image.MappingBlockSize), PROT_READ | PROT_WRITE, MAP_SHARED,
                       image.backing_file_descriptor, start * image.RowSize);
    if (block == MAP_FAILED) {
        image.pixel_buffer = nullptr;
        image.block_mapped = 0;
        return;
    }
    ask_for_large_pages(image, block, start * image.RowSize);
    image.pixel_buffer = static_cast<uint8_t *>(block);
    image.block_mapped = 1;
    image.first_mapped_row = static_cast<int32_t>(start);
    image.last_mapped_row = static_cast<int32_t>(start + image.rows_per_block - 1);
}

// A row's address, of the mapped block or of one that starts at start_of(image, storage row).
template <class Start> uint8_t *row_in_block(ImageRecord &image, int32_t index, Start start_of) {
    const int64_t row = static_cast<int64_t>(image.RowOffset) + index;
    if (row < 0 || (row + 1) * image.RowSize > image.TotalSize) return nullptr;
    if (row < image.first_mapped_row || row > image.last_mapped_row) {
        unmap_block(image);
        map_block(image, start_of(image, row));
        if (image.pixel_buffer == nullptr) return nullptr;
    }
    return image.pixel_buffer + (row - image.first_mapped_row) * image.RowSize;
}

} // namespace

void read_page_size() {
    page_size = std::max(getpagesize(), 4096);
}

void construct_file_backed(ImageObject object, int32_t width, int32_t height, int32_t image_format, int32_t block_size,
                           FolderItem file) {
    ImageRecord &image = *record_of(object);
    auto held = Reference<FolderItem>::share(file);
    begin_construction(image);
    if (!fill_format_descriptor(&image, width, height, image_format)) return;
    if (width < 0 || height < 0) return;
    auto path = folder_item_path(file);
    if (!path) return;
    const int descriptor = open_scratch_file(path.get());
    if (descriptor < 0) return;
    const int64_t row_size = whole_pages(static_cast<int64_t>(width) * image.PixelSize);
    const int64_t total_size = row_size * height;
    const int64_t block = mapping_block_size(block_size, row_size, total_size);
    // A block is mapped whole and counted in 32 bits.
    if (row_size == 0 || row_size > INT32_MAX || block > INT32_MAX || !size_scratch_file(descriptor, total_size)) {
        remove_scratch_file(descriptor, path.get());
        return;
    }
    image.backing_file_path = path.release();
    image.backing_file_descriptor = descriptor;
    image.RowSize = static_cast<int32_t>(row_size);
    image.TotalSize = total_size;
    image.pixel_buffer = nullptr;
    image.first_mapped_row = image.last_mapped_row = -1;
    image.owns_buffer = 0;
    image.MappingBlockSize = static_cast<int32_t>(block);
    image.rows_per_block = static_cast<int32_t>(block / row_size);
    image.backing_folder_item = held.release();
    image.row_accessor = mapped_row;
    image.delete_backing_file = 1;
    image.IsMapping = 1;
    image.storage_id = next_storage_id();
    map_block(image, block_start(image, 0));
    if (image.pixel_buffer == nullptr) {
        begin_construction(image);
        return;
    }
    image.Valid = 1;
}

void set_mapping_block_size(ImageObject object, word, int32_t block_size) {
    ImageRecord &image = *record_of(object);
    if (!storage_present(image) || image.RowSize == 0) return;
    const int64_t block = mapping_block_size(block_size, image.RowSize, image.TotalSize);
    if (block > INT32_MAX) return;
    unmap_block(image);
    image.MappingBlockSize = static_cast<int32_t>(block);
    image.rows_per_block = static_cast<int32_t>(block / image.RowSize);
    image.row_accessor(image, 0);
}

uint8_t *mapped_row(ImageRecord &image, int32_t index) {
    return row_in_block(image, index, block_start);
}

uint8_t *walked_mapped_row(ImageRecord &image, int32_t index) {
    return row_in_block(image, index, walking_start);
}

void unmap_block(ImageRecord &image) {
    if (!image.block_mapped) return;
    image.block_mapped = 0;
    if (image.pixel_buffer == nullptr) return;
    munmap(image.pixel_buffer, static_cast<size_t>(image.MappingBlockSize));
    image.pixel_buffer = nullptr;
    image.first_mapped_row = image.last_mapped_row = -1;
}

void discard_backing_file(ImageRecord &image) {
    // Close runs this again when it is called again, on descriptor 0 and without a path.
    remove_scratch_file(image.backing_file_descriptor, image.backing_file_path);
    image.backing_file_descriptor = 0;
}

void open_window(ImageRecord &window, const ImageRecord &image) {
    window.IsMapping = 1;
    window.delete_backing_file = 0;
    window.block_mapped = 0;
    window.pixel_buffer = nullptr;
    window.backing_file_descriptor = image.backing_file_descriptor;
    window.MappingBlockSize = image.MappingBlockSize;
    window.rows_per_block = image.rows_per_block;
    window.first_mapped_row = window.last_mapped_row = -1;
}

} // namespace kzb
