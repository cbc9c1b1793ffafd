// libswscale: scaling and conversion.

#include "peer.h"

extern "C" {
#include <libavutil/pixfmt.h>
#include <libswscale/swscale.h>
}

#include <memory>

namespace kzb::bench {
namespace {

AVPixelFormat format_of(int32_t channels, bool swapped) {
    if (channels == 1) return AV_PIX_FMT_GRAY8;
    if (channels == 3) return swapped ? AV_PIX_FMT_BGR24 : AV_PIX_FMT_RGB24;
    return swapped ? AV_PIX_FMT_BGRA : AV_PIX_FMT_RGBA;
}

struct Filter {
    int flags;
    double parameters[2] = {SWS_PARAM_DEFAULT, SWS_PARAM_DEFAULT};
};

Filter filter_of(Kernel kernel, bool smaller) {
    switch (kernel) {
    case Kernel::nearest:
        return {SWS_POINT};
    case Kernel::box:
        return {smaller ? SWS_AREA : SWS_POINT};
    case Kernel::triangle:
        return {SWS_BILINEAR};
    case Kernel::lanczos3:
        return {SWS_LANCZOS, {3, SWS_PARAM_DEFAULT}};
    case Kernel::lanczos8:
        return {SWS_LANCZOS, {8, SWS_PARAM_DEFAULT}};
    case Kernel::mitchell:
        return {SWS_BICUBIC, {1.0 / 3, 1.0 / 3}};
    default:
        return {SWS_BICUBIC};
    }
}

class Swscale : public Peer {
public:
    std::string version() const override {
        const unsigned v = swscale_version();
        return std::to_string(v >> 16) + "." + std::to_string(v >> 8 & 255) + "." + std::to_string(v & 255);
    }

    Work prepare(const std::string &name, const Task &task) override {
        if (name != "scale" && name != "swap" && name != "to gray") return {};
        const Raster s = task.source, d = task.destination;
        const Filter filter = filter_of(name == "scale" ? task.parameters.kernel : Kernel::nearest, d.width < s.width);
        const std::shared_ptr<SwsContext> context(
            sws_getContext(s.width, s.height, format_of(s.channels, false), d.width, d.height,
                           format_of(d.channels, name == "swap"), filter.flags, nullptr, nullptr, filter.parameters),
            &sws_freeContext);
        if (!context) return {};
        return {[=] {
                    const uint8_t *const from[4] = {s.bytes};
                    uint8_t *const to[4] = {d.bytes};
                    const int from_stride[4] = {static_cast<int>(s.row_bytes)};
                    const int to_stride[4] = {static_cast<int>(d.row_bytes)};
                    sws_scale(context.get(), from, from_stride, 0, s.height, to, to_stride);
                },
                {}};
    }
};

} // namespace
} // namespace kzb::bench

KZB_BENCH_PEER {
    static kzb::bench::Swscale peer;
    return &peer;
}
