// The notes by subject.
#pragma once

#include "method_notes.h"

namespace kzb::cli {

std::span<const Family> filter_families();
std::span<const Family> geometry_families();
std::span<const Family> image_families();

} // namespace kzb::cli
