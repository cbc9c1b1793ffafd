// Making, closing and creating images, and the factories.
#include "faults/rows.h"

#include "fixtures/storages.h"

namespace kzb::test {

namespace {

constexpr auto in_memory_declaration = "Constructor(width as integer, height as integer, ImageFormat as integer)";
constexpr auto on_block_declaration =
    "Constructor(Buf as MemoryBlock, width as integer, height as integer, ImageFormat as integer, RowSize as integer)";
constexpr auto in_file_declaration = "Constructor(width as integer, height as integer, ImageFormat as integer, "
                                     "BlockSize as integer, FilePath as folderitem)";
constexpr auto create_declaration =
    "CreatePictureKZB(width as integer, height as integer, ImageFormat as integer) as PictureKZB";
constexpr auto create_shared_declaration =
    "CreatePictureKZB(width as integer, height as integer, theImageFormat as integer) as PictureKZB";

Value file_item() {
    return folder_item(scratch_path());
}

void add_constructors(Rows &rows) {
    const auto add = [&](const char *declaration, const char *variant, std::function<Call()> make) {
        rows.push_back({Kind::method, declaration, variant, FailsWith::invalid, Shortage::fails, std::move(make)});
    };
    add(in_memory_declaration, "new", [] { return Call{unconstructed(), {9, 5, RGBA}}; });
    add(in_memory_declaration, "without pixels", [] { return Call{unconstructed(), {0, 0, G}}; });
    add(in_memory_declaration, "of an image in memory", [] { return Call{in_memory(RGB), {3, 3, AG}}; });
    add(in_memory_declaration, "of an image in a file", [] { return Call{in_file(RGB), {3, 3, AG}}; });
    add(in_memory_declaration, "of a view", [] { return Call{view_of(in_memory(RGB), 1, 1, 4, 4), {3, 3, Scaling}}; });
    add(on_block_declaration, "new", [] { return Call{unconstructed(), {noise_block(600), 9, 5, RGBA, 41}}; });
    add(on_block_declaration, "over its own block", [] {
        const Image image = unconstructed();
        const Value block = noise_block(600);
        image.call("Constructor", block, 9, 5, RGBA, 41);
        return Call{image, {block, 5, 9, RGB, 17}};
    });
    add(in_file_declaration, "new", [] { return Call{unconstructed(), {9, 5, RGBA, 0, file_item()}}; });
    add(in_file_declaration, "in a file that exists", [] {
        const std::string path = scratch_path();
        { const Image other(Object::make("PictureKZB", 2, 2, RGB, 0, folder_item(path))); }
        return Call{unconstructed(), {9, 5, RGBA, 1 << 20, folder_item(path)}};
    });
    add(in_file_declaration, "of an image in a file", [] { return Call{in_file(RGB), {9, 5, AG, 0, file_item()}}; });
    add(in_file_declaration, "of an image in memory", [] { return Call{in_memory(RGB), {9, 5, AG, 0, file_item()}}; });
}

void add_factories(Rows &rows) {
    const auto add = [&](Kind kind, const char *declaration, const char *variant, std::function<Call()> make) {
        rows.push_back({kind, declaration, variant, FailsWith::nil, Shortage::fails, std::move(make)});
    };
    const auto from_file = [](int32_t width, int32_t height, int32_t format) -> Value {
        return in_file(format, width, height);
    };
    const auto invalid = [](int32_t, int32_t, int32_t) -> Value { return unconstructed(); };
    add(Kind::method, create_declaration, "in memory", [] { return Call{in_memory(RGB), {4, 4, RGBA}}; });
    add(Kind::method, create_declaration, "from its factory", [=] {
        const Image image = in_memory(RGB);
        image.set("Factory", factory(from_file));
        return Call{image, {4, 4, RGBA}};
    });
    add(Kind::method, create_declaration, "from the second factory", [=] {
        const Image image = in_memory(RGB);
        image.set("Factory", factory(invalid));
        set_process_factory(factory(from_file));
        return Call{image, {4, 4, RGBA}};
    });
    add(Kind::shared, create_shared_declaration, "in memory", [] { return Call{{}, {4, 4, RGBA}}; });
    add(Kind::shared, create_shared_declaration, "from the factory", [=] {
        set_process_factory(factory(from_file));
        return Call{{}, {4, 4, RGBA}};
    });
    add(Kind::shared, create_shared_declaration, "from an invalid image", [=] {
        set_process_factory(factory(invalid));
        return Call{{}, {4, 4, RGBA}};
    });
    const auto add_set = [&](const char *variant, std::function<Call()> make) {
        rows.push_back({Kind::shared, "SetFactory(factory as PictureFactoryKZB)", variant, FailsWith::nothing,
                        Shortage::fails, std::move(make)});
    };
    add_set("first", [=] { return Call{{}, {factory(from_file)}}; });
    add_set("none", [] { return Call{{}, {nullptr}}; });
    add_set("another", [=] {
        set_process_factory(factory(invalid));
        return Call{{}, {factory(from_file)}};
    });
    add_set("the same", [=] {
        const Object same = factory(from_file);
        set_process_factory(same);
        return Call{{}, {same}};
    });
}

void add_close(Rows &rows) {
    const auto add = [&](const char *variant, std::function<Call()> make) {
        rows.push_back({Kind::method, "Close", variant, FailsWith::nothing, Shortage::fails, std::move(make)});
    };
    add("in memory", [] { return Call{in_memory(RGB)}; });
    add("on a block", [] { return Call{on_block(RGB)}; });
    add("on a picture", [] { return Call{on_picture()}; });
    add("in a file", [] { return Call{in_file(RGB)}; });
    add("a view of a file", [] { return Call{view_of(in_file(RGB), 1, 1, 3, 3)}; });
    add("unconstructed", [] { return Call{unconstructed()}; });
    add("a second time", [] {
        const Image image = in_memory(RGB);
        image.call("Close");
        return Call{image};
    });
}

} // namespace

void add_image_rows(Rows &rows) {
    add_constructors(rows);
    add_close(rows);
    add_factories(rows);
}

} // namespace kzb::test
