#include "geometry/quarter_turn.h"

#include "geometry/pieces.h"
#include "geometry/row_band.h"
#include "image/destination.h"
#include "kernels/moves.h"
#include "kernels/transpose.h"

namespace kzb {

namespace {

enum class Turn { counter_clockwise, clockwise };
enum class Order { rows, tiles };

// The edge of the squares in which pixels are turned, so that the lines of both sides are used up while they are in the
// nearest cache.
constexpr int64_t cached_edge(ptrdiff_t step) {
    return step == 1 || step == -1 ? 64 : 32;
}

// Moves single pixels, in the order of the calls.
class PixelMover {
public:
    PixelMover(ImageRecord &source, ImageRecord &destination, const Channels &channels)
        : source_(source), destination_(destination), count_(channels.size()), from_(offsets_of(source, channels)),
          to_(offsets_of(destination, channels)) {}

    void move(int64_t x, int64_t y, int64_t to_x, int64_t to_y) const {
        for (size_t i = 0; i < count_; ++i) {
            const uint8_t *read = channel_at(source_, x, y, from_[i]);
            if (read == nullptr) continue;
            const uint8_t value = *read;
            if (uint8_t *written = channel_at(destination_, to_x, to_y, to_[i])) *written = value;
        }
    }

private:
    ImageRecord &source_;
    ImageRecord &destination_;
    size_t count_;
    ChannelOffsets from_;
    ChannelOffsets to_;
};

// The edge of the tiles in which the source is walked: a whole image where it goes row by row.
int64_t walking_edge(const ImageRecord &source, const ImageRecord &destination, Order order) {
    const int64_t edge = int64_t{std::min(source.rows_per_block, destination.rows_per_block)} - 2;
    return order == Order::rows || edge < 1 ? std::max(source.Width, source.Height) : edge;
}

void turn_plainly(ImageRecord &source, ImageRecord &destination, const Channels &channels, Turn turn, Order order) {
    const PixelMover mover(source, destination, channels);
    const int64_t width = source.Width;
    const int64_t height = source.Height;
    const int64_t edge = walking_edge(source, destination, order);
    for (int64_t top = 0; top < height; top += edge) {
        for (int64_t left = 0; left < width; left += edge) {
            for (int64_t y = top; y < std::min(top + edge, height); ++y) {
                for (int64_t x = left; x < std::min(left + edge, width); ++x) {
                    if (turn == Turn::counter_clockwise)
                        mover.move(x, y, y, width - 1 - x);
                    else
                        mover.move(x, y, height - 1 - y, x);
                }
            }
        }
    }
}

// Turns a part of the destination that is `rows` × `columns` pixels; both grids start at the pixel's first byte.
void turn_grid(const kernels::Grid<uint8_t> &target, const kernels::Grid<const uint8_t> &source, const Pieces &pieces,
               int64_t rows, int64_t columns) {
    const auto at = [](auto grid, int64_t row, int64_t column, int32_t offset) {
        grid.first += row * grid.row_step + column * grid.column_step + offset;
        return grid;
    };
    const int64_t edge = cached_edge(target.column_step);
    for (int64_t row = 0; row < rows; row += edge) {
        for (int64_t column = 0; column < columns; column += edge) {
            const auto height = static_cast<size_t>(std::min(edge, rows - row));
            const auto width = static_cast<size_t>(std::min(edge, columns - column));
            for (size_t i = 0; i < pieces.count; ++i)
                kernels::move_transposed(at(target, row, column, pieces.to[i]), at(source, column, row, pieces.from[i]),
                                         height, width, pieces.bytes);
        }
    }
}

// Goes through the pairs of a block of the source and one of the destination, so that each pair is mapped once.
void turn_by_blocks(ImageRecord &source, ImageRecord &destination, const Channels &channels, Turn turn) {
    const Pieces pieces = pieces_of(source, destination, channels);
    const bool clockwise = turn == Turn::clockwise;
    const int32_t width = source.Width;
    const int32_t height = source.Height;
    const ptrdiff_t source_step = source.PixelSize;
    const ptrdiff_t target_step = destination.PixelSize;
    for (int32_t y = 0; y < height;) {
        const RowBand read = rows_from(source, y);
        if (read.first == nullptr) return;
        const int32_t column = clockwise ? height - 1 - y : y;
        for (int32_t row = 0; row < width;) {
            const RowBand written = rows_from(destination, row);
            if (written.first == nullptr) return;
            const int32_t x = clockwise ? row : width - 1 - row;
            const int32_t rows = std::min(written.count, width - row);
            turn_grid(
                {written.first + column * target_step, destination.RowSize, clockwise ? -target_step : target_step},
                {read.first + x * source_step, source.RowSize, clockwise ? source_step : -source_step}, pieces, rows,
                read.count);
            row += rows;
        }
        y += read.count;
    }
}

ImageObject quarter_turn(ImageObject image, ImageObject dest, Turn turn, Order order) {
    const ImageRecord &asked = *record_of(image);
    auto passage = open_passage(image, dest, asked.Height, asked.Width);
    if (!passage) return nullptr;
    ImageRecord &source = passage->source;
    ImageRecord &destination = passage->destination;
    const Channels channels = channels_of(source);
    if (any_order_serves(source, destination, channels, source.Height, source.Width))
        turn_by_blocks(source, destination, channels, turn);
    else
        turn_plainly(source, destination, channels, turn, order);
    return passage->result.release();
}

// From the right end of each row leftwards.
void half_turn_plainly(ImageRecord &source, ImageRecord &destination, const Channels &channels) {
    const PixelMover mover(source, destination, channels);
    const int64_t width = source.Width;
    const int64_t height = source.Height;
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x) mover.move(width - 1 - x, y, x, height - 1 - y);
}

void half_turn_by_rows(ImageRecord &source, ImageRecord &destination, const Channels &channels) {
    if (source.Width < 1) return;
    const Pieces pieces = pieces_of(source, destination, channels);
    const int64_t last_pixel = (int64_t{source.Width} - 1) * source.PixelSize;
    for (int32_t y = 0; y < source.Height; ++y) {
        const uint8_t *from = walked_row(source, y);
        uint8_t *to = walked_row(destination, source.Height - 1 - y);
        if (from == nullptr || to == nullptr) return;
        for (size_t i = 0; i < pieces.count; ++i)
            kernels::move_runs(to + pieces.to[i], destination.PixelSize, from + last_pixel + pieces.from[i],
                               -source.PixelSize, static_cast<size_t>(source.Width), pieces.bytes);
    }
}

} // namespace

ImageObject rotate_180(ImageObject image, ImageObject dest) {
    auto passage = open_passage(image, dest);
    if (!passage) return nullptr;
    ImageRecord &source = passage->source;
    ImageRecord &destination = passage->destination;
    const Channels channels = channels_of(source);
    if (any_order_serves(source, destination, channels, source.Width, source.Height))
        half_turn_by_rows(source, destination, channels);
    else
        half_turn_plainly(source, destination, channels);
    return passage->result.release();
}

ImageObject rotate_90_slow(ImageObject image, ImageObject dest) {
    return quarter_turn(image, dest, Turn::counter_clockwise, Order::rows);
}

ImageObject rotate_90(ImageObject image, ImageObject dest) {
    return quarter_turn(image, dest, Turn::counter_clockwise, Order::tiles);
}

ImageObject rotate_270_slow(ImageObject image, ImageObject dest) {
    return quarter_turn(image, dest, Turn::clockwise, Order::rows);
}

ImageObject rotate_270(ImageObject image, ImageObject dest) {
    return quarter_turn(image, dest, Turn::clockwise, Order::tiles);
}

} // namespace kzb
