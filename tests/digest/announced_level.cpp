// Part of the module variant under test: tells the program that loads it which instruction set it chose.
#include "kernels/level.h"

extern "C" void kzb_test_announce_level(const char *name);

namespace {

[[maybe_unused]] const bool announced = [] {
    kzb_test_announce_level(kzb::kernels::name_of(kzb::kernels::level_in_use()));
    return true;
}();

} // namespace
