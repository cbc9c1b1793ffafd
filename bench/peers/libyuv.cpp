// libyuv.

#include "peer.h"

#include <libyuv.h>

#include <cstdlib>
#include <memory>

namespace kzb::bench {
namespace {

int stride(const Raster &raster) {
    return static_cast<int>(raster.row_bytes);
}

libyuv::FilterMode filter_of(Kernel kernel) {
    switch (kernel) {
    case Kernel::nearest:
        return libyuv::kFilterNone;
    case Kernel::box:
        return libyuv::kFilterBox;
    default:
        return libyuv::kFilterBilinear;
    }
}

class Libyuv : public Peer {
public:
    std::string version() const override { return std::to_string(LIBYUV_VERSION); }

    Work prepare(const std::string &name, const Task &task) override {
        const Parameters &p = task.parameters;
        const Raster s = task.source, d = task.destination;
        const int w = s.width, h = s.height, channels = s.channels;
        if (name == "copy" && channels != 3) return {copy(s, d, h), {}};
        if (name == "copy upside down" && channels != 3) return {copy(s, d, -h), {}};
        if (name == "fill" && channels == 4)
            return {[=, value = packed(p.colour)] { libyuv::ARGBRect(d.bytes, stride(d), 0, 0, w, h, value); }, {}};
        if (name == "fill" && channels == 1)
            return {[=] { libyuv::SetPlane(d.bytes, stride(d), w, h, p.colour[0]); }, {}};
        if (name == "colour table" && channels == 4) return {look_up(s, d, p), {}};
        if (name == "swap" && channels == 4)
            return {[=] { libyuv::ABGRToARGB(s.bytes, stride(s), d.bytes, stride(d), w, h); }, {}};
        if (name == "swap" && channels == 3)
            return {[=] { libyuv::RAWToRGB24(s.bytes, stride(s), d.bytes, stride(d), w, h); }, {}};
        if (name == "to gray" && channels == 4)
            return {[=] { libyuv::ABGRToJ400(s.bytes, stride(s), d.bytes, stride(d), w, h); }, {}};
        if (name == "to gray" && channels == 3)
            return {[=] { libyuv::RAWToJ400(s.bytes, stride(s), d.bytes, stride(d), w, h); }, {}};
        if (name == "mirror") return {mirror(s, d), {}};
        if (name.starts_with("rotate ") && channels != 3) {
            const auto turn = static_cast<libyuv::RotationMode>(std::stoi(name.substr(7)));
            if (channels == 4)
                return {[=] { libyuv::ARGBRotate(s.bytes, stride(s), d.bytes, stride(d), w, h, turn); }, {}};
            return {[=] { libyuv::RotatePlane(s.bytes, stride(s), d.bytes, stride(d), w, h, turn); }, {}};
        }
        if (name == "scale" && channels != 3) {
            const auto filter = filter_of(p.kernel);
            if (channels == 4)
                return {
                    [=] { libyuv::ARGBScale(s.bytes, stride(s), w, h, d.bytes, stride(d), d.width, d.height, filter); },
                    {}};
            return {
                [=] { libyuv::ScalePlane(s.bytes, stride(s), w, h, d.bytes, stride(d), d.width, d.height, filter); },
                {}};
        }
        if (name == "blur" && channels == 4 && p.iterations == 1) return {blur(s, d, static_cast<int>(p.radius)), {}};
        return {};
    }

private:
    // Bytes in memory as the library's little-endian words.
    static uint32_t packed(const std::array<uint8_t, 4> &colour) {
        return colour[0] | uint32_t{colour[1]} << 8 | uint32_t{colour[2]} << 16 | uint32_t{colour[3]} << 24;
    }

    static std::function<void()> copy(const Raster &s, const Raster &d, int height) {
        if (s.channels == 4) return [=] { libyuv::ARGBCopy(s.bytes, stride(s), d.bytes, stride(d), s.width, height); };
        return [=] { libyuv::CopyPlane(s.bytes, stride(s), d.bytes, stride(d), s.width, height); };
    }

    static std::function<void()> mirror(const Raster &s, const Raster &d) {
        if (s.channels == 4)
            return [=] { libyuv::ARGBMirror(s.bytes, stride(s), d.bytes, stride(d), s.width, s.height); };
        if (s.channels == 3)
            return [=] { libyuv::RGB24Mirror(s.bytes, stride(s), d.bytes, stride(d), s.width, s.height); };
        return [=] { libyuv::MirrorPlane(s.bytes, stride(s), d.bytes, stride(d), s.width, s.height); };
    }

    // The library's look-up works in place; the first call brings the source.
    static std::function<void()> look_up(const Raster &s, const Raster &d, const Parameters &p) {
        std::array<uint8_t, 1024> table;
        for (size_t i = 0; i < table.size(); ++i) table[i] = p.table[i / 4];
        return [=, first = true]() mutable {
            if (first) libyuv::ARGBCopy(s.bytes, stride(s), d.bytes, stride(d), s.width, s.height);
            first = false;
            libyuv::ARGBColorTable(d.bytes, stride(d), table.data(), 0, 0, d.width, d.height);
        };
    }

    static std::function<void()> blur(const Raster &s, const Raster &d, int radius) {
        // Sums of 2 * radius + 2 rows, four numbers a pixel.
        const int row = s.width * 4;
        const size_t bytes = static_cast<size_t>(row) * sizeof(int32_t) * static_cast<size_t>(2 * radius + 4);
        const std::shared_ptr<int32_t> sums(static_cast<int32_t *>(std::aligned_alloc(64, (bytes + 63) / 64 * 64)),
                                            &std::free);
        return [=] {
            libyuv::ARGBBlur(s.bytes, stride(s), d.bytes, stride(d), sums.get(), row, s.width, s.height, radius);
        };
    }
};

} // namespace
} // namespace kzb::bench

KZB_BENCH_PEER {
    static kzb::bench::Libyuv peer;
    return &peer;
}
