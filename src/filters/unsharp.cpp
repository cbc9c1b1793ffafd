#include "filters/unsharp.h"

#include "image/paced_image.h"
#include "image/packed_rows.h"
#include "image/storage.h"
#include "kernels/sharpen.h"

namespace kzb {

namespace {

void sharpen_plainly(ImageRecord &image, ImageRecord &reference, const Channels &channels,
                     const kernels::Sharpening &sharpening) {
    const ChannelOffsets offsets = offsets_of(image, channels);
    const ChannelOffsets reference_offsets = offsets_of(reference, channels);
    for (int32_t y = 0; y < image.Height; ++y) {
        for (int32_t x = 0; x < image.Width; ++x) {
            for (size_t i = 0; i < channels.size(); ++i) {
                const uint8_t *read = channel_at(reference, x, y, reference_offsets[i]);
                if (read == nullptr) continue;
                const uint8_t b = *read;
                if (uint8_t *a = channel_at(image, x, y, offsets[i])) *a = sharpening(*a, b);
            }
        }
    }
}

// False, with nothing done, when there is no memory for it.
bool sharpen_rows(ImageRecord &image, ImageRecord &reference, const Channels &channels,
                  const kernels::Sharpening &sharpening) {
    const kernels::SharpeningSteps steps(sharpening);
    PackedRows rows(image, channels, image.Width, false);
    PackedRows references(reference, channels, image.Width, false);
    if (!rows || !references) return false;
    for (int32_t y = 0; y < image.Height; ++y) {
        const uint8_t *row = references.read(y);
        uint8_t *target = rows.read(y) == nullptr ? nullptr : rows.place(y);
        if (row == nullptr || target == nullptr) break;
        kernels::sharpen(target, row, steps, rows.bytes());
        if (!rows.finish(y)) break;
    }
    return true;
}

bool alike(const ImageRecord &a, const ImageRecord &b) {
    return a.Valid && b.Valid && a.Width == b.Width && a.Height == b.Height && a.ImageFormat == b.ImageFormat;
}

} // namespace

Boolean unsharp_filter(ImageObject object, ImageObject origpixels, double amount, int32_t threshold) {
    if (origpixels == nullptr) return 0;
    ImageRecord &image = *record_of(object);
    ImageRecord &reference = *record_of(origpixels);
    PacedImage paced_image(image);
    PacedImage paced_reference(reference);
    if (!alike(image, reference) || !usable(image) || !paced_image.pace()) return 0;
    if (!usable(reference) || !paced_reference.pace() || !paced_image.unchanged()) return 0;

    const kernels::Sharpening sharpening = {amount * 4.0 + 1.0, threshold};
    const Channels channels = channels_of(image);
    if (channels.size() == 0 || image.Width <= 0) return 1;
    if (rows_may_run(reference, image, channels, image.Width, image.Height))
        return sharpen_rows(image, reference, in_byte_order(channels, image), sharpening);
    sharpen_plainly(image, reference, channels, sharpening);
    return 1;
}

} // namespace kzb
