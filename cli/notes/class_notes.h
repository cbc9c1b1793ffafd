// What the registration tables do not tell about properties, shared methods, events and kinds of constants.
#pragma once

#include <span>
#include <string_view>

namespace kzb::cli {

// One sentence on a property of PictureKZB; nil: none is known.
const char *note_on_property(std::string_view property);

// One sentence on a class, and on a shared method or an event of one.
const char *note_on_class(std::string_view class_name);
const char *note_on_shared(std::string_view name);

struct ConstantGroup {
    const char *prefix; // of the names
    const char *title;
    const char *sentence;
};
std::span<const ConstantGroup> constant_groups();

} // namespace kzb::cli
