// Holds the module's results against the tests' plain references.
#pragma once

#include "case.h"

namespace kzb::bench {

// Pictures for a case: the source, and the destination where the form has one, as it must be before a first run.
Pictures pictures_for(const Case &which, const test::Image &source);
void reset_destination(const Case &which, const Pictures &pictures);

// Holds a case for sources of this layout and size, with a passed destination and with nil. The whole picture is held
// where it is small, where it is the layout of fewest bytes and the reference is fast enough, and where `always_whole`
// is on; else strips as wide and as high as the picture. Gives what was held, or "WRONG: ..." with the first
// difference.
std::string hold(const Case &which, int32_t format, Extent size, bool always_whole);

} // namespace kzb::bench
