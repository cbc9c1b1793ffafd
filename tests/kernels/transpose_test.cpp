#include "kernels/each_level.h"
#include "kernels/guarded_bytes.h"
#include "kernels/transpose.h"

namespace kzb::kernels {
namespace {

using Guard = GuardedBytes::Guard;

// A rectangle of runs in a block of bytes that ends with its last run; the corner where the grid starts.
struct Placed {
    size_t rows, columns, step, bytes, row_size;
    bool up, left;

    size_t size() const { return (rows - 1) * row_size + (columns - 1) * step + bytes; }
    size_t at(size_t row, size_t column) const {
        return (up ? rows - 1 - row : row) * row_size + (left ? columns - 1 - column : column) * step;
    }
    template <class Byte> Grid<Byte> grid(Byte *block) const {
        const auto down = static_cast<ptrdiff_t>(row_size), right = static_cast<ptrdiff_t>(step);
        return {block + at(0, 0), up ? -down : down, left ? -right : right};
    }
};

void check(const Placed &to, const Placed &from) {
    const auto source = random_bytes(from.size(), 1);
    const auto before = random_bytes(to.size(), 2);
    auto expected = before;
    for (size_t row = 0; row < to.rows; ++row)
        for (size_t column = 0; column < to.columns; ++column)
            std::memcpy(&expected[to.at(row, column)], &source[from.at(column, row)], to.bytes);
    for_each_level([&](Level level) {
        for (Guard guard : {Guard::before, Guard::after}) {
            GuardedBytes target(before, guard), origin(source, guard);
            move_transposed.at(level)(to.grid(target.data()), from.grid(static_cast<const uint8_t *>(origin.data())),
                                      to.rows, to.columns, to.bytes);
            ASSERT_EQ(target.bytes(), expected)
                << to.bytes << " of " << from.step << " to " << to.step << " bytes, " << to.rows << " x " << to.columns;
        }
    });
}

TEST(MoveTransposed, TurnsRunsAtEveryLevel) {
    constexpr struct {
        size_t rows, columns;
    } sizes[] = {{1, 1}, {8, 8}, {16, 16}, {15, 17}, {17, 16}, {32, 9}, {9, 33}};
    for (size_t bytes = 1; bytes <= 4; ++bytes)
        for (size_t to_step = bytes; to_step <= 4; ++to_step)
            for (size_t from_step = bytes; from_step <= 4; ++from_step)
                for (const auto &[rows, columns] : sizes)
                    for (int corner = 0; corner < 4; ++corner)
                        check({rows, columns, to_step, bytes, columns * to_step + 5, false, corner % 2 == 1},
                              {columns, rows, from_step, bytes, rows * from_step + 3, false, corner / 2 == 1});
}

TEST(MoveTransposed, TurnsRunsFarApart) {
    for (size_t bytes = 1; bytes <= 4; ++bytes)
        for (auto [to_step, from_step] : {std::pair<size_t, size_t>(4, 5), {5, 4}, {1, 9}, {9, 1}, {16, 16}})
            if (bytes <= to_step && bytes <= from_step)
                check({17, 18, to_step, bytes, 18 * to_step + 5, false, false},
                      {18, 17, from_step, bytes, 17 * from_step + 3, false, true});
}

} // namespace
} // namespace kzb::kernels
