// The class constants and the texts that declare them.
#pragma once

#include "host/values.h"

#include <cstddef>
#include <span>

namespace kzb {

// The constants of PictureKZB. Until their declarations are built, a record holds the bare name and the value.
std::span<ConstantDefinition> picture_constants();

// Rewrites the records of a table from `first` to its end: declaration "Name = value" in memory that is never freed,
// both words 0. With `prefix` on, names start with "k". Values are decimal with `decimal` on; otherwise 0 to 9 are one
// digit and all others "&h" with eight upper-case hexadecimal digits. A record whose text cannot be allocated keeps its
// name.
void build_constant_declarations(ConstantDefinition *table, int32_t count, int32_t first, bool prefix, bool decimal);

} // namespace kzb
