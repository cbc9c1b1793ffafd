// Fills, copies, mirrors and turns.

#include "case.h"
#include "geometry/plain_mirror.h"
#include "geometry/plain_rotation.h"
#include "geometry/plain_turns.h"

namespace kzb::bench {

using namespace test;

namespace {

constexpr Targets no_slower = {1.0, 1.0};
constexpr uint8_t fill_red = 1, fill_green = 2, fill_blue = 3, fill_value = 77;

// Every pixel of an image by itself.
template <class Change> Reference each_pixel(Change change) {
    return [=](const PlainImage &source, const PlainImage &image) {
        for (int32_t y = 0; y < image.height; ++y)
            for (int32_t x = 0; x < image.width; ++x) change(source, image, x, y);
    };
}

void copy_pixel(const PlainImage &source, const PlainImage &image, int32_t x, int32_t y) {
    if (image.is_gray && source.is_rgb)
        image.set(x, y, Channel::gray,
                  static_cast<uint8_t>((77 * source.get(x, y, Channel::red) + 151 * source.get(x, y, Channel::green) +
                                        28 * source.get(x, y, Channel::blue)) >>
                                       8));
    else
        for (Channel channel : image.channels()) image.set(x, y, channel, source.get(x, y, channel));
}

// Of layouts with red, green, blue and alpha, red and blue alone.
void invert_pixel(const PlainImage &, const PlainImage &image, int32_t x, int32_t y) {
    auto channels = image.channels();
    if (image.is_rgb && image.has_alpha) channels = {Channel::red, Channel::blue};
    for (Channel channel : channels) image.set(x, y, channel, static_cast<uint8_t>(255 - image.get(x, y, channel)));
}

// All rows, padding included.
Reference fill_rows(uint8_t value) {
    return [=](const PlainImage &, const PlainImage &image) {
        std::fill(image.storage->begin(), image.storage->end(), value);
    };
}

PlainImage with_bytes_swapped(const PlainImage &source) {
    const PlainImage result = PlainImage::in_memory(source.width, source.height,
                                                    source.is_gray     ? 11
                                                    : source.has_alpha ? 7
                                                                       : 6);
    each_pixel(copy_pixel)(source, result);
    return result;
}

// A call without a destination on the image itself.
Case in_place(const char *name, std::function<Value(const Image &)> call, Reference reference,
              const Parameters &parameters = {}, bool colour_only = false) {
    return {.name = name,
            .form = Form::in_place,
            .run = [call = std::move(call)](const Pictures &p) { return call(Image(p.dest)); },
            .reference = std::move(reference),
            .parameters = parameters,
            .targets = no_slower,
            .colour_only = colour_only};
}

Case copy(const char *name, DestinationLayout layout) {
    return {.name = name,
            .form = Form::drawn,
            .run = [](const Pictures &p) { return Image(p.dest).call("CopyPixels", p.source); },
            .reference = each_pixel(copy_pixel),
            .targets = no_slower,
            .layout = layout,
            .colour_only = layout != DestinationLayout::same};
}

Case turn(const char *name, Reference reference, bool quarter) {
    return {.name = name,
            .run = [name](const Pictures &p) { return p.source.call(name, p.dest); },
            .reference = std::move(reference),
            .targets = quarter ? Targets{0.8, 0.8} : no_slower,
            .turned = quarter};
}

Reference by_rows(Target target) {
    return [=](const PlainImage &source, const PlainImage &destination) { turn_by_rows(target, source, destination); };
}

} // namespace

void add_geometry_cases(std::vector<Case> &cases) {
    cases.push_back(in_place(
        "Invert", [](const Image &image) { return image.call("Invert"); }, each_pixel(invert_pixel)));
    // Of pixels that consist of their channels alone it fills whole rows.
    cases.push_back(in_place("FillRect", [](const Image &image) { return image.call("FillRect", fill_value); },
                             fill_rows(fill_value), {.colour = {fill_value, fill_value, fill_value, fill_value}}));
    cases.push_back(in_place(
        "FillRectRGB", [](const Image &image) { return image.call("FillRectRGB", fill_red, fill_green, fill_blue); },
        each_pixel([](const PlainImage &, const PlainImage &image, int32_t x, int32_t y) {
            image.set(x, y, Channel::red, fill_red);
            image.set(x, y, Channel::green, fill_green);
            image.set(x, y, Channel::blue, fill_blue);
        }),
        {.colour = {fill_red, fill_green, fill_blue, 255}}, true));
    cases.push_back(in_place(
        "ClearRect", [](const Image &image) { return image.call("ClearRect"); }, fill_rows(0)));

    cases.push_back(copy("CopyPixels", DestinationLayout::same));
    cases.push_back(copy("CopyPixels blue first", DestinationLayout::swapped));
    cases.push_back(copy("CopyPixels to gray", DestinationLayout::gray));
    cases.push_back(
        {.name = "DataStringInFormat blue first",
         .form = Form::made,
         .run = [](const Pictures &p) { return p.source.call("DataStringInFormat", p.source.format() == 2 ? 7 : 6); },
         .made = with_bytes_swapped,
         .targets = no_slower,
         .layout = DestinationLayout::swapped,
         .colour_only = true});
    cases.push_back({.name = "Clone",
                     .form = Form::made,
                     .run = [](const Pictures &p) { return p.source.call("Clone"); },
                     .made =
                         [](const PlainImage &source) {
                             const auto result = PlainImage::in_memory(source.width, source.height, source.format);
                             each_pixel(copy_pixel)(source, result);
                             return result;
                         },
                     .targets = no_slower});

    const auto mirror = [](void (*meaning)(const PlainImage &)) {
        return [=](const PlainImage &, const PlainImage &image) { meaning(image); };
    };
    cases.push_back(in_place(
        "HMirror", [](const Image &i) { return i.call("HMirror"); }, mirror(mirror_horizontally)));
    cases.push_back(in_place(
        "VMirror", [](const Image &i) { return i.call("VMirror"); }, mirror(mirror_vertically)));
    cases.push_back(in_place(
        "Rotate180 in place", [](const Image &i) { return i.call("Rotate180"); }, mirror(turn_around)));
    cases.push_back(turn("Rotate180", turn_half, false));
    cases.push_back(turn("Rotate90", by_rows(counter_clockwise), true));
    cases.push_back(turn("Rotate270", by_rows(clockwise), true));
    cases.push_back(turn("Rotate90slow", by_rows(counter_clockwise), true));
    cases.push_back(turn("Rotate270slow", by_rows(clockwise), true));
    cases.push_back({.name = "Rotate 17",
                     .form = Form::made,
                     .run = [](const Pictures &p) { return p.source.call("Rotate", 17.0, 10, 20, 30, 255, 40); },
                     .made =
                         [](const PlainImage &source) {
                             return rotated(source, 17.0, {10, 20, 30, 40, 255});
                         },
                     .held_whole = false,
                     .parameters = {.angle = 17.0, .colour = {10, 20, 30, 255}},
                     .targets = {0.6, 0.6}});
}

} // namespace kzb::bench
