// libavfilter: filters by their text, one thread, without conversions in between.

#include "peer.h"

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
#include <libavutil/log.h>
#include <libavutil/opt.h>
}

#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

namespace kzb::bench {
namespace {

struct Graph {
    Graph() : graph(avfilter_graph_alloc()), source(av_frame_alloc()), result(av_frame_alloc()) {}
    ~Graph() {
        av_frame_free(&source);
        av_frame_free(&result);
        avfilter_graph_free(&graph);
    }
    Graph(const Graph &) = delete;
    Graph &operator=(const Graph &) = delete;

    AVFilterGraph *graph;
    AVFilterContext *in = nullptr, *out = nullptr;
    AVFrame *source, *result;
};

AVPixelFormat format_of(int32_t channels) {
    return channels == 1 ? AV_PIX_FMT_GRAY8 : channels == 3 ? AV_PIX_FMT_RGB24 : AV_PIX_FMT_RGBA;
}

bool connect(Graph &g, const Raster &s, const std::string &filter) {
    g.graph->nb_threads = 1;
    const std::string shape = "video_size=" + std::to_string(s.width) + "x" + std::to_string(s.height) +
                              ":pix_fmt=" + std::to_string(format_of(s.channels)) + ":time_base=1/25";
    if (avfilter_graph_create_filter(&g.in, avfilter_get_by_name("buffer"), "in", shape.c_str(), nullptr, g.graph) < 0)
        return false;
    if (avfilter_graph_create_filter(&g.out, avfilter_get_by_name("buffersink"), "out", nullptr, nullptr, g.graph) < 0)
        return false;
    const std::string text = "[in]" + filter + "[out]";
    AVFilterInOut *inputs = avfilter_inout_alloc(), *outputs = avfilter_inout_alloc();
    outputs->name = strdup("in");
    outputs->filter_ctx = g.in;
    inputs->name = strdup("out");
    inputs->filter_ctx = g.out;
    avfilter_graph_set_auto_convert(g.graph, AVFILTER_AUTO_CONVERT_NONE);
    const bool parsed = avfilter_graph_parse_ptr(g.graph, text.c_str(), &inputs, &outputs, nullptr) >= 0;
    avfilter_inout_free(&inputs);
    avfilter_inout_free(&outputs);
    if (!parsed || avfilter_graph_config(g.graph, nullptr) < 0) return false;
    g.source->width = s.width;
    g.source->height = s.height;
    g.source->format = format_of(s.channels);
    if (av_frame_get_buffer(g.source, 64) < 0) return false;
    for (int32_t y = 0; y < s.height; ++y)
        std::memcpy(g.source->data[0] + static_cast<ptrdiff_t>(y) * g.source->linesize[0], s.row(y),
                    s.used_row_bytes());
    return true;
}

std::string joined(const std::vector<std::string> &parts, const char *between = "") {
    std::string text;
    for (const std::string &part : parts) {
        if (!text.empty()) text.append(between);
        text.append(part);
    }
    return text;
}

std::string convolution_of(const Parameters &p) {
    std::vector<std::string> weights;
    for (int32_t weight : p.weights) weights.push_back(std::to_string(weight));
    const std::string matrix = joined(weights, " "), factor = std::to_string(p.factor);
    return joined(
        {"convolution='", joined({matrix, matrix, matrix, matrix, factor, factor, factor, factor}, ":"), "'"});
}

// The filter's text; empty where there is none for the task.
std::string text_of(const std::string &name, const Task &task) {
    const Parameters &p = task.parameters;
    const std::string radius = std::to_string(static_cast<int>(p.radius));
    if (name == "transpose 90") return "transpose=cclock";
    if (name == "transpose 270") return "transpose=clock";
    if (name == "avgblur") return joined({"avgblur=sizeX=", radius});
    if (name == "boxblur") return joined({"boxblur=", radius, ":", std::to_string(p.iterations)});
    if (name == "rotate")
        return joined({"rotate=a=-", std::to_string(p.angle * M_PI / 180), ":ow=",
                       std::to_string(task.destination.width), ":oh=", std::to_string(task.destination.height)});
    if (name == "convolution") return convolution_of(p);
    for (const char *plain : {"hflip", "negate", "sobel"})
        if (name == plain) return plain;
    return {};
}

class Avfilter : public Peer {
public:
    Avfilter() { av_log_set_level(AV_LOG_QUIET); }
    std::string version() const override {
        const unsigned v = avfilter_version();
        return std::to_string(v >> 16) + "." + std::to_string(v >> 8 & 255) + "." + std::to_string(v & 255);
    }

    Work prepare(const std::string &name, const Task &task) override {
        const std::string text = text_of(name, task);
        auto g = std::make_shared<Graph>();
        if (text.empty() || !connect(*g, task.source, text)) return {};
        const auto run = [=] {
            av_frame_unref(g->result);
            return av_buffersrc_add_frame_flags(g->in, g->source, AV_BUFFERSRC_FLAG_KEEP_REF) >= 0 &&
                   av_buffersink_get_frame(g->out, g->result) >= 0;
        };
        const Raster d = task.destination;
        if (!run() || g->result->width != d.width || g->result->height != d.height) return {};
        return {run, [=] {
                    for (int32_t y = 0; y < d.height; ++y)
                        std::memcpy(d.row(y), g->result->data[0] + static_cast<ptrdiff_t>(y) * g->result->linesize[0],
                                    d.used_row_bytes());
                }};
    }
};

} // namespace
} // namespace kzb::bench

KZB_BENCH_PEER {
    static kzb::bench::Avfilter peer;
    return &peer;
}
