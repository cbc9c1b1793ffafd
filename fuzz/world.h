// What a fuzzed program has in hand: images in every kind of storage, pictures, factories, memory and files. All of it
// goes with the world.
#pragma once

#include "feed.h"
#include "host_calls.h"

#include <array>
#include <memory>
#include <vector>

namespace kzb::fuzz {

class World {
public:
    static constexpr size_t image_slots = 8;
    static constexpr size_t picture_slots = 4;
    static constexpr size_t factory_slots = 3;
    static constexpr size_t file_names = 4;
    static constexpr int32_t largest_side = 40;

    explicit World(KZBFunction factory_handler);
    World(const World &) = delete;
    World &operator=(const World &) = delete;

    std::array<Value, image_slots> images;
    std::array<Value, picture_slots> pictures;
    std::array<Value, factory_slots> factories;

    // A slot's content, or nil.
    const Value &image(Feed &feed);
    const Value &picture(Feed &feed);
    const Value &factory(Feed &feed);

    // Up to largest_side, negative, or larger than an image can be wide. A height is never large: an image without
    // columns may have any number of rows, and a call for each of them takes its time.
    static int32_t side(Feed &feed);
    static int32_t height(Feed &feed);
    // One of the layouts, seldom any other number.
    static int32_t format(Feed &feed);

    // An image of any kind: in memory, over memory, a picture or a file, a view, a copy, or not constructed.
    Value make_image(Feed &feed);
    Value make_picture(Feed &feed);
    // The arguments of the constructor over a block, with a block that is exactly as large as they need.
    std::vector<Value> block_arguments(Feed &feed);
    // A folder item: one of a few files in the program's own folder, a folder, a place where no file can be, or nil.
    static Value file(Feed &feed);
    // A block of at least `size` bytes: its own, someone's memory that ends right there, an image's own bytes.
    Value block(Feed &feed, size_t size);
    static Value string(Feed &feed, size_t size);

    // Keeps an image or a picture that a call gave, or drops it when it has outgrown the program.
    void keep(Feed &feed, const Value &result);

    // Path of a file that programs may make.
    static std::string file_path(size_t index);

private:
    uint8_t *memory(size_t size, uint8_t seed);
    void paint(const Value &image, uint8_t seed);

    struct Memory {
        std::unique_ptr<uint8_t[]> bytes;
        size_t size;
    };
    std::vector<Memory> memory_;
};

// The folder of the files: there from one call to the other. False when something is left in it.
void open_folder();
bool close_folder();

} // namespace kzb::fuzz
