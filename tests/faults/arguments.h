// Arguments for calls: images of all kinds, filled at random and paced, pictures, factories.
#pragma once

#include "faults/inspection.h"

#include <functional>

namespace kzb::test {

// Small, with a width that no row of any storage fills.
inline constexpr int32_t usual_width = 9;
inline constexpr int32_t usual_height = 5;

// Layout codes.
inline constexpr int32_t RGB = 1, RGBA = 2, RGBX = 3, ARGB = 4, BGR = 6, ABGR = 9, G = 11, GA = 12, AG = 13,
                         Scaling = 14, TwoOf3 = 16;

// From here on the same pixels again.
void restart_noise();

// All images yield at every pace.
Image in_memory(int32_t format, int32_t width = usual_width, int32_t height = usual_height);
// Over guarded memory, with an odd row size.
Image on_block(int32_t format, int32_t width = usual_width, int32_t height = usual_height);
Image in_file(int32_t format, int32_t width = usual_width, int32_t height = usual_height);
Image on_picture(int32_t depth = 32, int32_t width = usual_width, int32_t height = usual_height);
Image view_of(const Image &parent, int32_t x, int32_t y, int32_t width, int32_t height);
// The image without its noise, as a new one is.
Image blank(const Image &image);
// A new object on which no constructor has run.
Image unconstructed();

// A picture of noise; with a mask of noise, if so wanted.
Value picture(int32_t depth = 32, bool with_mask = false);

// A block of guarded memory that carries no size, and an ordinary one.
Value guarded_block(size_t size);
Value noise_block(size_t size);
Value noise_string(size_t size);
Value noise_array(size_t count);

// A factory whose handler of NewPictureKZB calls the function.
using Handler = std::function<Value(int32_t width, int32_t height, int32_t format)>;
Object factory(Handler handler);

// Installs the process's factory; clean_up() takes it away.
void set_process_factory(const Value &factory);

} // namespace kzb::test
