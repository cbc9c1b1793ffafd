#include "faults/rows.h"

#include <cstring>

namespace kzb::test {

namespace {

struct Holder {
    const char *variant;
    std::function<Image()> make;
};
const Holder holders[] = {
    {"of RGBA", [] { return in_memory(RGBA); }},
    {"of a view of a file", [] { return view_of(in_file(GA), 1, 1, 3, 3); }},
    {"of a picture", [] { return on_picture(); }},
    {"of an image on a block, with a factory",
     [] {
         const Image image = on_block(RGB);
         image.set("Factory", factory([](int32_t, int32_t, int32_t) -> Value { return nullptr; }));
         return image;
     }},
    {"unconstructed", [] { return unconstructed(); }},
};

} // namespace

void add_property_rows(Rows &rows) {
    for (const char *name :
         {"YieldTicks", "RedOffset",  "GreenOffset", "BlueOffset", "GrayOffset",   "AlphaOffset",
          "Width",      "Height",     "PixelSize",   "RowSize",    "ImageFormat",  "ImageFormatString",
          "MappingBlockSize", "RowOffset", "DebugPictureEnabled", "DebugPicture", "IsGray", "IsRGB",
          "HasGreen",   "HasRed",     "HasBlue",     "HasGray",    "HasAlpha",     "Valid",
          "IsMapping",  "Parent",     "Factory",     "Target",     "Memory",       "MemoryTarget",
          "TotalSize"})
        for (const Holder &holder : holders)
            rows.push_back({Kind::getter, name, holder.variant, FailsWith::nil,
                            std::strcmp(name, "DebugPicture") == 0 ? Shortage::pixels : Shortage::fails,
                            [make = holder.make] {
                                const Image image = make();
                                fields_of(image).DebugPictureEnabled = 1;
                                return Call{image};
                            }});
    const auto add_setter = [&](const char *name, const char *variant, std::function<Call()> make) {
        rows.push_back({Kind::setter, name, variant, FailsWith::nothing, Shortage::fails, std::move(make)});
    };
    add_setter("YieldTicks", "in memory", [] { return Call{in_memory(RGB), {}, 5}; });
    add_setter("DebugPictureEnabled", "in memory", [] { return Call{in_memory(RGB), {}, true}; });
    const auto no_image = [](int32_t, int32_t, int32_t) -> Value { return nullptr; };
    add_setter("Factory", "first", [=] { return Call{in_memory(RGB), {}, factory(no_image)}; });
    add_setter("Factory", "another", [=] {
        const Image image = in_memory(RGB);
        image.set("Factory", factory(no_image));
        return Call{image, {}, factory(no_image)};
    });
    add_setter("MappingBlockSize", "in memory", [] { return Call{in_memory(RGB), {}, 1 << 25}; });
    add_setter("MappingBlockSize", "in a file", [] { return Call{in_file(RGB), {}, 1 << 25}; });
    add_setter("MappingBlockSize", "of a view of a file",
               [] { return Call{view_of(in_file(RGB), 1, 1, 3, 3), {}, 1 << 25}; });
    add_setter("MappingBlockSize", "unconstructed", [] { return Call{unconstructed(), {}, 1 << 25}; });
}

} // namespace kzb::test
