#include "image/pixel_conversion.h"

#include "image/channels.h"

namespace kzb {

namespace {

kernels::Placement placement_of(const ImageRecord &image, const Channels &channels) {
    return {static_cast<size_t>(image.PixelSize), offsets_of(image, channels)};
}

} // namespace

kernels::Conversion conversion_between(const ImageRecord &to, const ImageRecord &from, uint8_t alpha_flip) {
    Channels written = colour_channels_of(to);
    Channels read = colour_channels_of(from);
    if (written.size() == 0 || read.size() == 0) return {};
    const bool to_gray = written.size() < read.size();
    if (written.size() > read.size()) read = {Channel::gray, Channel::gray, Channel::gray};
    const bool with_alpha = to.HasAlpha && from.HasAlpha;
    if (with_alpha) {
        written.add(Channel::alpha);
        read.add(Channel::alpha);
    }
    return {placement_of(to, written), placement_of(from, read), written.size(), to_gray,
            with_alpha ? alpha_flip : uint8_t{0}};
}

} // namespace kzb
