#include "world.h"

#include "fixtures/layouts.h"
#include "module.h"

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace kzb::fuzz {

namespace {

// The folder of this process, in memory where the system has such a place.
const std::string &folder() {
    static const std::string path =
        (access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + std::string("/kzb-fuzz-") + std::to_string(getpid());
    return path;
}

} // namespace

World::World(KZBFunction factory_handler) {
    for (Value &factory : factories) {
        kzb_error error = {};
        factory = Value::adopt(kzb_new("PictureFactoryKZB", nullptr, 0, &error));
        if (!kzb_handle_event(factory.object(), "NewPictureKZB", factory_handler, &error)) found(error.message);
    }
}

namespace {

// One of the pool, seldom nil.
template <class Pool> const Value &chosen(Pool &pool, Feed &feed) {
    static const Value nil;
    const uint8_t byte = feed.byte();
    return byte >= 240 ? nil : pool[byte % pool.size()];
}

} // namespace

const Value &World::image(Feed &feed) {
    return chosen(images, feed);
}
const Value &World::picture(Feed &feed) {
    return chosen(pictures, feed);
}
const Value &World::factory(Feed &feed) {
    return chosen(factories, feed);
}

int32_t World::side(Feed &feed) {
    const uint8_t byte = feed.byte();
    if (byte < 246) return byte % (largest_side + 1);
    static constexpr int32_t corners[] = {-1, INT32_MIN, INT32_MAX, -40, INT32_MAX - 1};
    return corners[byte % std::size(corners)];
}

int32_t World::format(Feed &feed) {
    const uint8_t byte = feed.byte();
    return byte < 240 ? 1 + byte % 21 : feed.integer();
}

int32_t World::height(Feed &feed) {
    const int32_t rows = side(feed);
    return rows > largest_side ? -rows : rows;
}

uint8_t *World::memory(size_t size, uint8_t seed) {
    memory_.push_back({std::unique_ptr<uint8_t[]>(new uint8_t[size]), size});
    uint8_t *bytes = memory_.back().bytes.get();
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(i * seed);
    return bytes;
}

Value World::block(Feed &feed, size_t size) {
    const uint8_t kind = feed.byte();
    switch (kind % 8) {
    case 0:
    case 1:
        return Value::adopt(reinterpret_cast<KZBObject>(kzb_block_new(nullptr, size)));
    case 2: // the end of memory that has been given before
        if (memory_.empty()) break;
        if (Memory &known = memory_[feed.below(memory_.size())]; known.size >= size)
            return test::block_at(known.bytes.get() + (known.size - size));
        break;
    case 3: { // somewhere in it
        if (memory_.empty()) break;
        Memory &known = memory_[feed.below(memory_.size())];
        const size_t start = feed.byte();
        if (known.size >= size + start) return test::block_at(known.bytes.get() + start);
        break;
    }
    case 4: { // a block that an image lies over
        const Value &other = image(feed);
        if (other.is_nil()) break;
        Value target = get(other, "MemoryTarget");
        if (target.is_nil()) break;
        size_t count = 0;
        kzb_block_bytes(reinterpret_cast<KZBMemoryBlock>(target.object()), &count);
        if (count >= size) return target;
        break;
    }
    case 5:
        if (kind >= 248) return nullptr;
        break;
    default:
        break;
    }
    return test::block_at(memory(size, kind));
}

Value World::string(Feed &feed, size_t size) {
    const uint8_t seed = feed.byte();
    if (seed == 255) return nullptr;
    test::Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(i * seed + 1);
    return test::string_of(bytes);
}

void open_folder() {
    if (mkdir(folder().c_str(), 0700) == 0) return;
    // An earlier process of that number did not come to its end.
    for (size_t i = 0; i < World::file_names; ++i) unlink(World::file_path(i).c_str());
}

bool close_folder() {
    return rmdir(folder().c_str()) == 0;
}

std::string World::file_path(size_t index) {
    return folder() + "/" + std::to_string(index);
}

Value World::file(Feed &feed) {
    const size_t which = feed.below(file_names * 8 + 3);
    if (which == file_names * 8) return nullptr;
    if (which == file_names * 8 + 1) return test::folder_item(folder());
    if (which == file_names * 8 + 2) return test::folder_item(folder() + "/none/file");
    return test::folder_item(file_path(which % file_names));
}

std::vector<Value> World::block_arguments(Feed &feed) {
    const int32_t width = height(feed), rows = height(feed);
    const int32_t layout = format(feed);
    const uint8_t wish = feed.byte();
    // Mostly a few bytes more than the pixels take, else anything that is not too much memory.
    int32_t row_size = std::max(width, 0) * pixel_size(layout) + wish % 16;
    if (wish >= 192) row_size = feed.integer();
    if (row_size > 4096) row_size %= 4096;
    size_t size = 16;
    if (width >= 0 && rows > 0 && row_size >= 0)
        size = static_cast<size_t>(row_size * (rows - 1) + std::max(row_size, width * pixel_size(layout)));
    return {block(feed, size), width, rows, layout, row_size};
}

void World::paint(const Value &image, uint8_t seed) {
    const Shape shape = shape_of(image);
    if (seed == 0 || !shape.valid || shape.row_size <= 0 || shape.row_size > 8192 || shape.height > largest_side)
        return;
    test::Bytes bytes(static_cast<size_t>(shape.row_size));
    uint32_t state = seed;
    for (int32_t y = 0; y < shape.height; ++y) {
        for (uint8_t &byte : bytes) {
            state = state * 1664525 + 1013904223;
            byte = static_cast<uint8_t>(state >> 24);
        }
        assign(image, "Row", {y}, test::block_of(bytes));
    }
}

Value World::make_picture(Feed &feed) {
    const auto make = [&] {
        const auto width = static_cast<int32_t>(1 + feed.below(largest_side));
        const auto rows = static_cast<int32_t>(1 + feed.below(largest_side));
        static constexpr int32_t depths[] = {32, 24, 32, 16, 32, 8};
        return kzb_picture_new(width, rows, depths[feed.below(std::size(depths))]);
    };
    KZBPicture picture = make();
    if (feed.byte() % 2 != 0) {
        Value mask = Value::adopt(reinterpret_cast<KZBObject>(make()));
        kzb_picture_set_mask(picture, reinterpret_cast<KZBPicture>(mask.object()));
    }
    return Value::adopt(reinterpret_cast<KZBObject>(picture));
}

Value World::make_image(Feed &feed) {
    static constexpr const char *parts[] = {"RedChannel",   "GreenChannel", "BlueChannel", "GrayChannel",
                                            "AlphaChannel", "RGBChannels",  "Clone"};
    Value made;
    switch (feed.below(11)) {
    case 0:
    case 1:
        made = new_image({side(feed), height(feed), format(feed)});
        break;
    case 2:
    case 3: {
        const std::vector<Value> arguments = block_arguments(feed);
        made = new_image(arguments);
        break;
    }
    case 4: {
        const bool alpha = feed.byte() % 2 != 0;
        made = new_image({feed.byte() % 4 == 0 ? picture(feed) : make_picture(feed), alpha});
        break;
    }
    case 5:
    case 6: {
        const int32_t width = side(feed), rows = height(feed), layout = format(feed), block_size = feed.integer();
        made = new_image({width, rows, layout, block_size, file(feed)});
        break;
    }
    case 7:
    case 8: {
        const int32_t x = feed.integer(), y = feed.integer(), width = feed.integer(), rows = feed.integer();
        made = call(image(feed), "ClipImage", {x, y, width, rows});
        break;
    }
    case 9: {
        const char *part = parts[feed.below(std::size(parts))];
        made = call(image(feed), part, {});
        break;
    }
    default:
        made = new_image({});
        break;
    }
    if (!made.is_nil()) paint(made, feed.byte());
    return made;
}

void World::keep(Feed &feed, const Value &result) {
    if (result.kind() != KZB_OBJECT || result.is_nil()) return;
    const char *class_name = kzb_class_name(result.object());
    if (same_name(class_name, "Picture")) {
        pictures[feed.below(picture_slots)] = result;
    } else if (same_name(class_name, "PictureKZB")) {
        const Shape shape = shape_of(result);
        if (shape.width <= 3 * largest_side && shape.height <= 3 * largest_side)
            images[feed.below(image_slots)] = result;
    }
}

} // namespace kzb::fuzz
