// The pictures that the bench works on, and their bytes.
#pragma once

#include "fixtures/plain_image.h"
#include "task.h"

namespace kzb::bench {

// The bytes of an image in memory; good as long as the image is.
Raster raster_of(const test::Image &image);

// Fills with shapes, gradients and some noise, the same everywhere for the same seed; padding stays as it is. Pictures
// that were painted lately are kept and copied.
void paint(const Raster &raster, uint32_t seed);

// A painted image in memory.
test::Image painted(int32_t width, int32_t height, int32_t format, uint32_t seed);

// The bytes of the pixels alone, row after row: of an image, or a string that holds nothing else.
test::Bytes pixels_of(const test::Value &value);
test::Bytes pixels_of(const test::PlainImage &image);
test::Bytes pixels_of(const Raster &raster);

void copy_pixels(const Raster &from, const Raster &to);

// The mean difference of bytes, alpha left out.
double mean_difference(const test::Bytes &a, const test::Bytes &b, int32_t channels);

} // namespace kzb::bench
