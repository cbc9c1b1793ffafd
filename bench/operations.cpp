// The time of every operation through the module's own interface, beside memcpy and memset of the same bytes.
//
// Names read operation/layout/width x height; the counter ns/px is nanoseconds per pixel of the image it is called on.
// Destinations are passed, so that page faults of fresh memory are not timed. Choose with --benchmark_filter=REGEX.

#include "fixtures/storages.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <iostream>

namespace kzb::test {
namespace {

struct Pictures {
    Image source, dest, turned; // turned: Height × Width
};

struct Operation {
    const char *name;
    std::function<void(const Pictures &)> run;
};

std::vector<int32_t> numbers(size_t count, int32_t factor, int32_t start) {
    std::vector<int32_t> values(count);
    for (size_t i = 0; i < count; ++i) values[i] = start + factor * static_cast<int32_t>(i);
    return values;
}

std::vector<Operation> operations() {
    static const Value negative = array_of(numbers(256, -1, 255));
    static const Value sharpen = array_of({0,  0,  -1, 0,  0,  0,  -1, -2, -1, 0, -1, -2, 17,
                                           -2, -1, 0,  -1, -2, -1, 0,  0,  0,  -1, 0,  0});
    static const Value cross = array_of({255, 255, 255, 255, 255, 255, 255, -1,  255, 255, 255, -1, 5,
                                         -1,  255, 255, 255, -1,  255, 255, 255, 255, 255, 255, 255});
    std::vector<Operation> all = {
        {"GammaFilter", [](const Pictures &p) { p.source.call("GammaFilter", p.dest, 2.2); }},
        {"GainFilter", [](const Pictures &p) { p.source.call("GainFilter", p.dest, 0.7, 0.4); }},
        {"SolarizeFilter", [](const Pictures &p) { p.source.call("SolarizeFilter", p.dest); }},
        {"TransferFilter", [](const Pictures &p) { p.source.call("TransferFilter", p.dest, negative); }},
        {"AutoLevel", [](const Pictures &p) { p.source.call("AutoLevel"); }},
        {"Invert", [](const Pictures &p) { p.source.call("Invert"); }},
        {"FillRect", [](const Pictures &p) { p.dest.call("FillRect", 77); }},
        {"FillRectRGB", [](const Pictures &p) { p.dest.call("FillRectRGB", 1, 2, 3); }},
        {"ClearRect", [](const Pictures &p) { p.dest.call("ClearRect"); }},
        {"CopyPixels", [](const Pictures &p) { p.dest.call("CopyPixels", p.source); }},
        {"DataStringInFormat BGRA", [](const Pictures &p) { p.source.call("DataStringInFormat", 7); }},
        {"Clone", [](const Pictures &p) { p.source.call("Clone"); }},
        {"HMirror", [](const Pictures &p) { p.source.call("HMirror"); }},
        {"VMirror", [](const Pictures &p) { p.source.call("VMirror"); }},
        {"Rotate180", [](const Pictures &p) { p.source.call("Rotate180", p.dest); }},
        {"Rotate90", [](const Pictures &p) { p.source.call("Rotate90", p.turned); }},
        {"Rotate270", [](const Pictures &p) { p.source.call("Rotate270", p.turned); }},
        {"Rotate90slow", [](const Pictures &p) { p.source.call("Rotate90slow", p.turned); }},
        {"Rotate270slow", [](const Pictures &p) { p.source.call("Rotate270slow", p.turned); }},
        {"Rotate 17", [](const Pictures &p) { p.source.call("Rotate", 17.0, 10, 20, 30, 255, 40); }},
        {"ApplyMatrix 5x5", [](const Pictures &p) { p.source.call("ApplyMatrix", p.dest, sharpen); }},
        {"ApplyMatrix skipping", [](const Pictures &p) { p.source.call("ApplyMatrix", p.dest, cross); }},
        {"ApplyMatrix scaled", [](const Pictures &p) { p.source.call("ApplyMatrix", p.dest, sharpen, 3, 0.7); }},
        {"DitherFilter", [](const Pictures &p) { p.source.call("DitherFilter", p.dest, 7, 4); }},
        {"OilFilter 3 256", [](const Pictures &p) { p.source.call("OilFilter", p.dest, 256, 3); }},
        {"DiffuseFilter", [](const Pictures &p) { p.source.call("DiffuseFilter", p.dest, 3); }},
        {"EngraveFilter", [](const Pictures &p) { p.source.call("EngraveFilter", p.dest, 2); }},
        {"NeonFilter", [](const Pictures &p) { p.source.call("NeonFilter", p.dest); }},
        {"StampFilter",
         [](const Pictures &p) {
             p.source.call("StampFilter", p.dest, 9.0, 0.5, 0.2, Colour{0x102030}, Colour{0xffeedd});
         }},
        {"BoxBlurFilter 1", [](const Pictures &p) { p.source.call("BoxBlurFilter", p.dest, 1.0); }},
        {"BoxBlurFilter 5", [](const Pictures &p) { p.source.call("BoxBlurFilter", p.dest, 5.0); }},
        {"BoxBlurFilter 25", [](const Pictures &p) { p.source.call("BoxBlurFilter", p.dest, 25.0); }},
        {"BoxBlurFilter 100", [](const Pictures &p) { p.source.call("BoxBlurFilter", p.dest, 100.0); }},
        {"BoxBlurFilter 5 x3", [](const Pictures &p) { p.source.call("BoxBlurFilter", p.dest, 5.0, 3); }},
        {"BoxBlurFractionalFilter", [](const Pictures &p) { p.source.call("BoxBlurFractionalFilter", p.dest, 0.5); }},
        {"UnsharpFilter", [](const Pictures &p) { p.dest.call("UnsharpFilter", p.source, 0.5, 3); }},
    };
    return all;
}

constexpr std::pair<int, const char *> kernels[] = {{1, "Triangle"}, {2, "Box"},   {3, "Lanczos3"}, {4, "Lanczos8"},
                                                    {5, "Mitchell"}, {6, "Poly3"}, {7, "Cubic"}};

// Times `run` and reports nanoseconds per pixel.
template <class Run> void measure(benchmark::State &state, int64_t pixels, Run run) {
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) run();
    const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - start;
    state.counters["ns/px"] =
        elapsed.count() / static_cast<double>(state.iterations()) / static_cast<double>(pixels);
}

void add_scale(int32_t format, int32_t width, int32_t height, int32_t to_width, int32_t to_height) {
    const auto add = [=](const std::string &kernel, auto run) {
        const std::string name = kernel + "/" + layout(format).name + "/" + std::to_string(width) + " x " +
                                 std::to_string(height) + " to " + std::to_string(to_width) + " x " +
                                 std::to_string(to_height);
        benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
            const Image source = *make_image(Storage::memory, width, height, format, 1);
            const Image dest(to_width, to_height, format);
            const Image temp(to_width, height, 14);
            measure(state, int64_t{width} * height, [&] { run(source, dest, temp); });
        })->Unit(benchmark::kMillisecond);
    };
    for (const auto &[mode, kernel] : kernels)
        add(std::string("Scale ") + kernel, [=, m = mode](const Image &source, const Image &dest, const Image &temp) {
            dest.call("Scale", source, temp, m, to_width, to_height);
        });
    add("ScaleFast", [=](const Image &source, const Image &dest, const Image &) {
        dest.call("ScaleFast", source, to_width, to_height);
    });
}

