// Arguments from the fuzzer's bytes, by declared type.
#pragma once

#include "module.h"
#include "world.h"

namespace kzb::fuzz {

// A number, a boolean, a colour or an array of integers.
Value plain_argument(Feed &feed, const kzb_parameter &parameter);

// Bytes that a value assigned to a method must have: the setters read as many as the image takes in the named layout.
size_t assigned_size(const Method &method, const Shape &shape, const std::vector<Value> &arguments);

} // namespace kzb::fuzz
