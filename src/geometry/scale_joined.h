// Both passes of filtered scaling at once: strip by strip of the output, a few rows between them. For images in memory
// that share no bytes, whose program sees nothing before the end.
#pragma once

#include "geometry/carried_channels.h"
#include "geometry/contributions.h"
#include "geometry/lane_writer.h"
#include "image/record.h"
#include "kernels/resample_groups.h"

namespace kzb {

// The lanes in the order of the destination's bytes where nobody sees the intermediate image, else as they are.
CarriedChannels in_best_order(const CarriedChannels &carried, const ImageRecord *temp, const ImageRecord &destination);

class JoinedPasses {
public:
    // Whether the two passes give the same when they are joined. `temp` is nil when no program can see it.
    static bool fit(const ImageRecord &source, const ImageRecord *temp, const ImageRecord &destination,
                    const CarriedChannels &carried, const Contributions &columns, const Contributions &rows,
                    int32_t width, int32_t height);

    // The lists are those of `width` columns and `height` rows.
    JoinedPasses(ImageRecord &source, ImageRecord *temp, ImageRecord &destination, const CarriedChannels &carried,
                 const Contributions &columns, const Contributions &rows, int32_t width, int32_t height);

    // False when there is no memory to work in.
    explicit operator bool() const { return ring_ && columns_ && means_ && bytes_ && list_rows_ && blocks_; }

    void run();

private:
    // Output columns that are made together, and the input pixels that they are made from.
    struct Block {
        int32_t start, end;
        int32_t first_input, inputs_end;
    };
    // Divides a strip into blocks.
    void plan_blocks(int32_t start, int32_t end);
    // Makes the intermediate rows from `row` on, as many as a column's lanes hold, for a strip's output columns.
    void make_rows(int32_t row, int32_t start, int32_t end);
    // Has the columns of input pixels first to before end of these rows ready.
    void ready_columns(const kernels::RowGroup *groups, int32_t first, int32_t end);
    // Makes the strip's part of some output rows.
    void make_outputs(int32_t first, int32_t rows, int32_t start, int32_t end);
    // Makes pixels x to before x + width of an output row from its list's rows of the strip.
    void make_output(int32_t y, const double *const *rows, int32_t start, int32_t x, int32_t width);

    kernels::RowGroup group_at(int64_t row) const;
    double *ring_row(int64_t row) const { return ring_.get() + static_cast<size_t>(row % ring_rows_) * row_size_; }

    // Work memory that starts with a cache line.
    template <class T> class Lines {
    public:
        Lines() = default;
        explicit Lines(int64_t count) : held_(count + line / static_cast<int64_t>(sizeof(T))) {}
        explicit operator bool() const { return static_cast<bool>(held_); }
        T *get() const {
            const uintptr_t start = reinterpret_cast<uintptr_t>(held_.get());
            return held_.get() + (line - start % line) % line / sizeof(T);
        }

    private:
        static constexpr int64_t line = 64;
        Buffer<T> held_;
    };

    ImageRecord &source_, *temp_;
    CarriedChannels carried_;
    const kernels::ContributionList *column_lists_, *row_lists_;
    int32_t width_, height_;
    size_t channels_, lanes_;
    LaneWriter writer_;
    int32_t rows_at_once_;     // that the lanes of a column hold
    int32_t rows_between_ = 0; // that are made before the output rows that they complete
    int64_t ring_rows_ = 0;
    size_t row_size_ = 0; // doubles
    int32_t strip_ = 0;   // output columns
    int32_t tile_ = 0;    // of these
    int32_t held_columns_ = 0;
    int32_t longest_row_list_ = 0;
    int32_t held_first_ = 0, held_end_ = 0; // input pixels whose columns are there
    Lines<double> ring_, columns_;
    Lines<float> means_;
    Buffer<uint8_t> bytes_;
    Buffer<const double *> list_rows_;
    Buffer<Block> blocks_;
    int32_t block_count_ = 0;
};

} // namespace kzb
