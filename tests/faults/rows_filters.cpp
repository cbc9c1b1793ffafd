// Filters, and the kinds of destinations that they share with the turns.
#include "faults/rows.h"

namespace kzb::test {

namespace {

struct Images {
    Image source;
    Value destination;
};
struct Variant {
    const char *name;
    std::function<Images(int32_t width, int32_t height)> make; // the destination's size
};

const Variant variants[] = {
    {"RGBA to a new image",
     [](int32_t, int32_t) {
         return Images{in_memory(RGBA), nullptr};
     }},
    {"G in a file to a new image",
     [](int32_t, int32_t) {
         return Images{in_file(G), nullptr};
     }},
    {"RGBA to RGBA",
     [](int32_t w, int32_t h) {
         return Images{in_memory(RGBA), in_memory(RGBA, w, h)};
     }},
    {"ARGB on a block to BGR",
     [](int32_t w, int32_t h) {
         return Images{on_block(ARGB), in_memory(BGR, w, h)};
     }},
    {"RGBX to BGR",
     [](int32_t w, int32_t h) {
         return Images{in_memory(RGBX), in_memory(BGR, w, h)};
     }},
    {"GA to GA in a file",
     [](int32_t w, int32_t h) {
         return Images{in_memory(GA), in_file(GA, w, h)};
     }},
    {"onto itself",
     [](int32_t, int32_t) {
         const Image image = in_memory(RGBX);
         return Images{image, image};
     }},
    {"a file onto itself",
     [](int32_t, int32_t) {
         const Image image = in_file(AG);
         return Images{image, image};
     }},
    {"to a smaller one",
     [](int32_t, int32_t) {
         return Images{in_memory(RGB), on_block(RGB, 4, 3)};
     }},
    {"overlapping views",
     [](int32_t w, int32_t h) {
         const Image parent = on_block(RGBA, w + usual_width, h + usual_height);
         return Images{view_of(parent, 2, 1, usual_width, usual_height), view_of(parent, 1, 2, w, h)};
     }},
    {"views of one file",
     [](int32_t w, int32_t h) {
         const Image parent = in_file(RGB, w + usual_width, h + usual_height);
         return Images{view_of(parent, 2, 1, usual_width, usual_height), view_of(parent, 0, 0, w, h)};
     }},
    {"to what its factory gives",
     [](int32_t, int32_t) {
         const Image image = on_picture();
         image.set("Factory", factory([](int32_t width, int32_t height, int32_t format) -> Value {
                       return blank(in_memory(format, width, height));
                   }));
         return Images{image, nullptr};
     }},
    {"to a file from the process's factory",
     [](int32_t, int32_t) {
         set_process_factory(factory([](int32_t width, int32_t height, int32_t format) -> Value {
             return blank(in_file(format, width, height));
         }));
         return Images{in_memory(RGBA), nullptr};
     }},
    {"the working layout",
     [](int32_t, int32_t) {
         return Images{in_memory(Scaling), nullptr};
     }},
};

MoreArguments always(const std::vector<Value> &values) {
    return [values] { return values; };
}

void add_convolution(Rows &rows) {
    const std::string start = "ApplyMatrix(dest as PictureKZB, matrix() as integer";
    add_destination_rows(rows, start + ") as PictureKZB", [] { return std::vector<Value>{noise_array(25)}; });
    add_destination_rows(rows, start + ", delta as integer) as PictureKZB", [] {
        return std::vector<Value>{noise_array(25), 3};
    });
    add_destination_rows(rows, start + ", delta as integer, ScaleFactor as double) as PictureKZB", [] {
        return std::vector<Value>{noise_array(25), 3, 0.01};
    });
}

void add_tone(Rows &rows) {
    add_destination_rows(rows, "SolarizeFilter(dest as PictureKZB) as PictureKZB", always({}));
    const std::string gamma = "GammaFilter(dest as PictureKZB, ";
    add_destination_rows(rows, gamma + "redGamma as double, greenGamma as double, blueGamma as double) as PictureKZB",
                         always({1.5, 2.0, 2.5}));
    add_destination_rows(rows,
                         gamma + "redGamma as double, greenGamma as double, blueGamma as double, alphaGamma as double) "
                                 "as PictureKZB",
                         always({1.5, 2.0, 2.5, 3.0}));
    add_destination_rows(rows, gamma + "gamma as double) as PictureKZB", always({2.2}));
    add_destination_rows(rows, gamma + "gamma as double, alphaGamma as double) as PictureKZB", always({2.2, 1.2}));
    add_destination_rows(rows, "GainFilter(dest as PictureKZB, gain as double, bias as double) as PictureKZB",
                         always({0.4, 0.6}));
    const std::string transfer = "TransferFilter(dest as PictureKZB, ";
    add_destination_rows(rows, transfer + "red() as integer, green() as integer, blue() as integer) as PictureKZB", [] {
        return std::vector<Value>{noise_array(5), noise_array(2), noise_array(3)};
    });
    add_destination_rows(
        rows, transfer + "red() as integer, green() as integer, blue() as integer, alpha() as integer) as PictureKZB",
        [] {
            return std::vector<Value>{noise_array(4), noise_array(2), noise_array(0), noise_array(1)};
        });
    add_destination_rows(rows, transfer + "gray() as integer) as PictureKZB",
                         [] { return std::vector<Value>{noise_array(7)}; });
    add_destination_rows(rows, transfer + "gray() as integer, alpha() as integer) as PictureKZB", [] {
        return std::vector<Value>{noise_array(7), noise_array(3)};
    });
    for (const bool rectangle : {false, true})
        for (const auto &[variant, make] : std::initializer_list<std::pair<const char *, std::function<Image()>>>{
                 {"RGB", [] { return in_memory(RGB); }},
                 {"RGBA in a file", [] { return in_file(RGBA); }},
                 {"view", [] { return view_of(on_block(BGR), 1, 1, 6, 3); }},
                 {"gray", [] { return in_memory(G); }}})
            rows.push_back({Kind::method,
                            rectangle ? "AutoLevel(x as integer, y as integer, w as integer, h as integer) as boolean"
                                      : "AutoLevel as boolean",
                            variant, FailsWith::no, Shortage::fails, [make = make, rectangle] {
                                return Call{make(), rectangle ? std::vector<Value>{1, 1, 4, 9} : std::vector<Value>{}};
                            }});
}

void add_effects(Rows &rows) {
    add_destination_rows(rows, "DitherFilter(dest as PictureKZB, matrix as integer, levels as integer) as PictureKZB",
                         always({6, 4}));
    add_destination_rows(rows, "OilFilter(dest as PictureKZB, levels as integer, range as integer) as PictureKZB",
                         always({16, 2}));
    add_destination_rows(rows, "DiffuseFilter(dest as PictureKZB, level as integer) as PictureKZB", always({2}));
    add_destination_rows(rows, "EngraveFilter(dest as PictureKZB, level as integer) as PictureKZB", always({-2}));
    add_destination_rows(rows, "NeonFilter(dest as PictureKZB) as PictureKZB", always({}), Shortage::untouched);
    // What is stamped may not have been blurred.
    add_destination_rows(rows,
                         "StampFilter(dest as PictureKZB, radius as double, threshold as double, softness as double, "
                         "Black as Color, White as Color) as PictureKZB",
                         always({4.0, 0.5, 0.25, Colour{0x102030}, Colour{0xf0e0d0}}), Shortage::pixels);
}

void add_blurs(Rows &rows) {
    add_destination_rows(rows, "BoxBlurFilter(dest as PictureKZB, Radius as double) as PictureKZB", always({2.0}),
                         Shortage::untouched);
    // A later pass may take over what an earlier one left undone.
    add_destination_rows(rows,
                         "BoxBlurFilter(dest as PictureKZB, Radius as double, Iterations as integer) as PictureKZB",
                         always({2.0, 3}), Shortage::pixels);
    // One of the two passes may be left out.
    add_destination_rows(rows, "BoxBlurFractionalFilter(dest as PictureKZB, Radius as double) as PictureKZB",
                         always({0.4}), Shortage::pixels);
    const auto add_unsharp = [&](const char *variant, std::function<std::pair<Image, Image>()> make) {
        rows.push_back({Kind::method,
                        "UnsharpFilter(origpixels as PictureKZB, Amount as double, Threshold as integer) as boolean",
                        variant, FailsWith::no, Shortage::fails, [make] {
                            const auto [image, original] = make();
                            return Call{image, {original, 0.5, 2}};
                        }});
    };
    add_unsharp("RGBA", [] { return std::pair(in_memory(RGBA), in_memory(RGBA)); });
    add_unsharp("a file against a block", [] { return std::pair(in_file(GA), on_block(GA)); });
    add_unsharp("views of one file", [] {
        const Image parent = in_file(RGB);
        return std::pair(view_of(parent, 0, 0, 4, 3), view_of(parent, 1, 1, 4, 3));
    });
    add_unsharp("of another layout", [] { return std::pair(in_memory(RGBA), in_memory(ARGB)); });
}

} // namespace

void add_destination_rows(Rows &rows, const std::string &declaration, const MoreArguments &more, Shortage shortage,
                          Turned turned) {
    const bool swapped = turned == Turned::yes;
    for (const Variant &variant : variants)
        rows.push_back(
            {Kind::method, declaration, variant.name, FailsWith::nil, shortage, [make = variant.make, more, swapped] {
                 const Images images = make(swapped ? usual_height : usual_width, swapped ? usual_width : usual_height);
                 Call call = {images.source, {images.destination}};
                 for (const Value &value : more()) call.arguments.push_back(value);
                 return call;
             }});
}

void add_filter_rows(Rows &rows) {
    add_convolution(rows);
    add_tone(rows);
    add_effects(rows);
    add_blurs(rows);
}

} // namespace kzb::test
