#include "image/factory.h"

#include "host/classes.h"
#include "image/lifecycle.h"

namespace kzb {

namespace {

constinit FactoryObject current_factory = nullptr;

ImageReference ask(FactoryObject factory, int32_t width, int32_t height, int32_t image_format) {
    if (factory == nullptr) return {};
    // The handler may replace the factory.
    auto held = Reference<FactoryObject>::share(factory);
    if (!held) return {};
    auto *handler = reinterpret_cast<NewPictureKZBHandler *>(GetEventInstance(as_object(factory), &new_picture_event));
    if (handler == nullptr) return {};
    auto image =
        ImageReference::adopt(reinterpret_cast<ImageObject>(handler(as_object(factory), width, height, image_format)));
    if (!image || !record_of(image.get())->Valid) return {};
    return image;
}

} // namespace

void set_factory(FactoryObject factory) {
    Reference<FactoryObject>::adopt(std::exchange(current_factory, nullptr)).reset();
    // Dropping it may have run user code that set another.
    const auto replaced = Reference<FactoryObject>::adopt(
        std::exchange(current_factory, Reference<FactoryObject>::share(factory).release()));
}

ImageReference create_image(const ImageRecord *asking, int32_t width, int32_t height, int32_t image_format) {
    if (asking != nullptr) {
        if (auto image = ask(asking->Factory, width, height, image_format)) return image;
    }
    if (auto image = ask(current_factory, width, height, image_format)) return image;
    auto image = ImageReference::adopt(reinterpret_cast<ImageObject>(PluginNewInstance("PictureKZB")));
    if (!image) return {};
    construct_in_memory(image.get(), width, height, image_format);
    if (!record_of(image.get())->Valid) return {};
    return image;
}

bool may_ask_program(const ImageRecord &asking) {
    return current_factory != nullptr || asking.Factory != nullptr;
}

ImageObject create_picture(ImageObject image, int32_t width, int32_t height, int32_t image_format) {
    return create_image(record_of(image), width, height, image_format).release();
}

ImageObject create_picture_shared(int32_t width, int32_t height, int32_t image_format) {
    return create_image(nullptr, width, height, image_format).release();
}

} // namespace kzb
