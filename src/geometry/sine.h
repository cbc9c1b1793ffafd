// Sine, cosine and tangent, the same on every machine.
#pragma once

namespace kzb {

// Of an angle in radians, of magnitude at most 8192, rounded to the nearest double. The library's own differ in the last
// bit between processors, and a filter's weights carry that into the bytes of flat areas.
double sine(double angle);
double cosine(double angle);
double tangent(double angle);

} // namespace kzb
