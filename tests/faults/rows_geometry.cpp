// Fills, copies and views, mirrors and turns, scaling.
#include "faults/rows.h"

namespace kzb::test {

namespace {

using Make = std::function<Call()>;

void add(Rows &rows, const std::string &declaration, const std::string &variant, FailsWith failure, Make make,
         Shortage shortage = Shortage::fails) {
    rows.push_back({Kind::method, declaration, variant, failure, shortage, std::move(make)});
}

struct Target {
    const char *variant;
    std::function<Image()> make;
};
const Target targets[] = {
    {"RGBA", [] { return in_memory(RGBA); }},
    {"G on a block", [] { return on_block(G); }},
    {"BGR in a file", [] { return in_file(BGR); }},
    {"view of a file", [] { return view_of(in_file(ARGB), 2, 1, 6, 3); }},
};

// Methods that work on the image itself.
void add_in_place(Rows &rows, const std::string &declaration, const std::vector<Value> &arguments,
                  Shortage shortage = Shortage::fails) {
    for (const Target &target : targets)
        add(
            rows, declaration, target.variant, FailsWith::nothing,
            [make = target.make, arguments] {
                return Call{make(), arguments};
            },
            shortage);
}

void add_fills(Rows &rows) {
    add_in_place(rows, "Invert", {});
    add_in_place(rows, "Invert(x as integer, y as integer, w as integer, h as integer)", {1, 1, 3, 9});
    add_in_place(rows, "ClearRect", {});
    add_in_place(rows, "ClearRect(x as integer, y as integer, width as integer, height as integer)", {1, 1, 3, 9});
    add_in_place(rows, "FillRect(value as integer)", {7});
    add_in_place(rows, "FillRect(x as integer, y as integer, width as integer, height as integer, value as integer)",
                 {1, 1, 3, 9, 7});
    add_in_place(rows, "FillRectRGB(red as integer, green as integer, blue as integer)", {1, 2, 3});
    add_in_place(rows, "FillRectRGB(red as integer, green as integer, blue as integer, alpha as integer)",
                 {1, 2, 3, 4});
    add_in_place(rows,
                 "FillRectRGB(x as integer, y as integer, width as integer, height as integer, red as integer, "
                 "green as integer, blue as integer)",
                 {1, 1, 3, 9, 1, 2, 3});
    add_in_place(rows,
                 "FillRectRGB(x as integer, y as integer, width as integer, height as integer, red as integer, "
                 "green as integer, blue as integer, alpha as integer)",
                 {1, 1, 3, 9, 1, 2, 3, 4});
    const Colour colour = {0x123456};
    add_in_place(rows, "FillRectRGB(FillColor as color)", {colour});
    add_in_place(rows, "FillRectRGB(FillColor as color, alpha as integer)", {colour, 4});
    add_in_place(rows,
                 "FillRectRGB(x as integer, y as integer, width as integer, height as integer, FillColor as color)",
                 {1, 1, 3, 9, colour});
    add_in_place(rows,
                 "FillRectRGB(x as integer, y as integer, width as integer, height as integer, FillColor as color, "
                 "alpha as integer)",
                 {1, 1, 3, 9, colour, 4});
}

void add_views(Rows &rows) {
    const Target parents[] = {{"RGBA", [] { return in_memory(RGBA); }},
                              {"a picture", [] { return on_picture(); }},
                              {"GA in a file", [] { return in_file(GA); }},
                              {"a view", [] { return view_of(on_block(ABGR), 2, 1, 6, 3); }}};
    for (const char *declaration :
         {"AlphaChannel as PictureKZB", "RedChannel as PictureKZB", "GreenChannel as PictureKZB",
          "BlueChannel as PictureKZB", "GrayChannel as PictureKZB", "RGBChannels as PictureKZB", "Clone as PictureKZB"})
        for (const Target &parent : parents)
            add(rows, declaration, parent.variant, FailsWith::nil, [make = parent.make] { return Call{make()}; });
    for (const Target &parent : parents)
        add(rows, "ClipImage(x as integer, y as integer, width as integer, height as integer) as PictureKZB",
            parent.variant, FailsWith::nil, [make = parent.make] {
                return Call{make(), {1, 1, 3, 9}};
            });
}

struct Pair {
    const char *variant;
    std::function<std::pair<Image, Image>()> make; // the image that is written to, and the one that is read
};
const Pair pairs[] = {
    {"RGB from G", [] { return std::pair(in_memory(RGB), in_memory(G)); }},
    {"GA on a block from ARGB in a file", [] { return std::pair(on_block(GA), in_file(ARGB)); }},
    {"a file from a file", [] { return std::pair(in_file(RGBA), in_file(BGR)); }},
    {"itself",
     [] {
         const Image image = in_memory(RGBA);
         return std::pair(image, image);
     }},
    {"itself in a file",
     [] {
         const Image image = in_file(RGB);
         return std::pair(image, image);
     }},
    {"a view from its parent",
     [] {
         const Image parent = on_block(RGBA);
         return std::pair(view_of(parent, 2, 1, 6, 4), parent);
     }},
    {"two views of a file",
     [] {
         const Image parent = in_file(RGB);
         return std::pair(view_of(parent, 2, 1, 6, 4), view_of(parent, 0, 0, 6, 4));
     }},
};

void add_from_source(Rows &rows, const std::string &declaration, FailsWith failure, const std::vector<Value> &more,
                     Shortage shortage = Shortage::fails) {
    for (const Pair &pair : pairs)
        add(
            rows, declaration, pair.variant, failure,
            [make = pair.make, more] {
                const auto [target, source] = make();
                Call call = {target, {source}};
                call.arguments.insert(call.arguments.end(), more.begin(), more.end());
                return call;
            },
            shortage);
}

void add_copies(Rows &rows) {
    add_from_source(rows,
                    "CopyPixels(source as PictureKZB, DestX as integer, DestY as integer, DestWidth as integer, "
                    "DestHeight as integer, SourceX as integer, SourceY as integer)",
                    FailsWith::nothing, {0, 1, 4, 9, 2, 0});
    add_from_source(rows,
                    "CopyPixels(source as PictureKZB, DestX as integer, DestY as integer, DestWidth as integer, "
                    "DestHeight as integer)",
                    FailsWith::nothing, {1, 0, 4, 3});
    add_from_source(rows, "CopyPixels(source as PictureKZB)", FailsWith::nothing, {});
}

void add_turns(Rows &rows) {
    for (const char *declaration : {"HMirror", "VMirror", "Rotate180"}) add_in_place(rows, declaration, {});
    const MoreArguments none = [] { return std::vector<Value>(); };
    add_destination_rows(rows, "Rotate180(dest as PictureKZB=nil) as PictureKZB", none);
    for (const char *declaration :
         {"Rotate90slow(dest as PictureKZB=nil) as PictureKZB", "Rotate270slow(dest as PictureKZB=nil) as PictureKZB",
          "Rotate90(dest as PictureKZB=nil) as PictureKZB", "Rotate270(dest as PictureKZB=nil) as PictureKZB"})
        add_destination_rows(rows, declaration, none, Shortage::fails, Turned::yes);
    for (double angle : {0.0, 20.0, 90.0, 100.0, 181.5, -33.0, 300.0})
        for (const Target &target : targets)
            add(rows,
                "Rotate(angle as double, Red as integer, Green as integer, Blue as integer, Alpha as integer, "
                "Gray as integer) as PictureKZB",
                std::string(target.variant) + " by " + std::to_string(angle), FailsWith::nil,
                [make = target.make, angle] {
                    return Call{make(), {angle, 1, 2, 3, 4, 5}};
                });
}

void add_scaling(Rows &rows) {
    const std::string declaration =
        "Scale(source as PictureKZB, temp as PictureKZB, mode as integer, width as integer, height as integer) as "
        "boolean";
    constexpr int32_t lanczos3 = 3;
    // Lists of contributions for which there is no memory are empty.
    add_from_source(rows, declaration, FailsWith::no, {nullptr, lanczos3, 6, 4}, Shortage::pixels);
    const auto add_with_temp = [&](const char *variant, std::function<Image()> temp) {
        add(
            rows, declaration, variant, FailsWith::no,
            [temp] {
                return Call{in_memory(RGBA), {in_memory(ARGB, 4, 3), temp(), lanczos3, 9, 5}};
            },
            Shortage::pixels);
    };
    add_with_temp("with a temporary", [] { return in_memory(Scaling, 9, 3); });
    add_with_temp("with a temporary in a file", [] { return in_file(Scaling, 9, 3); });
    add_with_temp("with a temporary of another layout", [] { return in_memory(RGB, 9, 3); });
    // In whole numbers.
    constexpr int32_t box = 2;
    for (const bool seen : {false, true})
        add(
            rows, declaration, std::string("to a half") + (seen ? " with a temporary" : ""), FailsWith::no,
            [seen] {
                const Value temp = seen ? Value(in_memory(Scaling, 4, 8)) : Value();
                return Call{in_memory(RGBA), {in_memory(RGBA, 8, 8), temp, box, 4, 4}};
            },
            Shortage::pixels);
    add_from_source(rows, "ScaleFast(source as PictureKZB, width as integer, height as integer) as boolean",
                    FailsWith::no, {6, 4});
}

} // namespace

void add_geometry_rows(Rows &rows) {
    add_fills(rows);
    add_views(rows);
    add_copies(rows);
    add_turns(rows);
    add_scaling(rows);
}

} // namespace kzb::test
