#include "geometry/sine.h"

#include "kernels/sine_series.h"

namespace kzb {

double sine(double angle) {
    return kernels::sine_of(angle, 0).high;
}

double cosine(double angle) {
    return kernels::sine_of(angle, 1).high;
}

double tangent(double angle) {
    return kernels::quotient(kernels::sine_of(angle, 0), kernels::sine_of(angle, 1)).high;
}

} // namespace kzb
