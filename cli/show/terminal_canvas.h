// Pixels as a terminal draws them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kzb::cli {

struct Extent {
    int columns;
    int rows;
};

// Text that draws `width` x `height` pixels of red, green, blue and alpha in so many cells, in the best way that the
// terminal named by the environment knows; `plain`: in characters without colours.
std::string draw_in_terminal(const std::vector<uint8_t> &pixels, int width, int height, Extent cells, bool plain);

} // namespace kzb::cli
