#include "faults/inspection.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <poll.h>

namespace kzb::test {

namespace {

const ImageRecord &root_of(const ImageRecord &image) {
    const ImageRecord *root = &image;
    while (root->Parent != nullptr) root = &fields_of(reinterpret_cast<KZBObject>(root->Parent));
    return *root;
}

Bytes file_bytes(const ImageRecord &image) {
    Bytes bytes(static_cast<size_t>(image.TotalSize));
    std::ifstream file(image.backing_file_path, std::ios::binary);
    file.read(reinterpret_cast<char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

std::string in_words(std::initializer_list<std::pair<const char *, int64_t>> numbers) {
    std::string words;
    for (const auto &[name, number] : numbers) words += std::string(" ") + name + " " + std::to_string(number);
    return words;
}

Seen look_at_image(KZBObject object) {
    const ImageRecord &image = fields_of(object);
    if (!has_storage(object)) return {image.Valid ? "closed image" : "image that is not Valid", {}, {}};
    return {"image" + in_words({{"Valid", image.Valid},
                                {"Width", image.Width},
                                {"Height", image.Height},
                                {"ImageFormat", image.ImageFormat}}),
            in_words({{"RowSize", image.RowSize},
                      {"RowOffset", image.RowOffset},
                      {"TotalSize", image.TotalSize},
                      {"IsMapping", image.IsMapping},
                      {"RedOffset", image.RedOffset},
                      {"GreenOffset", image.GreenOffset},
                      {"BlueOffset", image.BlueOffset},
                      {"GrayOffset", image.GrayOffset},
                      {"AlphaOffset", image.AlphaOffset}}),
            bytes_of(object)};
}

void append_pixels(Bytes &bytes, KZBPicture picture) {
    const GWorld &world = *kzb_picture_world(picture);
    for (kzb_word y = 0; y < world.height; ++y) {
        const auto *row = static_cast<const uint8_t *>(world.base_address) + y * world.row_bytes;
        bytes.insert(bytes.end(), row, row + world.width * world.depth / 8);
    }
}

Seen look_at_picture(KZBObject object) {
    const auto picture = reinterpret_cast<KZBPicture>(object);
    const GWorld &world = *kzb_picture_world(picture);
    Seen seen = {"picture" + in_words({{"depth", world.depth}, {"width", world.width}, {"height", world.height}}), {}, {}};
    append_pixels(seen.bytes, picture);
    const Value mask = Value::adopt(reinterpret_cast<KZBObject>(kzb_picture_mask(picture)));
    if (!mask.is_nil()) append_pixels(seen.bytes, reinterpret_cast<KZBPicture>(mask.object()));
    return seen;
}

Seen look_at_object(KZBObject object) {
    const std::string name = kzb_class_name(object);
    if (name == "PictureKZB") return look_at_image(object);
    if (name == "Picture") return look_at_picture(object);
    if (name != "MemoryBlock") return {name, {}, {}};
    size_t count = 0;
    const auto *bytes =
        static_cast<const uint8_t *>(kzb_block_bytes(reinterpret_cast<KZBMemoryBlock>(object), &count));
    return {"block of " + std::to_string(count), {}, Bytes(bytes, bytes + count)};
}

std::filesystem::path scratch_folder() {
    static const std::filesystem::path folder = std::filesystem::path(scratch_path()).parent_path();
    return folder;
}

} // namespace

bool is_image(KZBObject object) {
    return object != nullptr && std::strcmp(kzb_class_name(object), "PictureKZB") == 0;
}

ImageRecord &fields_of(KZBObject image) {
    const auto offset = kzb_module_class(module_under_test, 0)->instance_data_offset;
    return *reinterpret_cast<ImageRecord *>(reinterpret_cast<char *>(image) + offset);
}

bool has_storage(KZBObject object) {
    const ImageRecord &image = fields_of(object);
    return image.row_accessor != nullptr && root_of(image).storage_id == image.storage_id;
}

Bytes bytes_of(KZBObject object) {
    if (!has_storage(object)) return {};
    const ImageRecord &root = root_of(fields_of(object));
    return root.IsMapping ? file_bytes(root) : Bytes(root.pixel_buffer, root.pixel_buffer + root.TotalSize);
}

void fill(const Object &object, const Bytes &bytes) {
    const ImageRecord &root = root_of(fields_of(object));
    if (!root.IsMapping) {
        std::copy(bytes.begin(), bytes.end(), root.pixel_buffer);
        return;
    }
    std::fstream file(root.backing_file_path, std::ios::binary | std::ios::in | std::ios::out);
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) throw std::runtime_error("a backing file cannot be filled");
}

Seen look_at(const Value &value) {
    if (value.is_nil()) return {"nil", {}, {}};
    switch (value.kind()) {
    case KZB_BOOLEAN: return {value.boolean() ? "true" : "false", {}, {}};
    case KZB_DOUBLE: return {std::to_string(value.number()), {}, {}};
    case KZB_STRING: return {"string", {}, value.bytes()};
    case KZB_ARRAY: return {"array", {}, {}};
    case KZB_OBJECT: return look_at_object(value.object());
    default: return {std::to_string(value.integer()), {}, {}};
    }
}

size_t open_descriptors() {
    std::array<pollfd, 256> descriptors;
    for (size_t i = 0; i < descriptors.size(); ++i) descriptors[i] = {static_cast<int>(i), 0, 0};
    poll(descriptors.data(), descriptors.size(), 0);
    return static_cast<size_t>(std::count_if(descriptors.begin(), descriptors.end(), [](const pollfd &descriptor) {
        return (descriptor.revents & POLLNVAL) == 0;
    }));
}

size_t file_mappings() {
    size_t count = 0;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) count += line.find(scratch_folder()) != std::string::npos;
    return count;
}

size_t scratch_files() {
    size_t count = 0;
    for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator(scratch_folder())) ++count;
    return count;
}

} // namespace kzb::test
