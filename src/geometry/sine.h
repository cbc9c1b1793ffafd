// The sine, the same on every machine.
#pragma once

namespace kzb {

// The sine of an angle in radians, of magnitude at most 8192, rounded to the nearest double. The library's own sine
// differs in the last bit between processors, and a filter's weights carry that into the bytes of flat areas.
double sine(double angle);

} // namespace kzb
