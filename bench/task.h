// What a peer is asked to do: pictures as plain bytes, and what the operation takes beside them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kzb::bench {

// Bytes of red, green, blue, alpha (4 channels), red, green, blue (3) or gray (1). Owned by somebody else.
struct Raster {
    uint8_t *bytes = nullptr;
    int32_t width = 0, height = 0, channels = 0;
    size_t row_bytes = 0;

    uint8_t *row(int32_t y) const { return bytes + static_cast<size_t>(y) * row_bytes; }
    size_t used_row_bytes() const { return static_cast<size_t>(width) * static_cast<size_t>(channels); }
};

enum class Kernel : uint8_t { none, triangle, box, lanczos3, lanczos8, mitchell, poly3, cubic, nearest };

struct Parameters {
    std::array<uint8_t, 256> table = {};  // of a point operation
    std::array<int32_t, 25> weights = {}; // 5 x 5, skipped cells as 0; the sum is multiplied by `factor`
    double factor = 1;
    double gamma = 1;
    double radius = 0;
    int32_t iterations = 1;
    Kernel kernel = Kernel::none;
    double angle = 0; // degrees, counter-clockwise
    int32_t levels = 0, range = 0;
    std::array<uint8_t, 4> colour = {};
};

struct Task {
    Raster source, destination;
    // The operation changes the destination's own pixels, which were the source's when it first ran.
    bool in_place = false;
    Parameters parameters;
};

} // namespace kzb::bench
