// An image as it is, and through views of every kind.
#pragma once

#include "fixtures/host.h"

namespace kzb::test {

struct Shape {
    std::string name;
    Image image;
};

// The image itself, its channels, its colours without alpha, rectangles of it, and views of these: of a rectangle of
// the colours without alpha all channels lie at the same byte.
inline std::vector<Shape> shapes_of(const Image &image) {
    std::vector<Shape> shapes = {{"itself", image}};
    const auto add = [&](const std::string &name, const Value &view) {
        if (!view.is_nil()) shapes.push_back({name, Image(view)});
    };
    const Image clip(image.call("ClipImage", 2, 1, image.width() - 3, image.height() - 1));
    add("rectangle", clip);
    for (const char *view : {"RedChannel", "GreenChannel", "BlueChannel", "GrayChannel", "AlphaChannel"}) {
        add(view, image.call(view));
        add(std::string(view) + " of rectangle", clip.call(view));
    }
    if (const Object colours(image.call("RGBChannels")); colours) {
        add("RGBChannels", colours);
        add("rectangle of RGBChannels", colours.call("ClipImage", 1, 1, 3, 3));
        add("RGBChannels of rectangle", clip.call("RGBChannels"));
    }
    return shapes;
}

} // namespace kzb::test
