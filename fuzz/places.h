// The same pixels in every kind of storage, surrounded by bytes that are nobody's.
#pragma once

#include "host_calls.h"

#include <optional>

namespace kzb::fuzz {

using test::Bytes;

enum class Place { memory, block, file, picture, memory_view, block_view, file_view, beside, beside_in_file };
inline constexpr Place every_place[] = {Place::memory,    Place::block,       Place::file,
                                        Place::picture,   Place::memory_view, Place::block_view,
                                        Place::file_view, Place::beside,      Place::beside_in_file};
inline constexpr const char *place_names[] = {"memory",         "block",        "file",
                                              "picture",        "view",         "view of a block",
                                              "view of a file", "side by side", "side by side in a file"};

struct Kind {
    int32_t width, height, format;
};

// An image and the column of its rows at which its pixels begin.
struct Placed {
    Value image;
    Kind kind = {};
    int32_t first_column = 0;
    bool surrounded = true; // nobody else's pixels are in its rows

    int32_t pixel_size() const { return fuzz::pixel_size(kind.format); }
};

// An image of its own, in `file` where it is file-backed; none where it does not come in that storage (host pictures
// are RGB, ARGB or XRGB).
std::optional<Value> whole(Place place, const Kind &kind, size_t file);
// The same for all places but those beside another image.
std::optional<Placed> placed(Place place, const Kind &kind, size_t file);
Placed view_of(const Value &parent, const Kind &kind, int32_t x, int32_t y);

// Pixels at random from the seed, with some equal neighbours and some extremes.
void paint(const Placed &placed, uint32_t seed);

// Appends the image's pixels, whole. False when a byte around them in their rows is not as it was.
bool take_pixels(const Placed &placed, Bytes &pixels);

} // namespace kzb::fuzz