void add_operations(int32_t format, int32_t width, int32_t height) {
    const std::string suffix = std::string("/") + layout(format).name + "/" + std::to_string(width) + " x " +
                               std::to_string(height);
    for (const Operation &operation : operations()) {
        benchmark::RegisterBenchmark((operation.name + suffix).c_str(), [=](benchmark::State &state) {
            const Pictures pictures = {*make_image(Storage::memory, width, height, format, 1),
                                       *make_image(Storage::memory, width, height, format, 2),
                                       *make_image(Storage::memory, height, width, format, 3)};
            measure(state, int64_t{width} * height, [&] { operation.run(pictures); });
        })->Unit(benchmark::kMillisecond);
    }
    const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(height) *
                         static_cast<size_t>(layout(format).pixel_size);
    benchmark::RegisterBenchmark(("memcpy" + suffix).c_str(), [=](benchmark::State &state) {
        const Bytes from = random_bytes(bytes, 1);
        Bytes to(bytes);
        measure(state, int64_t{width} * height, [&] {
            std::memcpy(to.data(), from.data(), bytes);
            benchmark::DoNotOptimize(to.data());
            benchmark::ClobberMemory();
        });
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("memset" + suffix).c_str(), [=](benchmark::State &state) {
        Bytes to(bytes);
        measure(state, int64_t{width} * height, [&] {
            std::memset(to.data(), 5, bytes);
            benchmark::DoNotOptimize(to.data());
            benchmark::ClobberMemory();
        });
    })->Unit(benchmark::kMillisecond);
}

} // namespace
} // namespace kzb::test

int main(int count, char **arguments) {
    using namespace kzb::test;
    kzb_error error = {};
    if (kzb_module_load(KZB_TEST_MODULE, &error) == nullptr) {
        std::cerr << error.message << '\n';
        return 2;
    }
    for (int32_t format : {2, 1, 11}) {
        add_operations(format, 4000, 3000);
        add_operations(format, 256, 256);
        add_scale(format, 4000, 3000, 1000, 750);
        add_scale(format, 4000, 3000, 6000, 4500);
        add_scale(format, 4000, 3000, 3999, 2999);
    }
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
