#include "image/destination.h"

#include "image/factory.h"

namespace kzb {

ImageReference take_destination(const ImageRecord &asking, ImageObject passed, int32_t width, int32_t height,
                                int32_t image_format) {
    if (passed != nullptr) return ImageReference::share(passed);
    return create_image(&asking, width, height, image_format);
}

std::optional<Passage> open_passage(ImageObject source_object, ImageObject passed, int32_t width, int32_t height) {
    ImageRecord &source = *record_of(source_object);
    PacedImage paced_source(source);
    if (!usable(source) || !paced_source.pace()) return std::nullopt;
    auto result = take_destination(source, passed, width, height, source.ImageFormat);
    if (!result) return std::nullopt;
    ImageRecord &destination = *record_of(result.get());
    PacedImage paced_destination(destination);
    // Supplying the destination and pacing it run user code, which may have closed the source.
    if (!usable(destination) || !paced_destination.pace() || !paced_source.unchanged()) return std::nullopt;
    return Passage{source, destination, std::move(result)};
}

std::optional<Passage> open_passage(ImageObject source, ImageObject passed) {
    const ImageRecord &record = *record_of(source);
    return open_passage(source, passed, record.Width, record.Height);
}

} // namespace kzb
