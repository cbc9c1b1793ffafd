// GraphicsMagick: effects on its own images of 16-bit channels.

#include "peer.h"

#include <magick/api.h>

#include <memory>

namespace kzb::bench {
namespace {

const char *map_of(int32_t channels) {
    return channels == 4 ? "RGBA" : channels == 3 ? "RGB" : "I";
}

struct Destroy {
    void operator()(Image *image) const { DestroyImage(image); }
};
using Owned = std::unique_ptr<Image, Destroy>;

Image *image_of(const Raster &raster) {
    ExceptionInfo exception;
    GetExceptionInfo(&exception);
    std::string packed;
    for (int32_t y = 0; y < raster.height; ++y)
        packed.append(reinterpret_cast<const char *>(raster.row(y)), raster.used_row_bytes());
    Image *image = ConstituteImage(static_cast<unsigned long>(raster.width), static_cast<unsigned long>(raster.height),
                                   map_of(raster.channels), CharPixel, packed.data(), &exception);
    DestroyExceptionInfo(&exception);
    return image;
}

// The middle of the image, where it is larger than the raster.
void export_image(const Image *image, const Raster &raster) {
    if (image->columns < static_cast<unsigned long>(raster.width) ||
        image->rows < static_cast<unsigned long>(raster.height))
        return;
    const long left = (static_cast<long>(image->columns) - raster.width) / 2;
    const long top = (static_cast<long>(image->rows) - raster.height) / 2;
    ExceptionInfo exception;
    GetExceptionInfo(&exception);
    for (int32_t y = 0; y < raster.height; ++y)
        DispatchImage(image, left, top + y, static_cast<unsigned long>(raster.width), 1, map_of(raster.channels),
                      CharPixel, raster.row(y), &exception);
    DestroyExceptionInfo(&exception);
}

using Change = std::function<void(Image *)>;
using Make = std::function<Image *(const Image *, ExceptionInfo *)>;

Change change_of(const std::string &name, const Parameters &p) {
    if (name == "gamma") return [text = std::to_string(p.gamma)](Image *image) { GammaImage(image, text.c_str()); };
    if (name == "negate") return [](Image *image) { NegateImage(image, MagickFalse); };
    if (name == "normalize") return [](Image *image) { NormalizeImage(image); };
    return {};
}

FilterTypes filter_of(Kernel kernel) {
    switch (kernel) {
    case Kernel::triangle:
        return TriangleFilter;
    case Kernel::box:
        return BoxFilter;
    case Kernel::mitchell:
        return MitchellFilter;
    case Kernel::lanczos3:
    case Kernel::lanczos8:
        return LanczosFilter;
    default:
        return CatromFilter;
    }
}

Make make_of(const std::string &name, const Task &task) {
    const Parameters p = task.parameters;
    const auto width = static_cast<unsigned long>(task.destination.width);
    const auto height = static_cast<unsigned long>(task.destination.height);
    using Info = ExceptionInfo *;
    // To two levels, on a copy: what has been dithered once would be left alone.
    if (name == "ordered dither")
        return [](const Image *image, Info e) {
            Image *copy = CloneImage(image, 0, 0, 1, e);
            if (copy != nullptr && RandomChannelThresholdImage(copy, "all", "4x4", e)) SyncImage(copy);
            return copy;
        };
    if (name == "oil") return [=](const Image *image, Info e) { return OilPaintImage(image, p.range, e); };
    if (name == "spread")
        return [=](const Image *image, Info e) { return SpreadImage(image, static_cast<unsigned int>(p.range), e); };
    if (name == "emboss") return [](const Image *image, Info e) { return EmbossImage(image, 1, 0.5, e); };
    if (name == "edge") return [](const Image *image, Info e) { return EdgeImage(image, 1, e); };
    if (name == "rotate") return [=](const Image *image, Info e) { return RotateImage(image, -p.angle, e); };
    if (name == "convolve")
        return [=](const Image *image, Info e) {
            double weights[25];
            for (size_t i = 0; i < 25; ++i) weights[i] = p.weights[i] * p.factor;
            return ConvolveImage(image, 5, weights, e);
        };
    if (name == "sample" && p.kernel == Kernel::nearest)
        return [=](const Image *image, Info e) { return SampleImage(image, width, height, e); };
    if (name == "resize" && p.kernel != Kernel::nearest)
        return
            [=](const Image *image, Info e) { return ResizeImage(image, width, height, filter_of(p.kernel), 1.0, e); };
    return {};
}

class GraphicsMagick : public Peer {
public:
    GraphicsMagick() {
        InitializeMagick(nullptr);
        SetMagickResourceLimit(ThreadsResource, 1);
    }
    std::string version() const override { return MagickLibVersionText; }

    Work prepare(const std::string &name, const Task &task) override {
        const std::shared_ptr<Image> source(image_of(task.source), &DestroyImage);
        if (!source) return {};
        const auto &colour = task.parameters.colour;
        source->background_color.red = ScaleCharToQuantum(colour[0]);
        source->background_color.green = ScaleCharToQuantum(colour[1]);
        source->background_color.blue = ScaleCharToQuantum(colour[2]);
        const Raster d = task.destination;
        if (const Change change = change_of(name, task.parameters))
            return {[=] { change(source.get()); }, [=] { export_image(source.get(), d); }};
        const Make make = make_of(name, task);
        if (!make) return {};
        auto result = std::make_shared<Owned>();
        return {[=] {
                    ExceptionInfo exception;
                    GetExceptionInfo(&exception);
                    result->reset(make(source.get(), &exception));
                    DestroyExceptionInfo(&exception);
                },
                [=] {
                    if (*result) export_image(result->get(), d);
                }};
    }
};

} // namespace
} // namespace kzb::bench

KZB_BENCH_PEER {
    static kzb::bench::GraphicsMagick peer;
    return &peer;
}
