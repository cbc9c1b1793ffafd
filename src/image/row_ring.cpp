#include "image/row_ring.h"

#include "image/storage.h"

#include <cstring>

namespace kzb {

namespace {

// A file-backed image may be larger than memory.
constexpr int64_t most_held_bytes = int64_t{1} << 30;

} // namespace

RowRoute row_route(const ImageRecord &source, const ImageRecord &destination, const Channels &channels) {
    const bool may_run = rows_may_run(source, destination, channels, source.Width, source.Height);
    const bool apart = sharing_of(source, destination, channels) == Sharing::none;
    const bool by_rows = apart || (may_run && rows_lie_apart(source, channels, source.Width));
    return {by_rows, !apart, !may_run, may_run ? in_byte_order(channels, source) : channels};
}

RowRing::RowRing(ImageRecord &image, const Channels &channels, int64_t rows)
    : window_(image), source_(window_.image(), channels, image.Width, false), height_(image.Height),
      rows_(std::min<int64_t>(rows, image.Height)) {
    const auto bytes = static_cast<int64_t>(source_.bytes());
    if (rows_ > most_held_bytes / (bytes + static_cast<int64_t>(sizeof(uint8_t *)))) return;
    held_ = Buffer<uint8_t>(rows_ * bytes);
    addresses_ = Buffer<const uint8_t *>(rows_);
}

bool RowRing::read_through(int64_t y) {
    for (; next_ <= y && next_ < height_; ++next_) {
        const uint8_t *packed = source_.read(next_);
        if (packed == nullptr) return false;
        std::memcpy(row(next_), packed, source_.bytes());
    }
    return true;
}

const uint8_t *const *RowRing::rows(int32_t start, int32_t end) const {
    for (int32_t y = start; y < end; ++y) addresses_[static_cast<size_t>(y - start)] = row(y);
    return addresses_.get();
}

} // namespace kzb
