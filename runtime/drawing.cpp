#include "drawing.h"

#include "pixel_rows.h"

#include <pixman.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <vector>

namespace kzb {

namespace {

// pixman draws nothing, and says nothing, from images of 32,767 pixels and more: scaled drawing goes by tiles of at
// most kTargetTile pixels, for which at most kSourceTile are read.
constexpr int64_t kTargetTile = 1024;
constexpr int64_t kSourceTile = 2048;

// One direction of a drawing, cut to both worlds: target pixels first..last (exclusive) counted from the target
// rectangle's edge, and the readable source pixels from low to high (exclusive).
struct Axis {
    int64_t target_start, target_size, source_start, source_size;
    int64_t first, last, low, high;

    // Where the middle of a target pixel lies in the source.
    double source_position(int64_t target_pixel) const {
        return static_cast<double>(source_start) + (static_cast<double>(target_pixel) + 0.5) *
                                                       static_cast<double>(source_size) /
                                                       static_cast<double>(target_size);
    }
};

// The first target pixel whose middle lies at or beyond `distance` source pixels from the source rectangle's edge.
int64_t first_at(int64_t distance, int64_t target_size, int64_t source_size) {
    const int64_t product = distance * target_size;
    int64_t whole = product / source_size;
    int64_t rest = product % source_size;
    if (rest < 0) {
        rest += source_size;
        --whole;
    }
    return 2 * rest <= source_size ? whole : whole + 1;
}

Axis make_axis(int32_t target_start, int32_t target_size, kzb_word target_limit, int32_t source_start,
               int32_t source_size, kzb_word source_limit) {
    Axis axis{target_start, target_size, source_start, source_size, 0, 0, 0, 0};
    if (target_size < 1 || source_size < 1) return axis;
    axis.first = std::max<int64_t>({0, -axis.target_start, first_at(-axis.source_start, target_size, source_size)});
    axis.last = std::min<int64_t>(
        {target_size, target_limit - axis.target_start,
         first_at(std::min<int64_t>(source_size, source_limit - axis.source_start), target_size, source_size)});
    axis.low = std::max<int64_t>(0, axis.source_start);
    axis.high = std::min<int64_t>(source_limit, axis.source_start + axis.source_size);
    return axis;
}

// Exchange pixels, one row after the other.
struct Tile {
    int64_t width, height;
    std::vector<uint8_t> pixels;

