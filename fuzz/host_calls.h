// The module as programs call it. What the host refuses as the caller's mistake is a mistake of the fuzzer and ends the
// process.
#pragma once

#include "fixtures/host.h"

#include <vector>

namespace kzb::fuzz {

using test::Value;

// `New PictureKZB(arguments)`; without arguments no constructor runs.
Value new_image(const std::vector<Value> &arguments);

// `object.method(arguments)`, whatever it answers; nil when it raised, and for nil.
Value call(const Value &object, const char *method, const std::vector<Value> &arguments);
Value call_static(const char *class_name, const char *method, const std::vector<Value> &arguments);
void assign(const Value &object, const char *method, const std::vector<Value> &arguments, const Value &value);
Value get(const Value &object, const char *property);
void set(const Value &object, const char *property, const Value &value);

// What an image says of itself; zeros for nil.
struct Shape {
    bool valid = false, in_file = false;
    int32_t width = 0, height = 0, format = 0, pixel_size = 0, row_size = 0, row_offset = 0;
};
Shape shape_of(const Value &image);

// Bytes of a pixel of a layout; 0 for an unknown one.
int32_t pixel_size(int32_t format);

} // namespace kzb::fuzz
