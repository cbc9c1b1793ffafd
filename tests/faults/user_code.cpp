#include "faults/user_code.h"

#include "faults/system_faults.h"

#include <algorithm>

namespace kzb::test {

namespace {

Image parent_of(const Image &image) {
    return Image(image.get("Parent"));
}

Handler giving_nothing() {
    return [](int32_t, int32_t, int32_t) -> Value { return nullptr; };
}

const Action every_action[] = {
    {"closes it", false, [](const Image &image) { image.call("Close"); }},
    {"makes it larger", false, [](const Image &image) { image.call("Constructor", 40, 30, image.format()); }},
    {"makes it smaller", false, [](const Image &image) { image.call("Constructor", 1, 1, image.format()); }},
    {"makes it one of another layout", false, [](const Image &image) { image.call("Constructor", 9, 5, AG); }},
    {"fails to make it anew", false, [](const Image &image) { image.call("Constructor", 9, 5, 99); }},
    {"makes it one in a file", false,
     [](const Image &image) { image.call("Constructor", 9, 5, image.format(), 0, folder_item(scratch_path())); }},
    {"makes it one on a block", false,
     [](const Image &image) { image.call("Constructor", guarded_block(12), 2, 2, RGB, 6); }},
    {"makes it one on a picture", false, [](const Image &image) { image.call("Constructor", picture(), true); }},
    {"closes its parent", false,
     [](const Image &image) {
         if (const Image parent = parent_of(image)) parent.call("Close");
     }},
    {"makes its parent anew", false,
     [](const Image &image) {
         if (const Image parent = parent_of(image)) parent.call("Constructor", 3, 3, RGBA);
     }},
    {"changes all about it but its pixels", true,
     [](const Image &image) {
         image.set("Factory", nullptr);
         image.set("Factory", factory(giving_nothing()));
         image.set("YieldTicks", 0);
         const Image view(image.call("ClipImage", 1, 1, 3, 3));
         view.call("RGBChannels");
         if (!image.flag("IsMapping")) return;
         image.set("MappingBlockSize", 1 << 25);
         image.set("MappingBlockSize", 0);
     }},
    // Of images in memory these numbers say in which order tiles are turned.
    {"changes its number of rows per block", false, [](const Image &image) { image.set("MappingBlockSize", 0); }},
    {"reads it", true,
     [](const Image &image) {
         image.call("Row", 0);
         image.call("CopyPictureWithMask");
         image.call("Clone");
         image.call("DataStringInFormat", RGB);
         image.call("OilFilter", nullptr, 8, 1);
         image.call("BoxBlurFilter", nullptr, 1.0, 2);
         image.call("Rotate", 20.0, 1, 2, 3, 4, 5);
         in_memory(GA, 4, 4).call("Scale", image, nullptr, 1, 4, 4);
     }},
    {"works on it", false,
     [](const Image &image) {
         image.call("Invert");
         image.call("HMirror");
         image.call("CopyPixels", image, 0, 0, 3, 3, 1, 1);
         image.call("BoxBlurFilter", image, 1.0);
     }},
    {"installs a factory", true, [](const Image &) { set_process_factory(factory(giving_nothing())); }},
    {"removes the factory", true, [](const Image &) { set_process_factory(nullptr); }},
};

} // namespace

std::vector<Image> images_of(const Call &call) {
    std::vector<Image> images;
    const auto add = [&](const Value &value) {
        if (value.kind() != KZB_OBJECT || !is_image(value.object())) return;
        const Image image((Value(value)));
        if (std::none_of(images.begin(), images.end(), [&](const Image &other) { return other.same(image); }))
            images.push_back(image);
    };
    add(call.object);
    for (const Value &argument : call.arguments) add(argument);
    return images;
}

std::span<const Action> actions() {
    return every_action;
}

bool may_run_user_code(const Row &row) {
    return (row.kind != Kind::setter && row.kind != Kind::getter) || row.declaration == "DebugPicture";
}

void run_alone(bool &running, const std::function<void()> &code) {
    running = true;
    try {
        code();
    } catch (const std::runtime_error &) {
    }
    running = false;
}

AtYield::AtYield(uint64_t which, std::function<void()> code) : which_(which), code_(std::move(code)) {
    let_time_pass(1);
    kzb_on_yield(
        [](void *self) {
            static_cast<AtYield *>(self)->yielded();
            return 1;
        },
        this);
}

AtYield::~AtYield() {
    kzb_on_yield(nullptr, nullptr);
    let_time_pass(0);
}

void AtYield::yielded() {
    if (!running_ && ++yields_ == which_) run_alone(running_, code_);
}

void use(const std::vector<Image> &images) {
    for (const Image &image : images) {
        image.call("Invert");
        image.call("CopyPicture");
    }
}

} // namespace kzb::test
