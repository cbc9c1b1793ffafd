#include "image/paced_image.h"

#include "host/yield.h"

namespace kzb {

bool PacedImage::pace() {
    if (image_.YieldTicks > 0) kzb::pace(static_cast<uint32_t>(image_.YieldTicks), image_.last_yield_tick);
    return unchanged();
}

} // namespace kzb
