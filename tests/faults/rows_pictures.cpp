// Host pictures: images on them, pictures made from images, pictures drawn into images.
#include "faults/rows.h"

namespace kzb::test {

namespace {

void add(Rows &rows, const std::string &declaration, const std::string &variant, FailsWith failure,
         std::function<Call()> make) {
    rows.push_back({Kind::method, declaration, variant, failure, Shortage::fails, std::move(make)});
}

void add_constructors(Rows &rows) {
    const auto add_constructor = [&](const char *variant, std::function<Call()> make) {
        add(rows, "Constructor(pic as picture, UseAlpha as boolean=false)", variant, FailsWith::invalid,
            std::move(make));
    };
    add_constructor("32 bits", [] { return Call{unconstructed(), {picture(32), true}}; });
    add_constructor("24 bits", [] { return Call{unconstructed(), {picture(24)}}; });
    add_constructor("16 bits", [] { return Call{unconstructed(), {picture(16)}}; });
    add_constructor("on its own picture", [] {
        const Image image = on_picture();
        return Call{image, {image.get("Target")}};
    });
}

struct Source {
    const char *variant;
    std::function<Image()> make;
};
const Source sources[] = {
    {"RGBA", [] { return in_memory(RGBA); }},
    {"GA in a file", [] { return in_file(GA); }},
    {"RGB", [] { return on_block(RGB); }},
    {"a view of a picture", [] { return view_of(on_picture(), 1, 1, 5, 3); }},
    {"the working layout", [] { return in_memory(Scaling); }},
};

void add_copies(Rows &rows) {
    for (const std::string name : {"CopyPictureWithMask", "CopyPicture", "CopyMask"}) {
        // A mask that cannot be made is left out.
        const Shortage shortage = name == "CopyPictureWithMask" ? Shortage::pixels : Shortage::fails;
        for (const Source &source : sources)
            rows.push_back({Kind::method, name + "(x as integer, y as integer, w as integer, h as integer) as picture",
                            source.variant, FailsWith::nil, shortage,
                            [make = source.make] { return Call{make(), {1, 1, 3, 9}}; }});
        for (const Source &source : sources)
            rows.push_back({Kind::method, name + " as picture", source.variant, FailsWith::nil, shortage,
                            [make = source.make] { return Call{make()}; }});
    }
}

const Source targets[] = {
    {"RGBA", [] { return in_memory(RGBA); }},
    {"gray in a file", [] { return in_file(GA); }},
    {"view", [] { return view_of(on_block(ARGB), 2, 1, 6, 4); }},
    {"byte of three", [] { return in_memory(TwoOf3); }},
};

void add_drawing(Rows &rows) {
    for (const std::string name : {"DrawPictureRedToGrayChannel", "DrawPictureGreenToGrayChannel",
                                   "DrawPictureBlueToGrayChannel", "DrawPictureRGB"}) {
        for (bool from : {true, false}) {
            const std::string declaration =
                name +
                "(pic as picture, DestX as integer, DestY as integer, DestWidth as integer, DestHeight as integer" +
                (from ? ", SourceX as integer, SourceY as integer)" : ")");
            for (const Source &target : targets)
                for (int32_t depth : {32, 16})
                    add(rows, declaration, std::string(target.variant) + " from " + std::to_string(depth) + " bits",
                        FailsWith::nothing,
                        [make = target.make, from, depth] {
                            Call call = {make(), {picture(depth, true), 1, 0, 20, 4}};
                            if (from) call.arguments.insert(call.arguments.end(), {2, 1});
                            return call;
                        });
        }
    }
}

} // namespace

void add_picture_rows(Rows &rows) {
    add_constructors(rows);
    add_copies(rows);
    add_drawing(rows);
}

} // namespace kzb::test
