#include "filters/unsharp.h"

#include "image/bytes.h"
#include "image/paced_image.h"
#include "image/storage.h"
#include "kernels/look_up.h"
#include "platform/buffer.h"

#include <cstdlib>

namespace kzb {

namespace {

// Indexed by 256 a + b, a being the image's byte and b the reference's.
void fill_table(uint8_t *table, double amount, int32_t threshold) {
    const double k = amount * 4.0 + 1.0;
    for (int32_t a = 0; a < 256; ++a) {
        for (int32_t b = 0; b < 256; ++b) {
            const int32_t d = a - b;
            *table++ = std::abs(d) < threshold ? static_cast<uint8_t>(a) : byte_from(d * k + b);
        }
    }
}

void sharpen_plainly(ImageRecord &image, ImageRecord &reference, const Channels &channels, const uint8_t *table) {
    const ChannelOffsets offsets = offsets_of(image, channels);
    const ChannelOffsets reference_offsets = offsets_of(reference, channels);
    for (int32_t y = 0; y < image.Height; ++y) {
        for (int32_t x = 0; x < image.Width; ++x) {
            for (size_t i = 0; i < channels.size(); ++i) {
                const uint8_t *read = channel_at(reference, x, y, reference_offsets[i]);
                if (read == nullptr) continue;
                const uint8_t b = *read;
                if (uint8_t *a = channel_at(image, x, y, offsets[i])) *a = table[*a * 256 + b];
            }
        }
    }
}

void sharpen(ImageRecord &image, ImageRecord &reference, const Channels &channels, const uint8_t *table) {
    for (int32_t y = 0; y < image.Height; ++y) {
        const uint8_t *row = reference.row_accessor(reference, y);
        uint8_t *target = image.row_accessor(image, y);
        if (row == nullptr || target == nullptr) return;
        for (Channel channel : channels)
            kernels::look_up_pairs(target + offset_of(image, channel), static_cast<size_t>(image.PixelSize),
                                   row + offset_of(reference, channel), static_cast<size_t>(reference.PixelSize), table,
                                   static_cast<size_t>(image.Width));
    }
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

    Buffer<uint8_t> table(256 * 256);
    if (!table) return 0;
    fill_table(table.get(), amount, threshold);
    const Channels channels = channels_of(image);
    if (rows_may_run(reference, image, channels, image.Width, image.Height))
        sharpen(image, reference, channels, table.get());
    else
        sharpen_plainly(image, reference, channels, table.get());
    return 1;
}

} // namespace kzb
