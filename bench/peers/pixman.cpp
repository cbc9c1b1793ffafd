// pixman: copies, fills and transformed copies.

#include "peer.h"

#include <pixman.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace kzb::bench {
namespace {

using Picture = std::shared_ptr<pixman_image_t>;

// The library names channels from the highest byte of a little-endian word.
pixman_format_code_t format_of(int32_t channels, bool swapped) {
    if (channels == 1) return PIXMAN_a8;
    if (channels == 3) return swapped ? PIXMAN_r8g8b8 : PIXMAN_b8g8r8;
    return swapped ? PIXMAN_a8r8g8b8 : PIXMAN_a8b8g8r8;
}

Picture picture_of(const Raster &raster, bool swapped = false) {
    return {pixman_image_create_bits(format_of(raster.channels, swapped), raster.width, raster.height,
                                     reinterpret_cast<uint32_t *>(raster.bytes), static_cast<int>(raster.row_bytes)),
            &pixman_image_unref};
}

void turn(pixman_image_t *image, const Raster &source, int quarters) {
    pixman_transform_t transform;
    pixman_transform_init_identity(&transform);
    const pixman_fixed_t w = pixman_int_to_fixed(source.width), h = pixman_int_to_fixed(source.height);
    // From the destination's coordinates to the source's.
    const int c = quarters == 2 ? -1 : 0, s = quarters == 1 ? 1 : quarters == 3 ? -1 : 0;
    transform.matrix[0][0] = pixman_int_to_fixed(c);
    transform.matrix[0][1] = pixman_int_to_fixed(-s);
    transform.matrix[1][0] = pixman_int_to_fixed(s);
    transform.matrix[1][1] = pixman_int_to_fixed(c);
    transform.matrix[0][2] = quarters == 1 || quarters == 2 ? w : 0;
    transform.matrix[1][2] = quarters == 3 || quarters == 2 ? h : 0;
    pixman_image_set_transform(image, &transform);
}

pixman_kernel_t kernel_of(Kernel kernel) {
    switch (kernel) {
    case Kernel::box:
        return PIXMAN_KERNEL_BOX;
    case Kernel::triangle:
        return PIXMAN_KERNEL_LINEAR;
    case Kernel::lanczos3:
    case Kernel::lanczos8:
        return PIXMAN_KERNEL_LANCZOS3;
    default:
        return PIXMAN_KERNEL_CUBIC;
    }
}

void scale(pixman_image_t *image, const Raster &from, const Raster &to, Kernel kernel) {
    const double across = static_cast<double>(from.width) / to.width,
                 down = static_cast<double>(from.height) / to.height;
    pixman_transform_t transform;
    pixman_transform_init_scale(&transform, pixman_double_to_fixed(across), pixman_double_to_fixed(down));
    pixman_image_set_transform(image, &transform);
    pixman_image_set_repeat(image, PIXMAN_REPEAT_PAD);
    if (kernel == Kernel::nearest) {
        pixman_image_set_filter(image, PIXMAN_FILTER_NEAREST, nullptr, 0);
        return;
    }
    int count = 0;
    const pixman_kernel_t chosen = kernel_of(kernel);
    const auto reconstruct = across > 1 ? PIXMAN_KERNEL_IMPULSE : chosen,
               sample = across > 1 ? chosen : PIXMAN_KERNEL_IMPULSE;
    pixman_fixed_t *values =
        pixman_filter_create_separable_convolution(&count, pixman_double_to_fixed(across), pixman_double_to_fixed(down),
                                                   reconstruct, reconstruct, sample, sample, 4, 4);
    pixman_image_set_filter(image, PIXMAN_FILTER_SEPARABLE_CONVOLUTION, values, count);
    std::free(values);
}

class Pixman : public Peer {
public:
    std::string version() const override { return pixman_version_string(); }

    Work prepare(const std::string &name, const Task &task) override {
        const Raster s = task.source, d = task.destination;
        if (name == "fill") {
            if (d.channels == 3) return {};
            uint32_t value = task.parameters.colour[0];
            if (d.channels == 4) std::memcpy(&value, task.parameters.colour.data(), 4);
            return {[=] {
                        pixman_fill(reinterpret_cast<uint32_t *>(d.bytes), static_cast<int>(d.row_bytes / 4),
                                    d.channels * 8, 0, 0, d.width, d.height, value);
                    },
                    {}};
        }
        const Picture from = picture_of(s), to = picture_of(d, name == "swap");
        if (!from || !to) return {};
        if (name.starts_with("turn "))
            turn(from.get(), s, std::stoi(name.substr(5)));
        else if (name == "scale")
            scale(from.get(), s, d, task.parameters.kernel);
        else if (name != "copy" && name != "swap")
            return {};
        return {[=] {
                    pixman_image_composite32(PIXMAN_OP_SRC, from.get(), nullptr, to.get(), 0, 0, 0, 0, 0, 0, d.width,
                                             d.height);
                },
                {}};
    }
};

} // namespace
} // namespace kzb::bench

KZB_BENCH_PEER {
    static kzb::bench::Pixman peer;
    return &peer;
}
