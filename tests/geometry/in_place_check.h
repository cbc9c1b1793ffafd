// Holds operations on a rectangle of an image, in place, against what they mean.
#pragma once

#include "fixtures/plain_rectangle.h"
#include "fixtures/storages.h"
#include "geometry/shapes.h"

#include <gtest/gtest.h>

#include <functional>

namespace kzb::test {

// What an operation does to a rectangle that is not cut yet. The image is asked for what the model lacks.
using Meaning = std::function<void(const Image &image, const PlainImage &plain, PlainRectangle r)>;
using Call = std::function<void(const Image &image, PlainRectangle r)>;

inline void expect_meaning(const Image &image, const Call &call, const Meaning &meaning,
                           const std::vector<PlainRectangle> &all) {
    Snapshots snapshots;
    const PlainImage plain = snapshots.of(image);
    for (const PlainRectangle &r : all) {
        SCOPED_TRACE(std::to_string(r.x) + ", " + std::to_string(r.y) + ", " + std::to_string(r.w) + ", " +
                     std::to_string(r.h));
        call(image, r);
        meaning(image, plain, r);
        ASSERT_EQ(difference(image, plain), "");
    }
}

// Every layout in every storage, as it is and through views of every kind.
inline void check_in_place(const Call &call, const Meaning &meaning) {
    uint32_t seed = 1;
    std::vector<int32_t> codes = {14};
    for (const Layout &of : layouts()) codes.push_back(of.code);
    for (int32_t code : codes) {
        for (Storage storage : every_storage) {
            const auto image = make_image(storage, 7, 5, code, ++seed);
            if (!image) continue;
            SCOPED_TRACE(std::string(layout(code).name) + " in " + name_of(storage));
            for (const Shape &shape : shapes_of(*image)) {
                SCOPED_TRACE(shape.name);
                const bool thorough = storage == Storage::memory || storage == Storage::block;
                auto all = rectangles(shape.image.width(), shape.image.height());
                if (!thorough) all.resize(6);
                ASSERT_NO_FATAL_FAILURE(expect_meaning(shape.image, call, meaning, all));
            }
        }
        for (int32_t width : {1, 2, 3, 15, 16, 17, 31, 47, 48, 49, 70}) {
            SCOPED_TRACE(std::string(layout(code).name) + " " + std::to_string(width) + " wide");
            const Image image = *make_image(Storage::block, width, 2, code, ++seed);
            ASSERT_NO_FATAL_FAILURE(
                expect_meaning(image, call, meaning, {{0, 0, width, 2}, {width / 3, 1, width / 2 + 1, 1}}));
        }
    }
    for (int32_t code : codes) {
        SCOPED_TRACE(std::string(layout(code).name) + " without gaps between rows");
        const Image image = make_gapless_image(11, 6, code, ++seed);
        ASSERT_NO_FATAL_FAILURE(
            expect_meaning(image, call, meaning, {{0, 0, 11, 6}, {0, 2, 11, 3}, {0, 1, 10, 4}, {1, 0, 10, 6}}));
        const Image view(image.call("ClipImage", 0, 1, 11, 4));
        ASSERT_NO_FATAL_FAILURE(expect_meaning(view, call, meaning, {{0, 0, 11, 4}, {0, 2, 11, 2}}));
    }
    SCOPED_TRACE("a file of several blocks");
    expect_meaning(make_tall_image(9, 2, ++seed), call, meaning, {{2, 1, 4, tall_height}});
}

inline void set_bytes(const PlainImage &plain, int64_t y, int64_t byte, int64_t count, uint8_t value) {
    for (int64_t at = plain.position(y, byte); count > 0; --count, ++at)
        if (plain.inside(at)) (*plain.storage)[static_cast<size_t>(at)] = value;
}

template <class Visit> void visit_pixels(const PlainRectangle &r, Visit visit) {
    for (int32_t y = r.y; y < r.y + r.h; ++y)
        for (int32_t x = r.x; x < r.x + r.w; ++x) visit(x, y);
}

inline Bytes first_pixel(const Image &image) {
    Bytes row = image.row(0);
    row.resize(static_cast<size_t>(image.integer("PixelSize")));
    return row;
}

} // namespace kzb::test
