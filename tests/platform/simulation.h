// Control over the simulated system: what there is, which call fails, and what is left.
#pragma once

#include <Carbon/Carbon.h>

#include <string>
#include <vector>

namespace kzb::test::simulated {

// Forgets everything.
void reset();

// Makes a reference to a path: the item's own one.
FSRef reference_to(const std::u16string &path);
FSSpec older_reference_of(const std::u16string &path);

// The call of that name (the n-th of them, counted from 1, since reset()) fails, as the system's would.
void fail(const std::string &function, int nth = 1);

// The names of all calls since reset(), in order.
const std::vector<std::string> &calls();

// Objects and worlds that are alive, and pixel maps that are locked. Wrong releases throw no exception but are counted
// here too: an object that was released too often, used after its release, or a map unlocked too often.
struct Left {
    int objects = 0, worlds = 0, locks = 0, mistakes = 0;
    bool operator==(const Left &) const = default;
};
Left left();

// A world of the system's own, as a picture of the host has it, filled with pixels.
GWorldPtr world_of(int32_t width, int32_t height, int16_t depth);

inline uint32_t ticks = 0;

} // namespace kzb::test::simulated
