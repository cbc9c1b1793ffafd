// Runs of one to four bytes moved from rows to columns.
#pragma once

#include "kernels/row_function.h"

#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

// A grid of runs: where its first run lies, and the bytes from row to row and from column to column, which may be
// negative.
template <class Byte> struct Grid {
    Byte *first;
    ptrdiff_t row_step;
    ptrdiff_t column_step;
};

// target(row, column) = source(column, row) for the target's rows and columns, `bytes` bytes each. The two share no
// byte, and no two runs of the target do.
extern const RowFunction<void(const Grid<uint8_t> &target, const Grid<const uint8_t> &source, size_t rows,
                              size_t columns, size_t bytes)>
    move_transposed;

} // namespace kzb::kernels
