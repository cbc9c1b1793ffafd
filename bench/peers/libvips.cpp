// libvips, from the library file that the build names: Debian's, and a newer one built with vector instructions.
//
// Only functions that both have are used, by name, so that no header has to fit.

#include "peer.h"

#include <dlfcn.h>

#include <cmath>
#include <cstring>
#include <iostream>
#include <memory>
#include <type_traits>
#include <vector>

namespace kzb::bench {
namespace {

struct VipsImage;

// Values of the library's enumerations.
constexpr int format_uchar = 0, precision_integer = 0;
enum Direction { horizontal, vertical };
enum Turn { d90 = 1, d180, d270 };
enum VipsKernel { nearest, linear, cubic, mitchell, lanczos2, lanczos3 };

struct Functions {
    int (*vips_init)(const char *) = nullptr;
    const char *(*vips_version_string)() = nullptr;
    void (*vips_concurrency_set)(int) = nullptr;
    void (*vips_cache_set_max)(int) = nullptr;
    int (*vips_call)(const char *, ...) = nullptr;
    VipsImage *(*vips_image_new_from_memory)(const void *, size_t, int, int, int, int) = nullptr;
    VipsImage *(*vips_image_new_matrix_from_array)(int, int, const double *, int) = nullptr;
    void (*vips_image_set_double)(VipsImage *, const char *, double) = nullptr;
    void *(*vips_image_write_to_memory)(VipsImage *, size_t *) = nullptr;
    int (*vips_image_get_width)(const VipsImage *) = nullptr;
    int (*vips_image_get_height)(const VipsImage *) = nullptr;
    int (*vips_image_get_bands)(const VipsImage *) = nullptr;
    int (*vips_image_write)(VipsImage *, VipsImage *) = nullptr;
    void (*vips_error_clear)() = nullptr;
    void (*g_object_unref)(void *) = nullptr;
    void (*g_free)(void *) = nullptr;

    bool load(void *library) {
        bool complete = true;
        const auto find = [&](auto &function, const char *name) {
            function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, name));
            complete = complete && function != nullptr;
        };
        find(vips_init, "vips_init");
        find(vips_version_string, "vips_version_string");
        find(vips_concurrency_set, "vips_concurrency_set");
        find(vips_cache_set_max, "vips_cache_set_max");
        find(vips_call, "vips_call");
        find(vips_image_new_from_memory, "vips_image_new_from_memory");
        find(vips_image_new_matrix_from_array, "vips_image_new_matrix_from_array");
        find(vips_image_set_double, "vips_image_set_double");
        find(vips_image_write_to_memory, "vips_image_write_to_memory");
        find(vips_image_get_width, "vips_image_get_width");
        find(vips_image_get_height, "vips_image_get_height");
        find(vips_image_get_bands, "vips_image_get_bands");
        find(vips_image_write, "vips_image_write");
        find(vips_error_clear, "vips_error_clear");
        find(g_object_unref, "g_object_unref");
        find(g_free, "g_free");
        return complete;
    }
};
Functions vips;

// An image of the library, given back at the end.
struct Unref {
    void operator()(VipsImage *image) const { vips.g_object_unref(image); }
};
using Owned = std::unique_ptr<VipsImage, Unref>;

// Builds the pipeline; nothing is computed yet.
using Pipeline = std::function<VipsImage *(VipsImage *source)>;

int kernel_of(Kernel kernel) {
    switch (kernel) {
    case Kernel::nearest:
    case Kernel::box:
        return nearest;
    case Kernel::triangle:
        return linear;
    case Kernel::mitchell:
        return mitchell;
    case Kernel::lanczos3:
    case Kernel::lanczos8:
        return lanczos3;
    default:
        return cubic;
    }
}

class Libvips : public Peer {
public:
    std::string version() const override { return vips.vips_version_string(); }

