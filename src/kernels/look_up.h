// Bytes through a table.
#pragma once

#include "kernels/row_function.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// target[i * target_step] = table[source[i * source_step]] for i below count. Target and source may be the same bytes.
extern const RowFunction<void(uint8_t *target, size_t target_step, const uint8_t *source, size_t source_step,
                              const uint8_t *table, size_t count)>
    look_up;

// The table of each byte of a pixel of 1 to 4 bytes; nil for bytes that stay as they are.
class PixelTables {
public:
    PixelTables(size_t step, const std::array<const uint8_t *, 4> &tables);

    size_t step() const { return step_; }
    const uint8_t *operator[](size_t byte) const { return tables_[byte]; }

    // The tables without repetitions, and for bytes of three registers of 32 or 64, a whole number of pixels, whether
    // they go through each: 0xff or 0.
    size_t count() const { return count_; }
    const uint8_t *table(size_t index) const { return distinct_[index]; }
    const uint8_t *lanes(size_t index) const { return lanes_[index].data(); }

private:
    size_t step_;
    std::array<const uint8_t *, 4> tables_;
    std::array<const uint8_t *, 4> distinct_ = {};
    size_t count_ = 0;
    std::array<std::array<uint8_t, size_t{3} * 64>, 4> lanes_ = {};
};

// The same for `count` pixels side by side. Target and source are the same bytes or have none in common. Of each pixel
// a byte that lies before or after those with tables need not exist.
extern const RowFunction<void(uint8_t *target, const uint8_t *source, const PixelTables &tables, size_t count)>
    look_up_pixels;

} // namespace kzb::kernels
