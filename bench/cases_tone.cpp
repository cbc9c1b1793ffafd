// Point operations.

#include "case.h"
#include "filters/plain_dither.h"
#include "filters/plain_tone.h"

namespace kzb::bench {

using namespace test;

namespace {

constexpr double gamma_used = 2.2, gain = 0.7, bias = 0.4;

std::vector<int32_t> negative_table() {
    std::vector<int32_t> values(256);
    for (size_t i = 0; i < 256; ++i) values[i] = 255 - static_cast<int32_t>(i);
    return values;
}

// What the module's own solarize does to each byte; its test holds these values.
std::array<uint8_t, 256> solarized() {
    const Image ramp(256, 1, 11);
    Bytes bytes(256);
    for (size_t i = 0; i < 256; ++i) bytes[i] = static_cast<uint8_t>(i);
    ramp.assign("Row", block_of(bytes), 0);
    const Bytes out = Image(ramp.call("SolarizeFilter", nullptr)).row(0);
    std::array<uint8_t, 256> table;
    std::copy_n(out.begin(), 256, table.begin());
    return table;
}

template <class Rule> Parameters table_of(Rule rule) {
    Parameters parameters;
    for (size_t i = 0; i < 256; ++i) parameters.table[i] = rule(static_cast<uint8_t>(i));
    return parameters;
}

Case look_up(const char *name, std::function<Value(const Pictures &)> run, bool with_alpha,
             const Parameters &parameters) {
    return {.name = name,
            .run = std::move(run),
            .reference = point_operation(with_alpha,
                                         [table = parameters.table](Channel, uint8_t value) { return table[value]; }),
            .parameters = parameters,
            .targets = {0.25, 0.25}};
}

} // namespace

void add_tone_cases(std::vector<Case> &cases) {
    Parameters gamma = table_of([](uint8_t v) { return gamma_of(gamma_used, v); });
    gamma.gamma = gamma_used;
    cases.push_back(look_up(
        "GammaFilter", [](const Pictures &p) { return p.source.call("GammaFilter", p.dest, gamma_used); }, false,
        gamma));
    cases.push_back(look_up(
        "GainFilter", [](const Pictures &p) { return p.source.call("GainFilter", p.dest, gain, bias); }, true,
        table_of([](uint8_t v) { return gain_of(gain, bias, v); })));
    const auto table = solarized();
    cases.push_back(look_up(
        "SolarizeFilter", [](const Pictures &p) { return p.source.call("SolarizeFilter", p.dest); }, true,
        table_of([&](uint8_t v) { return table[v]; })));
    cases.push_back(look_up(
        "TransferFilter",
        [negative = array_of(negative_table())](const Pictures &p) {
            return p.source.call("TransferFilter", p.dest, negative);
        },
        false, table_of([](uint8_t v) { return static_cast<uint8_t>(255 - v); })));

    cases.push_back({.name = "AutoLevel",
                     .form = Form::in_place,
                     .run = [](const Pictures &p) { return Image(p.dest).call("AutoLevel"); },
                     .reference = [](const PlainImage &,
                                     const PlainImage &image) { auto_level(image, 0, 0, image.width, image.height); },
                     .targets = {1.0, {}, 1.5},
                     .colour_only = true});

    const DitherMatrix &matrix = dither_matrices()[6]; // 8 x 8, ordered
    constexpr int32_t levels = 4;
    cases.push_back({.name = "DitherFilter",
                     .run = [code = matrix.code,
                             levels](const Pictures &p) { return p.source.call("DitherFilter", p.dest, code, levels); },
                     .reference = dithering(matrix, levels),
                     .parameters = {.levels = levels},
                     .targets = {1.0, 1.0, 1.5}});
}

} // namespace kzb::bench
