// What the host learns of the module: two classes with their properties, methods, constants and one event.
#pragma once

#include <cstdint>

namespace kzb {

// Registers PictureKZB, then PictureFactoryKZB. Gives what the host returned for the latter.
int32_t register_classes();

} // namespace kzb
