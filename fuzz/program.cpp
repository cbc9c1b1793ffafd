#include "program.h"

#include "arguments.h"

namespace kzb::fuzz {

namespace {

constexpr int deepest = 3;
constexpr size_t most_assigned = 1 << 20;

Program *running = nullptr; // whose factories are asked

} // namespace

Program::Program(const uint8_t *bytes, size_t count)
    : feed_(bytes, count), world_(reinterpret_cast<KZBFunction>(&Program::handle_new_picture)) {
    running = this;
    clock_now = 0xFFFFFF00; // soon wraps around
    clock_step = 1;
    kzb_on_yield(&Program::handle_yield, this);
}

Program::~Program() {
    kzb_on_yield(nullptr, nullptr);
    running = nullptr;
    call_static("PictureFactoryKZB", "SetFactory", {nullptr});
}

void Program::run() {
    for (size_t i = 0; i < 3; ++i) world_.images[i] = world_.make_image(feed_);
    while (!feed_.empty()) step();
}

void Program::step() {
    const auto &methods = module().methods;
    const size_t which = feed_.byte();
    if (which < methods.size())
        call_method(methods[which]);
    else
        other_step(which - methods.size());
}

void Program::other_step(size_t kind) {
    switch (kind % 16) {
    case 0:
    case 1:
    case 2:
    case 3: {
        const size_t slot = feed_.below(World::image_slots);
        const Value made = world_.make_image(feed_);
        world_.images[slot] = made;
        break;
    }
    case 4:
        world_.pictures[feed_.below(World::picture_slots)] = world_.make_picture(feed_);
        break;
    case 5:
        world_.images[feed_.below(World::image_slots)] = nullptr;
        break;
    case 6:
        call(world_.image(feed_), "Close", {});
        break;
    case 7:
        clock_step = feed_.byte() % 3;
        break;
    case 8:
        set(world_.image(feed_), "YieldTicks", feed_.byte() % 4 == 0 ? feed_.integer() : 1);
        break;
    case 9:
        set(world_.image(feed_), "Factory", world_.factory(feed_));
        break;
    case 10:
        call_static("PictureFactoryKZB", "SetFactory", {world_.factory(feed_)});
        break;
    case 11: {
        const size_t slot = feed_.below(World::image_slots);
        world_.images[slot] = world_.image(feed_);
        break;
    }
    case 12:
        world_.pictures[feed_.below(World::picture_slots)] = nullptr;
        break;
    default:
        use_property();
        break;
    }
}

// ------------------------------------------------------------------------------------------------ calls

Value Program::object_argument(const char *type_name) {
    if (same_name(type_name, "PictureKZB")) return world_.image(feed_);
    if (same_name(type_name, "Picture")) return world_.picture(feed_);
    if (same_name(type_name, "PictureFactoryKZB")) return world_.factory(feed_);
    if (same_name(type_name, "FolderItem")) return World::file(feed_);
    found(std::string("no argument of type ") + type_name);
}

Value Program::argument(const kzb_parameter &parameter) {
    return parameter.type == KZB_TYPE_OBJECT ? object_argument(parameter.type_name) : plain_argument(feed_, parameter);
}

std::vector<Value> Program::arguments_of(const Method &method) {
    if (method.parameter("Buf") >= 0) return world_.block_arguments(feed_);
    const bool sized = method.is("Constructor") || method.is("CreatePictureKZB");
    std::vector<Value> arguments;
    for (size_t i = 0; i < method.declaration.parameter_count; ++i) {
        const kzb_parameter &parameter = method.declaration.parameters[i];
        if (sized && same_name(parameter.name, "width"))
            arguments.emplace_back(World::side(feed_));
        else if (sized && same_name(parameter.name, "height"))
            arguments.emplace_back(World::height(feed_));
        else
            arguments.push_back(argument(parameter));
    }
    return arguments;
}

void Program::call_method(const Method &method) {
    if (method.class_name != nullptr) {
        world_.keep(feed_, call_static(method.class_name, method.declaration.name, arguments_of(method)));
        return;
    }
    const Value image = world_.image(feed_);
    if (image.is_nil()) return;
    const std::vector<Value> arguments = arguments_of(method);
    if (method.assignable && feed_.byte() % 2 != 0)
        assign_rows(method, image, arguments);
    else
        world_.keep(feed_, call(image, method.declaration.name, arguments));
}

// The setters read as many bytes as the image takes in the named layout: whoever assigns answers for that many.
void Program::assign_rows(const Method &method, const Value &image, const std::vector<Value> &arguments) {
    const Shape shape = shape_of(image);
    const size_t size = assigned_size(method, shape, arguments);
    if (size > most_assigned) return;
    if (method.declaration.result == KZB_TYPE_STRING) {
        assign(image, method.declaration.name, arguments, World::string(feed_, size));
        return;
    }
    const int64_t storage = int64_t{shape.row_size} * (int64_t{shape.row_offset} + shape.height);
    const Value memory = shape.valid && feed_.byte() % 4 == 0 ? get(image, "Memory") : Value();
    const int64_t start = feed_.byte();
    auto *bytes =
        memory.is_nil()
            ? nullptr
            : static_cast<uint8_t *>(kzb_block_bytes(reinterpret_cast<KZBMemoryBlock>(memory.object()), nullptr));
    if (bytes != nullptr && !shape.in_file && start + static_cast<int64_t>(size) <= storage)
        assign(image, method.declaration.name, arguments, test::block_at(bytes + start));
    else
        assign(image, method.declaration.name, arguments, world_.block(feed_, size));
}

void Program::use_property() {
    const Property &property = module().properties[feed_.below(module().properties.size())];
    const Value image = world_.image(feed_);
    if (image.is_nil()) return;
    if (!property.writable || feed_.byte() % 2 == 0) {
        world_.keep(feed_, get(image, property.name.c_str()));
        return;
    }
    switch (property.type) {
    case KZB_TYPE_INTEGER:
        set(image, property.name.c_str(), feed_.integer());
        break;
    case KZB_TYPE_BOOLEAN:
        set(image, property.name.c_str(), feed_.byte() % 2 != 0);
        break;
    default:
        set(image, property.name.c_str(), world_.factory(feed_));
        break;
    }
}

// -------------------------------------------------------------------------------------------- user code

int Program::handle_yield(void *self) {
    auto &program = *static_cast<Program *>(self);
    if (program.depth_ >= deepest || program.feed_.empty()) return 1;
    ++program.depth_;
    if (program.feed_.byte() % 4 != 0) program.step();
    --program.depth_;
    return 1;
}

Value Program::new_picture(int32_t width, int32_t height, int32_t format) {
    const uint8_t kind = feed_.byte();
    const bool deep = depth_ >= deepest;
    switch (kind % 8) {
    case 0:
        return nullptr;
    case 1:
        return world_.image(feed_);
    case 2:
        return world_.make_image(feed_);
    case 3:
        if (!deep) step();
        return world_.image(feed_);
    default:
        break;
    }
    if (width > 3 * World::largest_side || height > 3 * World::largest_side) return nullptr;
    kzb_error error = {};
    Value image = Value::adopt(kzb_new("PictureKZB", nullptr, 0, &error));
    if (kind % 8 == 4)
        call(image, "Constructor", {width, height, World::format(feed_)});
    else if (kind % 8 == 5)
        call(image, "Constructor", {width, height, format, feed_.integer(), World::file(feed_)});
    else
        call(image, "Constructor", {width, height, format});
    if (kind % 8 == 7) return call(image, "ClipImage", {feed_.integer(), feed_.integer(), width, height});
    return image;
}

KZBObject Program::handle_new_picture(KZBObject, int32_t width, int32_t height, int32_t format) {
    if (running == nullptr || running->feed_.empty()) return nullptr;
    ++running->depth_;
    const Value image = running->new_picture(width, height, format);
    --running->depth_;
    const kzb_value given = image.raw();
    kzb_retain(&given);
    return image.object();
}

} // namespace kzb::fuzz