    Work prepare(const std::string &name, const Task &task) override {
        const Pipeline build = pipeline(name, task);
        if (!build) return {};
        // Its images from memory have rows without space between them.
        auto pixels = std::make_shared<std::vector<uint8_t>>();
        const Raster &source = task.source;
        for (int32_t y = 0; y < source.height; ++y)
            pixels->insert(pixels->end(), source.row(y), source.row(y) + source.used_row_bytes());
        const Raster &destination = task.destination;
        auto result = std::make_shared<std::vector<uint8_t>>(destination.used_row_bytes() *
                                                             static_cast<size_t>(destination.height));
        const auto run = [=] {
            const Owned in(image_over(*pixels, source));
            const Owned out(build(in.get()));
            if (!out || vips.vips_image_get_width(out.get()) != destination.width ||
                vips.vips_image_get_height(out.get()) != destination.height ||
                vips.vips_image_get_bands(out.get()) != destination.channels) {
                vips.vips_error_clear();
                return false;
            }
            const Owned target(image_over(*result, destination));
            return vips.vips_image_write(out.get(), target.get()) == 0;
        };
        if (!run()) return {};
        return {run, [=] {
                    for (int32_t y = 0; y < destination.height; ++y)
                        std::memcpy(destination.row(y),
                                    result->data() + static_cast<size_t>(y) * destination.used_row_bytes(),
                                    destination.used_row_bytes());
                }};
    }

private:
    static VipsImage *image_over(const std::vector<uint8_t> &bytes, const Raster &shape) {
        return vips.vips_image_new_from_memory(bytes.data(), bytes.size(), shape.width, shape.height, shape.channels,
                                               format_uchar);
    }

    // An operation by name on one image.
    template <class... Arguments> static Pipeline call(const char *name, Arguments... arguments) {
        return [=](VipsImage *source) {
            VipsImage *out = nullptr;
            vips.vips_call(name, source, &out, arguments..., nullptr);
            return out;
        };
    }

    static Pipeline pipeline(const std::string &name, const Task &task) {
        const Parameters &p = task.parameters;
        if (name == "maplut")
            return [table = p.table](VipsImage *source) {
                const Owned look_up(
                    vips.vips_image_new_from_memory(table.data(), table.size(), 256, 1, 1, format_uchar));
                VipsImage *out = nullptr;
                vips.vips_call("maplut", source, &out, look_up.get(), nullptr);
                return out;
            };
        if (name == "invert") return call("invert");
        if (name == "copy") return call("copy");
        if (name == "flip columns") return call("flip", static_cast<int>(horizontal));
        if (name == "flip rows") return call("flip", static_cast<int>(vertical));
        if (name == "rot 180") return call("rot", static_cast<int>(d180));
        if (name == "rot 90") return call("rot", static_cast<int>(d270));
        if (name == "rot 270") return call("rot", static_cast<int>(d90));
        if (name == "gaussblur") {
            // As wide as the boxes one after the other.
            const double edge = 2 * p.radius + 1;
            return call("gaussblur", std::sqrt((edge * edge - 1) / 12 * p.iterations));
        }
        if (name == "conv")
            return [p](VipsImage *source) {
                double weights[25];
                for (size_t i = 0; i < 25; ++i) weights[i] = p.weights[i];
                const Owned mask(vips.vips_image_new_matrix_from_array(5, 5, weights, 25));
                vips.vips_image_set_double(mask.get(), "scale", 1 / p.factor);
                VipsImage *out = nullptr;
                vips.vips_call("conv", source, &out, mask.get(), "precision", precision_integer, nullptr);
                return out;
            };
        if (name == "sobel") return call("sobel");
        if (name == "resize" || name == "shrink") {
            const double across = static_cast<double>(task.destination.width) / task.source.width;
            const double down = static_cast<double>(task.destination.height) / task.source.height;
            if (name == "resize") return call("resize", across, "vscale", down, "kernel", kernel_of(p.kernel));
            if (p.kernel == Kernel::box && across < 0.5) return call("shrink", 1 / across, 1 / down);
        }
        return {};
    }
};

} // namespace
} // namespace kzb::bench

KZB_BENCH_PEER {
    using namespace kzb::bench;
    void *library = dlopen(KZB_BENCH_VIPS, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    if (library == nullptr) {
        std::cerr << dlerror() << '\n';
        return nullptr;
    }
    if (!vips.load(library) || vips.vips_init("bench") != 0) return nullptr;
    vips.vips_concurrency_set(1);
    vips.vips_cache_set_max(0);
    static Libvips peer;
    return &peer;
}
