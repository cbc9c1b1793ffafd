#include "faults/arguments.h"

#include "faults/guarded_memory.h"
#include "faults/method_table.h"

#include "fixtures/layouts.h"
#include "fixtures/storages.h"

#include <map>

namespace kzb::test {

namespace {

// Given back with the process: the blocks over it may be looked at for as long as a call's arguments live.
GuardedMemory &guarded() {
    static auto &memory = *new GuardedMemory;
    return memory;
}

std::map<KZBObject, Handler> &handlers() {
    static auto &all = *new std::map<KZBObject, Handler>;
    return all;
}

KZBObject call_handler(KZBObject factory_object, int32_t width, int32_t height, int32_t format) {
    const auto found = handlers().find(factory_object);
    if (found == handlers().end()) return nullptr;
    // The handler may take itself away.
    const Handler handler = found->second;
    try {
        const Value image = handler(width, height, format);
        const kzb_value given = image.raw();
        kzb_retain(&given);
        return image.object();
    } catch (const std::runtime_error &) {
        return nullptr; // it cannot make one
    }
}

constinit uint32_t seed = 0;

Image finished(Image image) {
    if (!fields_of(image).Valid) throw std::runtime_error("an argument cannot be made");
    fields_of(image).YieldTicks = 1;
    fill(image, random_bytes(bytes_of(image.get()).size(), ++seed));
    return image;
}

Image constructed(const std::vector<Value> &arguments) {
    Image image = unconstructed();
    image.invoke("Constructor", arguments);
    return finished(image);
}

} // namespace

void restart_noise() {
    seed = 0;
}

Image unconstructed() {
    kzb_error error = {};
    return Image(Value::adopt(kzb_new("PictureKZB", nullptr, 0, &error)));
}

Image blank(const Image &image) {
    fill(image, Bytes(bytes_of(image.get()).size()));
    return image;
}

Image in_memory(int32_t format, int32_t width, int32_t height) {
    return constructed({width, height, format});
}

Image on_block(int32_t format, int32_t width, int32_t height) {
    const int32_t row_size = width * layout(format).pixel_size + 5;
    return constructed(
        {guarded_block(static_cast<size_t>(row_size) * static_cast<size_t>(height)), width, height, format, row_size});
}

Image in_file(int32_t format, int32_t width, int32_t height) {
    return constructed({width, height, format, 0, folder_item(scratch_path())});
}

Image on_picture(int32_t depth, int32_t width, int32_t height) {
    const Value target = Value::adopt(reinterpret_cast<KZBObject>(kzb_picture_new(width, height, depth)));
    return constructed({target, true});
}

Image view_of(const Image &parent, int32_t x, int32_t y, int32_t width, int32_t height) {
    const Image view(parent.call("ClipImage", x, y, width, height));
    if (!view) throw std::runtime_error("a view cannot be made");
    fields_of(view).YieldTicks = 1;
    return view;
}

Value picture(int32_t depth, bool with_mask) {
    const KZBPicture made = kzb_picture_new(usual_width, usual_height, depth);
    const Value value = Value::adopt(reinterpret_cast<KZBObject>(made));
    const GWorld &world = *kzb_picture_world(made);
    const Bytes bytes = random_bytes(static_cast<size_t>(world.row_bytes * world.height), 5);
    std::copy(bytes.begin(), bytes.end(), static_cast<uint8_t *>(world.base_address));
    if (with_mask) kzb_picture_set_mask(made, reinterpret_cast<KZBPicture>(picture(8).object()));
    return value;
}

Value guarded_block(size_t size) {
    return block_at(guarded().take(size, 1));
}

Value noise_block(size_t size) {
    return block_of(random_bytes(size, 7));
}

Value noise_string(size_t size) {
    return string_of(random_bytes(size, 8));
}

Value noise_array(size_t count) {
    const Bytes bytes = random_bytes(count, 9);
    return array_of(std::vector<int32_t>(bytes.begin(), bytes.end()));
}

Object factory(Handler handler) {
    const Object made = Object::make("PictureFactoryKZB");
    handlers()[made.get()] = std::move(handler);
    kzb_error error = {};
    if (!kzb_handle_event(made.get(), "NewPictureKZB", reinterpret_cast<KZBFunction>(call_handler), &error))
        throw std::runtime_error(error.message);
    return made;
}

void set_process_factory(const Value &value) {
    call_shared("PictureFactoryKZB", "SetFactory", {value});
}

bool clean_up() {
    set_process_factory(nullptr);
    handlers().clear();
    return guarded().empty();
}

} // namespace kzb::test
