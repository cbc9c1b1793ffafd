// zimg: scaling of planes.

#include "peer.h"

#include <zimg.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace kzb::bench {
namespace {

struct Graph {
    ~Graph() {
        zimg_filter_graph_free(graph);
        std::free(temp);
    }
    zimg_filter_graph *graph = nullptr;
    void *temp = nullptr;
};

zimg_image_format format_of(const Raster &raster) {
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = static_cast<unsigned>(raster.width);
    format.height = static_cast<unsigned>(raster.height);
    format.pixel_type = ZIMG_PIXEL_BYTE;
    format.color_family = ZIMG_COLOR_GREY;
    format.pixel_range = ZIMG_RANGE_FULL;
    return format;
}

void choose(zimg_graph_builder_params &parameters, Kernel kernel) {
    parameters.filter_param_a = NAN;
    parameters.filter_param_b = NAN;
    parameters.resample_filter = ZIMG_RESIZE_BICUBIC;
    switch (kernel) {
    case Kernel::nearest:
    case Kernel::box:
        parameters.resample_filter = ZIMG_RESIZE_POINT;
        break;
    case Kernel::triangle:
        parameters.resample_filter = ZIMG_RESIZE_BILINEAR;
        break;
    case Kernel::lanczos3:
    case Kernel::lanczos8:
        parameters.resample_filter = ZIMG_RESIZE_LANCZOS;
        parameters.filter_param_a = kernel == Kernel::lanczos3 ? 3 : 8;
        break;
    case Kernel::mitchell:
        parameters.filter_param_a = 1.0 / 3;
        parameters.filter_param_b = 1.0 / 3;
        break;
    default:
        break;
    }
}

class Zimg : public Peer {
public:
    std::string version() const override {
        unsigned major = 0, minor = 0, micro = 0;
        zimg_get_version_info(&major, &minor, &micro);
        return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(micro);
    }

    // Takes planes, so gray alone.
    Work prepare(const std::string &name, const Task &task) override {
        if (name != "resize" || task.source.channels != 1) return {};
        const zimg_image_format from = format_of(task.source), to = format_of(task.destination);
        zimg_graph_builder_params parameters;
        zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
        choose(parameters, task.parameters.kernel);
        parameters.dither_type = ZIMG_DITHER_NONE;
        parameters.cpu_type = ZIMG_CPU_AUTO_64B;
        auto graph = std::make_shared<Graph>();
        graph->graph = zimg_filter_graph_build(&from, &to, &parameters);
        size_t temp_size = 0;
        if (graph->graph == nullptr || zimg_filter_graph_get_tmp_size(graph->graph, &temp_size) != 0) return {};
        graph->temp = std::aligned_alloc(64, (temp_size + 63) / 64 * 64);

        // Its rows begin at multiples of 64 bytes.
        const size_t stride = (task.source.used_row_bytes() + 63) / 64 * 64;
        const std::shared_ptr<uint8_t> source(
            static_cast<uint8_t *>(std::aligned_alloc(64, stride * static_cast<size_t>(task.source.height))),
            &std::free);
        for (int32_t y = 0; y < task.source.height; ++y)
            std::memcpy(source.get() + stride * static_cast<size_t>(y), task.source.row(y),
                        task.source.used_row_bytes());
        return {[=, destination = task.destination] {
                    zimg_image_buffer_const in = {};
                    zimg_image_buffer out = {};
                    in.version = ZIMG_API_VERSION;
                    out.version = ZIMG_API_VERSION;
                    in.plane[0] = {source.get(), static_cast<ptrdiff_t>(stride), ZIMG_BUFFER_MAX};
                    out.plane[0] = {destination.bytes, static_cast<ptrdiff_t>(destination.row_bytes), ZIMG_BUFFER_MAX};
                    zimg_filter_graph_process(graph->graph, &in, &out, graph->temp, nullptr, nullptr, nullptr, nullptr);
                },
                {}};
    }
};

} // namespace
} // namespace kzb::bench

KZB_BENCH_PEER {
    static kzb::bench::Zimg peer;
    return &peer;
}
