// Both passes of filtered scaling in whole numbers, for lists of equally weighted pixels: a box filter that shrinks to
// a half, a quarter or an eighth, or enlarges.
#pragma once

#include "geometry/contributions.h"
#include "geometry/lane_writer.h"
#include "kernels/resample_whole.h"

namespace kzb {

class WholePasses {
public:
    // Whether the sums of these lists are whole numbers of 16 bits; the images must be such that passes can be joined.
    static bool fit(const CarriedChannels &carried, const Contributions &columns, const Contributions &rows,
                    int32_t width, int32_t height);

    // The lists are those of `width` columns and `height` rows. `temp` is nil when no program can see it.
    WholePasses(ImageRecord &source, ImageRecord *temp, ImageRecord &destination, const CarriedChannels &carried,
                const Contributions &columns, const Contributions &rows, int32_t width, int32_t height);

    // False when there is no memory to work in.
    explicit operator bool() const { return entries_ && places_ && ring_ && bytes_ && list_rows_ && floats_; }

    void run();

private:
    // Divides the columns into entries, and writes these down when there is memory for them. Gives their number.
    int64_t plan(bool write);
    void make_output(int32_t y);

    uint16_t *ring_row(int64_t row) const { return ring_.get() + static_cast<size_t>(row % ring_rows_) * row_size_; }

    ImageRecord &source_, *temp_;
    CarriedChannels carried_;
    const kernels::ContributionList *column_lists_, *row_lists_;
    int32_t width_, height_;
    size_t channels_;
    LaneWriter writer_;
    unsigned picks_bits_ = 0; // of the pixels that make up an output column at most
    int64_t ring_rows_ = 0;
    size_t row_size_ = 0; // sums
    int64_t entry_count_ = 0;
    Buffer<kernels::Picks> entries_;
    Buffer<kernels::PickPlaces> places_;
    Buffer<uint16_t> ring_;
    Buffer<uint8_t> bytes_;
    Buffer<const uint16_t *> list_rows_;
    Buffer<double> floats_; // a row for the intermediate image
};

} // namespace kzb
