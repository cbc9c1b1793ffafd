// How often each brightness occurs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kzb::kernels {

using BrightnessCounts = std::array<int64_t, 256>;

// Counts the brightness of pixels, row by row: 0.177 red + 0.813 green + 0.01 blue in double precision, truncated.
class BrightnessCounter {
public:
    // For pixels of `step` bytes, from the addresses of the first one's channels on.
    void count(const uint8_t *red, const uint8_t *green, const uint8_t *blue, size_t step, size_t pixels);

    BrightnessCounts counts() const;

private:
    // Pixels side by side are often equally bright, and a count that is raised waits for the one before to be stored.
    std::array<BrightnessCounts, 4> parts_ = {};
};

} // namespace kzb::kernels
