// Blurs, convolution and the effects.

#include "case.h"
#include "filters/box_reference.h"
#include "filters/plain_convolution.h"
#include "filters/plain_diffuse.h"
#include "filters/plain_engrave.h"
#include "filters/plain_fractional_blur.h"
#include "filters/plain_neon.h"
#include "filters/plain_oil.h"
#include "filters/plain_stamp.h"
#include "filters/plain_unsharp.h"

namespace kzb::bench {

using namespace test;

namespace {

constexpr double radius_of_three = 5, fraction = 0.5;
constexpr int32_t times = 3;
constexpr int32_t diffuse_level = 3, engrave_level = 2;
constexpr Stamp stamp = {9.0, 0.5, 0.2, 0x102030, 0xffeedd};
constexpr double amount = 0.5; // of sharpening
constexpr int32_t threshold = 3;

constexpr Targets blur_targets = {0.8, 0.8};
constexpr Targets effect_targets = {1.0, 1.0, 1.5};

Case box_blur_case(double radius) {
    return {.name = "BoxBlurFilter " + std::to_string(static_cast<int>(radius)),
            .run = [=](const Pictures &p) { return p.source.call("BoxBlurFilter", p.dest, radius); },
            .reference = [=](const PlainImage &source,
                             const PlainImage &destination) { box_blur(source, destination, radius); },
            .parameters = {.radius = radius},
            .targets = blur_targets};
}

// The passed destination would receive the first pass alone.
Case repeated_blur() {
    return {.name = "BoxBlurFilter 5 x3",
            .form = Form::made,
            .run = [](const Pictures &p) { return p.source.call("BoxBlurFilter", nullptr, radius_of_three, times); },
            .made =
                [](const PlainImage &source) {
                    const auto fresh = [&] {
                        return PlainImage::in_memory(source.width, source.height, source.format);
                    };
                    const PlainImage first = fresh(), second = fresh(), third = fresh();
                    box_blur(source, first, radius_of_three);
                    box_blur(first, second, radius_of_three);
                    box_blur(second, third, radius_of_three);
                    return third;
                },
            .parameters = {.radius = radius_of_three, .iterations = times},
            .targets = blur_targets};
}

// `factor` multiplies the sum; weights from 255 on are skipped.
Case convolution_case(const char *name, const Weights &weights, double factor, Targets targets) {
    Parameters parameters = {.factor = factor};
    for (size_t i = 0; i < weights.size(); ++i) parameters.weights[i] = weights[i] >= 255 ? 0 : weights[i];
    const Value matrix = array_of(weights);
    return {.name = name,
            .run = [=](const Pictures &p) { return p.source.call("ApplyMatrix", p.dest, matrix, 0, factor); },
            .reference = convolution(weights, 0, factor),
            .held_whole = false,
            .parameters = parameters,
            .targets = targets,
            .nil_turned = true};
}

Case diffuse_case() {
    return {.name = "DiffuseFilter",
            .run = [](const Pictures &p) { return p.source.call("DiffuseFilter", p.dest, diffuse_level); },
            .reference = diffusion(diffuse_level),
            .parameters = {.range = diffuse_level},
            .targets = {1.0, 1.0}};
}

Case stamp_case() {
    Parameters parameters = {.radius = stamp.radius / 3.0, .iterations = 3};
    for (int v = 0; v < 256; ++v) parameters.table[static_cast<size_t>(v)] = stamped(stamp, Channel::green, v);
    return {.name = "StampFilter",
            .form = Form::made,
            .run =
                [](const Pictures &p) {
                    return p.source.call("StampFilter", nullptr, stamp.radius, stamp.threshold, stamp.softness,
                                         Colour{stamp.black}, Colour{stamp.white});
                },
            .made =
                [](const PlainImage &source) {
                    const auto first = PlainImage::in_memory(source.width, source.height, source.format);
                    box_blur(source, first, stamp.radius / 3.0);
                    return stamped_model(first, stamp);
                },
            .parameters = parameters,
            .targets = effect_targets};
}

Case unsharp_case() {
    return {.name = "UnsharpFilter",
            .form = Form::drawn,
            .run = [](const Pictures &p) { return Image(p.dest).call("UnsharpFilter", p.source, amount, threshold); },
            .reference = [](const PlainImage &source,
                            const PlainImage &image) { unsharp(image, source, amount, threshold); },
            .parameters = {.factor = amount * 4 + 1},
            .targets = effect_targets};
}

} // namespace

void add_filter_cases(std::vector<Case> &cases) {
    for (double radius : {1.0, 5.0, 25.0, 100.0}) cases.push_back(box_blur_case(radius));
    cases.push_back(repeated_blur());
    cases.push_back(
        {.name = "BoxBlurFractionalFilter",
         .run = [](const Pictures &p) { return p.source.call("BoxBlurFractionalFilter", p.dest, fraction); },
         .reference = [](const PlainImage &source, const PlainImage &dest) { fractional_blur(source, dest, fraction); },
         .parameters = {.radius = fraction},
         .targets = blur_targets});

    const Weights sharpen = {0, 0, -1, 0, 0, 0, -1, -2, -1, 0, -1, -2, 17, -2, -1, 0, -1, -2, -1, 0, 0, 0, -1, 0, 0};
    const Weights all_cells = {-1, -2, -3, -2, -1, -2, 1,  4,  1,  -2, -3, 4, 21,
                               4,  -3, -2, 1,  4,  1,  -2, -1, -2, -3, -2, -1};
    constexpr int32_t skip = 255;
    const Weights cross = {skip, skip, skip, skip, skip, skip, skip, -1,   skip, skip, skip, -1,  5,
                           -1,   skip, skip, skip, -1,   skip, skip, skip, skip, skip, skip, skip};
    Weights large = all_cells;
    for (int32_t &weight : large) weight *= 12; // sums far beyond 16 bits
    constexpr double per_sum = 1.0 / 9;
    cases.push_back(convolution_case("ApplyMatrix", sharpen, 1.0, blur_targets));
    cases.push_back(convolution_case("ApplyMatrix scaled", all_cells, per_sum, blur_targets));
    cases.push_back(convolution_case("ApplyMatrix skipping", cross, 1.0, blur_targets));
    cases.push_back(convolution_case("ApplyMatrix 32 bits", large, per_sum / 12, {1.6, 1.6}));

    cases.push_back(unsharp_case());
    cases.push_back({.name = "EngraveFilter",
                     .run = [](const Pictures &p) { return p.source.call("EngraveFilter", p.dest, engrave_level); },
                     .reference = engraving(engrave_level),
                     .parameters = {.range = engrave_level},
                     .targets = effect_targets});
    cases.push_back({.name = "NeonFilter",
                     .run = [](const Pictures &p) { return p.source.call("NeonFilter", p.dest); },
                     .reference = neon,
                     .targets = effect_targets});
    cases.push_back(stamp_case());
    cases.push_back(diffuse_case());
    for (int32_t range : {3, 6})
        cases.push_back({.name = "OilFilter " + std::to_string(range),
                         .run = [=](const Pictures &p) { return p.source.call("OilFilter", p.dest, 256, range); },
                         .reference = oil(256, range),
                         .held_whole = false,
                         .parameters = {.levels = 256, .range = range},
                         .targets = {0.2, 0.2}});
}

} // namespace kzb::bench
