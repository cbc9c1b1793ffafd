// Values moved away from a reference.
#pragma once

#include "kernels/row_function.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace kzb::kernels {

// How far a value goes: `factor` times its difference to the reference, unless the difference is below the threshold.
struct Sharpening {
    double factor;
    int32_t threshold;

    // Truncated and kept within 0 to 255; 0 where the factor makes no number.
    uint8_t operator()(uint8_t value, uint8_t reference) const {
        const int32_t difference = value - reference;
        double moved = difference * factor + reference;
        moved = moved > 0 ? moved : 0;
        moved = moved < 255 ? moved : 255;
        const auto whole = static_cast<int32_t>(moved);
        return static_cast<uint8_t>(std::abs(difference) < threshold ? value : whole);
    }
};

// The same in whole numbers: a value becomes its reference plus a step that depends on the difference alone.
struct SharpeningSteps {
    Sharpening sharpening;
    // Whether steps give the same. They do unless a product lies so close below a whole number that a sum with the
    // reference is rounded to it.
    bool exact;
    // Whether no step leads across the reference: steps are then +away[0][d] for a difference d and -away[1][d] for -d.
    bool outward;
    std::array<int16_t, 511> steps; // for a difference of -255 and on
    std::array<std::array<uint8_t, 256>, 2> away;

    explicit SharpeningSteps(const Sharpening &by);
};

// values[i] = sharpening(values[i], references[i]) for i below count. The two may be the same bytes.
extern const RowFunction<void(uint8_t *values, const uint8_t *references, const SharpeningSteps &steps, size_t count)>
    sharpen;

} // namespace kzb::kernels
