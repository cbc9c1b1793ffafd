// What the digests are taken of: every method of the module, with arguments that take it through its cases.

#include "digest/digest.h"

#include <cstdlib>

namespace kzb::test {

namespace {

using S = Subjects;

std::vector<int32_t> numbers(size_t count, int32_t factor, int32_t start) {
    std::vector<int32_t> values(count);
    for (size_t i = 0; i < count; ++i) values[i] = start + factor * static_cast<int32_t>(i);
    return values;
}

void add_rows(std::vector<Operation> &all) {
    all.push_back({"properties", [](const S &s) {
                       for (const char *name :
                            {"Width", "Height", "PixelSize", "ImageFormat", "ImageFormatString", "IsGray", "IsRGB",
                             "HasGreen", "HasRed", "HasBlue", "HasGray", "HasAlpha", "Valid"})
                           s.digest.add(s.image.get(name));
                   }});
    all.push_back({"Row=", [](const S &s) {
                       for (int32_t y = 0; y < s.image.height(); y += 2) s.assign("Row", s.other.call("Row", y), y);
                   }});
    all.push_back({"RowInFormat", [](const S &s) {
                       for (const Layout &to : layouts()) s.call("RowInFormat", 0, to.code);
                       for (const Layout &to : layouts()) s.call("RowInFormat", s.image.height() - 1, to.code, true);
                   }});
    all.push_back({"RowInFormat=", [](const S &s) {
                       int32_t y = 0;
                       for (const Layout &from : layouts()) {
                           const Value row = block_of(random_bytes(size_t{4} * 80, 5));
                           s.assign("RowInFormat", row, y++ % s.image.height(), from.code);
                           s.assign("RowInFormat", row, y++ % s.image.height(), from.code, true);
                           s.digest.add(s.image);
                       }
                   }});
    all.push_back({"RowStringInFormat", [](const S &s) {
                       for (const Layout &to : layouts()) s.call("RowStringInFormat", 0, to.code);
                   }});
    all.push_back({"RowStringInFormat=", [](const S &s) {
                       for (const Layout &from : layouts()) {
                           s.assign("RowStringInFormat", string_of(random_bytes(size_t{4} * 80, 6)), 0, from.code);
                           s.digest.add(s.image);
                       }
                   }});
    all.push_back({"DataStringInFormat", [](const S &s) {
                       for (const Layout &to : layouts()) s.call("DataStringInFormat", to.code);
                   }});
    all.push_back({"DataStringInFormat=", [](const S &s) {
                       for (const Layout &from : layouts()) {
                           s.assign("DataStringInFormat", string_of(random_bytes(size_t{4} * 80 * 80, 7)), from.code);
                           s.digest.add(s.image);
                       }
                   }});
}

void add_pictures(std::vector<Operation> &all) {
    for (const char *name : {"CopyPicture", "CopyMask", "CopyPictureWithMask"}) {
        all.push_back({name, [=](const S &s) { s.call(name); }});
        all.push_back({std::string(name) + " x y w h", [=](const S &s) {
                           s.call(name, 1, 2, 30, 20);
                           s.call(name, 20, 15, -18, -12);
                           s.call(name, -3, -4, 200, 200);
                       }});
    }
    all.push_back({"DebugPicture", [](const S &s) {
                       s.image.set("DebugPictureEnabled", true);
                       s.digest.add(s.image.get("DebugPicture"));
                   }});
    for (const char *name : {"DrawPictureRGB", "DrawPictureRedToGrayChannel", "DrawPictureGreenToGrayChannel",
                             "DrawPictureBlueToGrayChannel"})
        all.push_back({name, [=](const S &s) {
                           for (int32_t depth : {8, 16, 24, 32}) {
                               s.call(name, s.picture(41, 29, depth), 2, 1, 25, 20);
                               s.digest.add(s.image);
                               s.call(name, s.picture(41, 29, depth), -5, 4, 300, 20, 7, -3);
                               s.digest.add(s.image);
                           }
                       }});
}

void add_fills(std::vector<Operation> &all) {
    const Colour colour = {0x12AB9C};
    all.push_back({"Invert", [](const S &s) { s.call("Invert"); }});
    all.push_back({"Invert x y w h", [](const S &s) { s.call("Invert", 3, -2, 21, 17); }});
    all.push_back({"ClearRect", [](const S &s) { s.call("ClearRect"); }});
    all.push_back({"ClearRect x y w h", [](const S &s) { s.call("ClearRect", -1, 2, 10, 7); }, true});
    all.push_back({"FillRect", [](const S &s) { s.call("FillRect", 300); }});
    all.push_back({"FillRect x y w h", [](const S &s) { s.call("FillRect", 1, 1, 500, 3, 77); }, true});
    all.push_back({"FillRectRGB", [](const S &s) { s.call("FillRectRGB", 1, 300, -3); }});
    all.push_back({"FillRectRGB alpha", [](const S &s) { s.call("FillRectRGB", 10, 20, 30, 40); }});
    all.push_back({"FillRectRGB x y w h", [](const S &s) { s.call("FillRectRGB", 2, 2, 9, 9, 11, 22, 33); }});
    all.push_back(
        {"FillRectRGB x y w h alpha", [](const S &s) { s.call("FillRectRGB", 1, 0, 19, 99, 11, 22, 33, 44); }});
    all.push_back({"FillRectRGB colour", [=](const S &s) { s.call("FillRectRGB", colour); }});
    all.push_back({"FillRectRGB colour alpha", [=](const S &s) { s.call("FillRectRGB", colour, 200); }});
    all.push_back({"FillRectRGB x y w h colour", [=](const S &s) { s.call("FillRectRGB", 4, 3, 30, 5, colour); }});
    all.push_back(
        {"FillRectRGB x y w h colour alpha", [=](const S &s) { s.call("FillRectRGB", 4, 3, 30, 5, colour, 99); }});
}

void add_moves(std::vector<Operation> &all) {
    for (const char *name : {"AlphaChannel", "RedChannel", "GreenChannel", "BlueChannel", "GrayChannel", "RGBChannels"})
        all.push_back({name, [=](const S &s) { s.call(name); }});
    all.push_back({"CreatePictureKZB", [](const S &s) { s.call("CreatePictureKZB", 9, 7, s.image.format()); }});
    // File-backed images have no clones.
    all.push_back({"Clone", [](const S &s) { s.call("Clone"); }, true});
    all.push_back({"CopyPixels", [](const S &s) { s.call("CopyPixels", s.other); }});
    all.push_back({"CopyPixels x y w h", [](const S &s) { s.call("CopyPixels", s.other, 3, 2, 30, 20); }});
    all.push_back({"CopyPixels x y w h from", [](const S &s) { s.call("CopyPixels", s.other, -3, 2, 30, 20, 4, 1); }});
    all.push_back({"CopyPixels in place", [](const S &s) { s.call("CopyPixels", s.image, 1, 1, 60, 40, 0, 0); }});
    all.push_back({"CopyPixels from every layout", [](const S &s) {
                       for (const Layout &from : layouts()) {
                           s.call("CopyPixels", s.made(19, 13, from.code));
                           s.digest.add(s.image);
                       }
                   }});
    all.push_back({"ClipImage", [](const S &s) { s.call("ClipImage", 1, 1, 31, 11); }});
    for (const char *name : {"HMirror", "VMirror", "Rotate180"})
        all.push_back({name, [=](const S &s) { s.call(name); }});
    all.push_back({"Rotate180 dest", [](const S &s) { s.call("Rotate180", s.other); }});
    for (const char *name : {"Rotate90slow", "Rotate270slow", "Rotate90", "Rotate270"}) {
        all.push_back({name, [=](const S &s) { s.call(name, nullptr); }});
        all.push_back({std::string(name) + " dest",
                       [=](const S &s) { s.call(name, s.made(s.image.height(), s.image.width(), s.image.format())); }});
    }
    all.push_back(
        {"Rotate", [](const S &s) {
             for (double angle : {0.0, 1.0, 17.25, 45.0, 89.9, 90.0, 133.0, 180.0, 200.5, 270.0, 315.0, -30.0, 1e6})
                 s.call("Rotate", angle, 10, 20, 30, 200, 40);
         }});
}

void add_scaling(std::vector<Operation> &all) {
    constexpr struct { int32_t width, height; } sizes[] = {{1, 1}, {7, 90}, {67, 41}, {66, 42}, {101, 9}};
    for (int32_t mode = 1; mode <= 7; ++mode) {
        static const char *const names[] = {"Scale Triangle", "Scale Box",   "Scale Lanczos3", "Scale Lanczos8",
                                            "Scale Mitchell", "Scale Poly3", "Scale Cubic"};
        all.push_back({names[mode - 1], [=](const S &s) {
                           for (const auto &[width, height] : sizes) {
                               const Image dest = s.made(width, height, s.image.format());
                               const Image temp(width, s.image.height(), 14);
                               s.digest.add(dest.call("Scale", s.image, temp, mode, width, height));
                               s.digest.add(dest);
                           }
                       }});
    }
    all.push_back({"ScaleFast", [=](const S &s) {
                       for (const auto &[width, height] : sizes) {
                           const Image dest = s.made(width, height, s.image.format());
                           s.digest.add(dest.call("ScaleFast", s.image, width, height));
                           s.digest.add(dest);
                       }
                   }});
}

void add_tones(std::vector<Operation> &all) {
    static const Value falling = array_of(numbers(256, -1, 255));
    static const Value steep = array_of(numbers(256, 3, -100));
    all.push_back({"SolarizeFilter", [](const S &s) { s.call("SolarizeFilter", s.other); }});
    all.push_back({"GammaFilter", [](const S &s) {
                       for (double gamma : {0.01, 0.45454545, 0.8, 1.0, 1.8, 2.2, 9.5, 0.0, -1.0})
                           s.call("GammaFilter", nullptr, gamma);
                   }});
    all.push_back({"GammaFilter gamma alpha", [](const S &s) { s.call("GammaFilter", s.other, 1.7, 0.3); }});
    all.push_back({"GammaFilter red green blue", [](const S &s) { s.call("GammaFilter", s.other, 0.7, 1.3, 2.9); }});
    all.push_back(
        {"GammaFilter red green blue alpha", [](const S &s) { s.call("GammaFilter", s.image, 0.7, 1.3, 2.9, 1.1); }});
    all.push_back({"GainFilter", [](const S &s) {
                       for (double gain : {0.0, 0.1, 0.35, 0.5, 0.77, 0.999, 1.0})
                           for (double bias : {0.05, 0.5, 0.61, 0.95}) s.call("GainFilter", nullptr, gain, bias);
                   }});
    all.push_back({"TransferFilter gray", [](const S &s) { s.call("TransferFilter", s.other, falling); }});
    all.push_back({"TransferFilter gray alpha", [](const S &s) { s.call("TransferFilter", s.other, steep, falling); }});
    all.push_back({"TransferFilter red green blue",
                   [](const S &s) { s.call("TransferFilter", s.other, falling, steep, falling); }});
    all.push_back({"TransferFilter red green blue alpha",
                   [](const S &s) { s.call("TransferFilter", s.image, falling, steep, falling, steep); }});
    all.push_back({"AutoLevel", [](const S &s) {
                       s.call("GainFilter", s.image, 0.2, 0.4);
                       s.call("AutoLevel");
                   }});
    all.push_back({"AutoLevel x y w h", [](const S &s) { s.call("AutoLevel", 2, 1, 5, 4); }});
}

void add_filters(std::vector<Operation> &all) {
    static const Value sharpen =
        array_of({0, 0, -1, 0, 0, 0, -1, -2, -1, 0, -1, -2, 17, -2, -1, 0, -1, -2, -1, 0, 0, 0, -1, 0, 0});
    static const Value cross = array_of({255, 255, 255, 255, 255, 255, 255, -1,  255, 255, 255, -1, 5,
                                         -1,  255, 255, 255, -1,  255, 255, 255, 255, 255, 255, 255});
    static const Value blur = array_of({1, 2, 1, 2, 4, 2, 1, 2, 1});
    for (const auto &[name, matrix] :
         {std::pair{"ApplyMatrix 5 x 5", &sharpen}, {"ApplyMatrix skipping", &cross}, {"ApplyMatrix 3 x 3", &blur}})
        all.push_back({name, [m = matrix](const S &s) {
                           s.call("ApplyMatrix", nullptr, *m);
                           s.call("ApplyMatrix", s.other, *m, 9);
                           s.call("ApplyMatrix", nullptr, *m, -3, 0.7);
                           s.call("ApplyMatrix", nullptr, *m, 0, 1.0 / 3);
                           s.call("ApplyMatrix", s.image, *m, 1, 0.0625);
                       }});
    all.push_back({"DitherFilter", [](const S &s) {
                       for (int32_t matrix = 0; matrix <= 12; ++matrix) {
                           s.call("DitherFilter", nullptr, matrix, 4);
                           s.call("DitherFilter", nullptr, matrix, 17);
                       }
                       s.call("DitherFilter", s.image, 3, 2);
                   }});
    all.push_back({"OilFilter", [](const S &s) {
                       s.call("OilFilter", nullptr, 256, 3);
                       s.call("OilFilter", s.other, 20, 1);
                       s.call("OilFilter", nullptr, 3, 7);
                       s.call("OilFilter", s.image, 100, 2);
                   }});
    all.push_back({"DiffuseFilter", [](const S &s) {
                       // The C library's numbers decide.
                       std::srand(1);
                       for (int32_t level : {0, 1, 3, 50}) s.call("DiffuseFilter", nullptr, level);
                       s.call("DiffuseFilter", s.image, 4);
                   }});
    all.push_back({"EngraveFilter", [](const S &s) {
                       for (int32_t level : {0, 1, 2, 100}) s.call("EngraveFilter", nullptr, level);
                       s.call("EngraveFilter", s.image, 2);
                   }});
    all.push_back({"NeonFilter",
                   [](const S &s) {
                       s.call("NeonFilter", s.other);
                       s.call("NeonFilter", s.image);
                   },
                   true});
    all.push_back({"StampFilter", [](const S &s) {
                       const Colour dark = {0x102030};
                       const Colour light = {0xFFEEDD};
                       for (double radius : {0.0, 0.4, 1.0, 2.5, 9.0})
                           s.call("StampFilter", nullptr, radius, 0.5, 0.2, dark, light);
                       s.call("StampFilter", s.other, 3.0, 0.3, 0.0, dark, light);
                       s.call("StampFilter", s.image, 1.5, 0.61, 0.9, light, dark);
                   }});
    all.push_back({"BoxBlurFilter", [](const S &s) {
                       for (double radius : {0.0, 0.3, 1.0, 1.5, 4.0, 5.75, 25.0, 300.0})
                           s.call("BoxBlurFilter", nullptr, radius);
                       s.call("BoxBlurFilter", s.image, 2.0);
                   }});
    all.push_back({"BoxBlurFilter iterations", [](const S &s) {
                       s.call("BoxBlurFilter", nullptr, 2.25, 3);
                       s.call("BoxBlurFilter", s.other, 1.0, 2);
                       s.call("BoxBlurFilter", s.image, 3.5, 4);
                   }});
    all.push_back({"BoxBlurFractionalFilter", [](const S &s) {
                       for (double radius : {0.0, 0.1, 0.5, 0.9, 1.0, 3.7})
                           s.call("BoxBlurFractionalFilter", nullptr, radius);
                       s.call("BoxBlurFractionalFilter", s.image, 0.6);
                   }});
    all.push_back({"UnsharpFilter 0.5", [](const S &s) { s.call("UnsharpFilter", s.other, 0.5, 3); }});
    all.push_back({"UnsharpFilter 1.73", [](const S &s) { s.call("UnsharpFilter", s.other, 1.73, 0); }});
    all.push_back({"UnsharpFilter -0.31", [](const S &s) { s.call("UnsharpFilter", s.other, -0.31, 20); }});
}

} // namespace

std::vector<Operation> operations() {
    std::vector<Operation> all;
    add_rows(all);
    add_pictures(all);
    add_fills(all);
    add_moves(all);
    add_scaling(all);
    add_tones(all);
    add_filters(all);
    return all;
}

} // namespace kzb::test
