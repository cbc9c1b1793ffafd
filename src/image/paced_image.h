// An image in the hands of a long operation.
#pragma once

#include "host/yield.h"
#include "image/record.h"

namespace kzb {

// An image as an operation met it, paced, and looked at again after each yield.
class PacedImage {
public:
    explicit PacedImage(ImageRecord &image) : image_(image), storage_(image.storage_id) {}

    // Paces the image when its YieldTicks is positive. False: user code has meanwhile closed the image, or built it
    // anew, and the operation must stop.
    [[nodiscard]] bool pace() {
        if (image_.YieldTicks > 0) kzb::pace(static_cast<uint32_t>(image_.YieldTicks), image_.last_yield_tick);
        return unchanged();
    }

    // Whether the image is still usable and has the storage that the operation met.
    [[nodiscard]] bool unchanged() const { return usable(image_) && image_.storage_id == storage_; }

private:
    ImageRecord &image_;
    uint64_t storage_;
};

// Whether an operation that paces `image` row by row may take rows that follow each other in memory all at once:
// nothing happens between them.
inline bool rows_at_once(const ImageRecord &image) {
    return image.YieldTicks <= 0 && !image.IsMapping;
}

} // namespace kzb
