// Filtered and fast scaling.

#include "case.h"
#include "geometry/plain_scale.h"

namespace kzb::bench {

using namespace test;

namespace {

struct Named {
    const char *name;
    int32_t mode;
    Kernel kernel;
};
constexpr Named kernels[] = {{"Triangle", 1, Kernel::triangle}, {"Box", 2, Kernel::box},
                             {"Lanczos3", 3, Kernel::lanczos3}, {"Lanczos8", 4, Kernel::lanczos8},
                             {"Mitchell", 5, Kernel::mitchell}, {"Poly3", 6, Kernel::poly3},
                             {"Cubic", 7, Kernel::cubic}};

constexpr Extent sizes[] = {{1000, 750}, {6000, 4500}, {3999, 2999}};

std::string text_of(Extent size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

Case filtered(const Named &kernel, Extent size) {
    return {.name = std::string("Scale ") + kernel.name + " to " + text_of(size),
            .form = Form::drawn,
            .run =
                [mode = kernel.mode](const Pictures &p) {
                    const Image dest(p.dest);
                    return dest.call("Scale", p.source, p.temp, mode, dest.width(), dest.height());
                },
            .reference =
                [mode = kernel.mode](const PlainImage &source, const PlainImage &dest) {
                    const auto temp = PlainImage::in_memory(dest.width, source.height, scaling_format);
                    plain_scale(source, temp, dest, mode, dest.width, dest.height);
                },
            .held_whole = false,
            .parameters = {.kernel = kernel.kernel},
            .targets = {1.0, 2.0},
            .scaled = size,
            .uses_temp = true};
}

Case fast(Extent size) {
    return {.name = "ScaleFast to " + text_of(size),
            .form = Form::drawn,
            .run =
                [](const Pictures &p) {
                    const Image dest(p.dest);
                    return dest.call("ScaleFast", p.source, dest.width(), dest.height());
                },
            .reference = [](const PlainImage &source,
                            const PlainImage &dest) { plain_scale_fast(source, dest, dest.width, dest.height); },
            .held_whole = false,
            .parameters = {.kernel = Kernel::nearest},
            .targets = {1.0, 1.0},
            .scaled = size};
}

} // namespace

void add_scale_cases(std::vector<Case> &cases) {
    for (Extent size : sizes) {
        for (const Named &kernel : kernels) cases.push_back(filtered(kernel, size));
        cases.push_back(fast(size));
    }
}

} // namespace kzb::bench
