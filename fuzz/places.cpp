#include "places.h"

#include "module.h"
#include "world.h"

#include <algorithm>

namespace kzb::fuzz {

namespace {

// Where a view lies in its parent, and by how much that is larger.
constexpr int32_t view_x = 2, view_y = 3, more_columns = 3, more_rows = 4;
constexpr uint8_t surroundings = 0xA5;

Value construct(const std::vector<Value> &arguments) {
    const Value image = new_image(arguments);
    if (!shape_of(image).valid) found("an image of the fuzzer is not Valid");
    return image;
}

} // namespace

std::optional<Value> whole(Place place, const Kind &kind, size_t file) {
    const auto &[width, height, format] = kind;
    switch (place) {
    case Place::block: {
        const int32_t row_size = width * pixel_size(format) + 5;
        return construct(
            {test::block_of(Bytes(static_cast<size_t>(row_size * height))), width, height, format, row_size});
    }
    case Place::file:
        return construct({width, height, format, 0, test::folder_item(World::file_path(file))});
    case Place::picture:
        if (format != 1 && format != 4 && format != 5) return std::nullopt;
        return construct(
            {Value::adopt(reinterpret_cast<KZBObject>(kzb_picture_new(width, height, format == 1 ? 24 : 32))),
             format == 4});
    default:
        return construct({width, height, format});
    }
}

Placed view_of(const Value &parent, const Kind &kind, int32_t x, int32_t y) {
    return {call(parent, "ClipImage", {x, y, kind.width, kind.height}), kind, x};
}

std::optional<Placed> placed(Place place, const Kind &kind, size_t file) {
    const Kind larger = {kind.width + more_columns, kind.height + more_rows, kind.format};
    switch (place) {
    case Place::memory_view:
        return view_of(*whole(Place::memory, larger, file), kind, view_x, view_y);
    case Place::block_view:
        return view_of(*whole(Place::block, larger, file), kind, view_x, view_y);
    case Place::file_view:
        return view_of(*whole(Place::file, larger, file), kind, view_x, view_y);
    default:
        break;
    }
    const auto image = whole(place, kind, file);
    if (!image) return std::nullopt;
    return Placed{*image, kind};
}

void paint(const Placed &placed, uint32_t seed) {
    uint32_t state = seed;
    const auto start = static_cast<size_t>(placed.first_column * placed.pixel_size());
    const auto count = static_cast<size_t>(placed.kind.width * placed.pixel_size());
    for (int32_t y = 0; y < placed.kind.height; ++y) {
        Bytes row = call(placed.image, "Row", {y}).bytes();
        if (placed.surrounded) std::fill(row.begin(), row.end(), surroundings);
        for (size_t i = 0; i < count; ++i) {
            state = state * 1664525 + 1013904223;
            if (state >> 28 > 2)
                row[start + i] = static_cast<uint8_t>(state >> 20);
            else
                row[start + i] = state >> 28 == 0 ? 0 : 255;
        }
        assign(placed.image, "Row", {y}, test::block_of(row));
    }
}

bool take_pixels(const Placed &placed, Bytes &pixels) {
    bool untouched = true;
    const int32_t start = placed.first_column * placed.pixel_size();
    const int32_t end = start + placed.kind.width * placed.pixel_size();
    for (int32_t y = 0; y < placed.kind.height; ++y) {
        const Bytes row = call(placed.image, "Row", {y}).bytes();
        for (int32_t i = 0; i < static_cast<int32_t>(row.size()); ++i)
            if ((i < start || i >= end) && row[static_cast<size_t>(i)] != surroundings) untouched = false;
        pixels.insert(pixels.end(), row.begin() + start, row.begin() + end);
    }
    return untouched || !placed.surrounded;
}

} // namespace kzb::fuzz
