// Holds filtered scalings against the reference.
#pragma once

#include "fixtures/storages.h"
#include "geometry/plain_scale.h"

namespace kzb::test {

namespace scale_mode {
inline constexpr int32_t triangle = 1, box = 2, lanczos3 = 3, lanczos8 = 4, poly3 = 6;
}

struct Size {
    int32_t width, height;
};

// An image filled at random, each with other bytes.
Image random_image(Storage storage, Size size, int32_t format);
Image random_image(Size size, int32_t format);

// image.Scale(source, temp, mode, width, height)
bool scale(const Image &image, const Image &source, const Value &temp, int32_t mode, Size size);

// Scales and compares all bytes of the images' storages with the reference's. `temp` may be nil.
void check_scale(const Image &image, const Image &source, const Object &temp, int32_t mode, Size size,
                 const std::string &label);

// A call that must give false and change nothing.
void check_refused(const Image &image, const Image &source, const Value &temp, int32_t mode, Size size,
                   const std::string &label);

} // namespace kzb::test