    Tile(int64_t tile_width, int64_t tile_height)
        : width(tile_width), height(tile_height), pixels(static_cast<size_t>(tile_width * tile_height) * 4) {}
    uint8_t *row(int64_t y) { return pixels.data() + static_cast<size_t>(y * width) * 4; }
};

// Draws `count` exchange pixels over those at (x, y), as far as the levels say.
void blend_row(GWorld &to, int64_t x, int64_t y, size_t count, uint8_t *exchange, const uint8_t *levels,
               uint8_t *beneath) {
    read_pixels(to, x, y, count, beneath);
    for (size_t i = 0; i < count * 4; ++i) {
        const unsigned level = levels[i / 4];
        exchange[i] = static_cast<uint8_t>((exchange[i] * level + beneath[i] * (255 - level) + 127) / 255);
    }
    write_pixels(to, x, y, count, exchange);
}

void copy_rows(GWorld &to, const GWorld &from, const GWorld *mask, const Axis &across, const Axis &down) {
    const auto count = static_cast<size_t>(across.last - across.first);
    std::vector<uint8_t> exchange(count * 4), beneath(mask ? count * 4 : 0), levels(mask ? count : 0);
    const int64_t source_x = across.source_start + across.first, target_x = across.target_start + across.first;
    // Downwards or upwards, so that a world drawn into itself is read before it is overwritten.
    const bool upwards = down.target_start > down.source_start;
    for (int64_t step = down.first; step < down.last; ++step) {
        const int64_t row = upwards ? down.last - 1 - (step - down.first) : step;
        const int64_t source_y = down.source_start + row, target_y = down.target_start + row;
        read_pixels(from, source_x, source_y, count, exchange.data());
        if (mask) {
            read_mask(*mask, source_x, source_y, count, levels.data());
            blend_row(to, target_x, target_y, count, exchange.data(), levels.data(), beneath.data());
        } else {
            write_pixels(to, target_x, target_y, count, exchange.data());
        }
    }
}

struct ReleaseImage {
    void operator()(pixman_image_t *image) const { pixman_image_unref(image); }
};
using ImageOwner = std::unique_ptr<pixman_image_t, ReleaseImage>;

// Interpolation treats the four bytes of a pixel alike, so that exchange pixels pass as the format for which pixman has
// fast paths, in either byte order.
ImageOwner make_image(const uint8_t *pixels, int64_t width, int64_t height, int64_t row_bytes) {
    auto *bits = const_cast<uint32_t *>(reinterpret_cast<const uint32_t *>(pixels));
    ImageOwner image(pixman_image_create_bits(PIXMAN_a8r8g8b8, static_cast<int>(width), static_cast<int>(height), bits,
                                              static_cast<int>(row_bytes)));
    if (!image) throw std::bad_alloc();
    return image;
}

// The span of one tile: target pixels first..last, and the source pixels low..high that they are made from.
struct Span {
    int64_t first, last, low, high;
    pixman_fixed_t scale, offset;
};

Span make_span(const Axis &axis, int64_t first) {
    const double ratio = static_cast<double>(axis.source_size) / static_cast<double>(axis.target_size);
    const auto fitting = static_cast<int64_t>((kSourceTile - 4) / ratio);
    Span span{};
    span.first = first;
    span.last = std::min(axis.last, first + std::clamp<int64_t>(fitting, 1, kTargetTile));
    const double start = axis.source_position(span.first), end = axis.source_position(span.last - 1);
    span.low = std::clamp<int64_t>(static_cast<int64_t>(std::floor(start)) - 1, axis.low, axis.high - 1);
    span.high = std::clamp<int64_t>(static_cast<int64_t>(std::floor(end)) + 2, axis.low + 1, axis.high);
    const double scale = span.last - span.first == 1 ? 1.0 : ratio;
    span.scale = std::max<pixman_fixed_t>(1, static_cast<pixman_fixed_t>(std::lround(scale * 65536)));
    const double first_edge = start - static_cast<double>(span.low) - 0.5 * scale;
    span.offset = static_cast<pixman_fixed_t>(std::lround(first_edge * 65536));
    return span;
}

// Where the pixels of a tile's source lie: in the world itself or in a tile that was read from it.
struct SourcePixels {
    const uint8_t *first;
    int64_t row_bytes;
};

SourcePixels source_pixels(const GWorld &from, const Span &across, const Span &down, Tile &read) {
    const bool inside = across.high <= from.width && down.high <= from.height;
    const uint8_t *first = world_row(from, inside ? down.low : 0) + (inside ? across.low * 4 : 0);
    if (inside && from.depth == 32 && reinterpret_cast<uintptr_t>(first) % 4 == 0 && from.row_bytes % 4 == 0) {
        return {first, from.row_bytes};
    }
    read = Tile(across.high - across.low, down.high - down.low);
    if (!inside) std::fill(read.pixels.begin(), read.pixels.end(), uint8_t{255});
    const int64_t width = std::min<int64_t>(across.high, from.width) - across.low;
    for (int64_t y = down.low; width > 0 && y < down.high && y < from.height; ++y) {
        read_pixels(from, across.low, y, static_cast<size_t>(width), read.row(y - down.low));
    }
    return {read.pixels.data(), read.width * 4};
}

// One tile's pixels, scaled; white beyond the world's right and bottom edges.
void scale_tile(const GWorld &from, const Span &across, const Span &down, Tile &scaled) {
    Tile read(0, 0);
    const SourcePixels pixels = source_pixels(from, across, down, read);
    const ImageOwner source =
        make_image(pixels.first, across.high - across.low, down.high - down.low, pixels.row_bytes);
    const ImageOwner target = make_image(scaled.pixels.data(), scaled.width, scaled.height, scaled.width * 4);
    const pixman_transform_t transform = {
        {{across.scale, 0, across.offset}, {0, down.scale, down.offset}, {0, 0, pixman_fixed_1}}};
    if (!pixman_image_set_transform(source.get(), &transform) ||
        !pixman_image_set_filter(source.get(), PIXMAN_FILTER_BILINEAR, nullptr, 0)) {
        throw std::bad_alloc();
    }
    pixman_image_set_repeat(source.get(), PIXMAN_REPEAT_PAD);
    pixman_image_composite32(PIXMAN_OP_SRC, source.get(), nullptr, target.get(), 0, 0, 0, 0, 0, 0,
                             static_cast<int32_t>(scaled.width), static_cast<int32_t>(scaled.height));
}

void draw_tile(GWorld &to, const GWorld &from, const GWorld *mask, int64_t target_x, int64_t target_y,
               const Span &across, const Span &down) {
    Tile scaled(across.last - across.first, down.last - down.first);
    const auto count = static_cast<size_t>(scaled.width);
    scale_tile(from, across, down, scaled);
    if (!mask) {
        for (int64_t y = 0; y < scaled.height; ++y) write_pixels(to, target_x, target_y + y, count, scaled.row(y));
        return;
    }
    Tile scaled_mask(scaled.width, scaled.height);
    scale_tile(*mask, across, down, scaled_mask);
    std::vector<uint8_t> levels(count), beneath(count * 4);
    for (int64_t y = 0; y < scaled.height; ++y) {
        grays_from_exchange(scaled_mask.row(y), count, levels.data());
        blend_row(to, target_x, target_y + y, count, scaled.row(y), levels.data(), beneath.data());
    }
}

// A copy of the pixels that a drawing reads, for a world that is drawn into itself.
WorldOwner copy_of(const GWorld &world) {
    WorldOwner copy = make_world(static_cast<int32_t>(world.width), static_cast<int32_t>(world.height),
                                 static_cast<int32_t>(world.depth));
    if (!copy) throw std::bad_alloc();
    const auto bytes = static_cast<size_t>(world.width) * pixel_bytes(world.depth);
    for (kzb_word y = 0; y < world.height; ++y) std::memcpy(world_row(*copy, y), world_row(world, y), bytes);
    return copy;
}

} // namespace

void draw_world(GWorld &to, Rectangle target, const GWorld &from, const GWorld *mask, Rectangle source) {
    const Axis across = make_axis(target.x, target.width, to.width, source.x, source.width, from.width);
    const Axis down = make_axis(target.y, target.height, to.height, source.y, source.height, from.height);
    if (across.first >= across.last || down.first >= down.last) return;
    const bool same_size = target.width == source.width && target.height == source.height;
    WorldOwner copy, mask_copy;
    if (!same_size && from.base_address == to.base_address) copy = copy_of(from);
    if (!same_size && mask && mask->base_address == to.base_address) mask_copy = copy_of(*mask);
    const GWorld &from_world = copy ? *copy : from;
    const GWorld *mask_world = mask_copy ? mask_copy.get() : mask;
    if (same_size) {
        copy_rows(to, from_world, mask_world, across, down);
        return;
    }
    for (int64_t y = down.first; y < down.last;) {
        const Span down_span = make_span(down, y);
        for (int64_t x = across.first; x < across.last;) {
            const Span across_span = make_span(across, x);
            draw_tile(to, from_world, mask_world, across.target_start + x, down.target_start + y, across_span,
                      down_span);
            x = across_span.last;
        }
        y = down_span.last;
    }
}

} // namespace kzb
