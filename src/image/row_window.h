// A second window on an image's rows.
#pragma once

#include "image/record.h"

namespace kzb {

// Rows of an image that are read beside others of the same image. For a file-backed image it maps blocks of its own, so
// that loops whose rows lie far apart do not map a block per row; for others it is the image itself. Lives within one
// operation; once the image is closed it must not be read.
class RowWindow {
public:
    explicit RowWindow(ImageRecord &image);
    ~RowWindow();
    RowWindow(const RowWindow &) = delete;
    RowWindow &operator=(const RowWindow &) = delete;

    // The image to read through: its row addresses are void at the next call for this window alone.
    ImageRecord &image() { return window_.IsMapping ? window_ : image_; }

private:
    ImageRecord &image_;
    ImageRecord window_;
};

} // namespace kzb
