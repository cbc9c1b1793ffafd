// Rows of images, as they are and in other layouts.
#include "faults/rows.h"

namespace kzb::test {

namespace {

struct Adder {
    Rows &rows;
    const char *declaration;
    void get(const char *variant, std::function<Call()> make) const {
        rows.push_back({Kind::method, declaration, variant, FailsWith::nil, Shortage::fails, std::move(make)});
    }
    void assign(const char *variant, std::function<Call()> make) const {
        rows.push_back({Kind::assignment, declaration, variant, FailsWith::nothing, Shortage::fails, std::move(make)});
    }
};

// An index without a row, and a nil value, raise an exception.
constexpr int32_t no_row = 99;

Image closed(Image image) {
    image.call("Close");
    return image;
}

} // namespace

void add_row_access_rows(Rows &rows) {
    const Adder raw_row = {rows, "RawRow(index as integer) as memoryblock"};
    raw_row.get("in memory", [] { return Call{in_memory(RGB), {2}}; });
    raw_row.get("in a file", [] { return Call{in_file(RGB), {2}}; });
    raw_row.get("no such row", [] { return Call{in_memory(RGB), {no_row}}; });

    const Adder row = {rows, "Row(index as integer) as memoryblock"};
    row.get("in memory", [] { return Call{in_memory(RGB), {2}}; });
    row.get("in a file", [] { return Call{in_file(RGB), {2}}; });
    row.get("no such row", [] { return Call{in_memory(RGB), {-1}}; });
    row.assign("in memory", [] { return Call{in_memory(RGB), {2}, noise_block(64)}; });
    row.assign("in a view of a file", [] { return Call{view_of(in_file(RGB), 1, 1, 3, 3), {2}, noise_block(4096)}; });
    row.assign("no such row", [] { return Call{in_memory(RGB), {no_row}, noise_block(64)}; });
    row.assign("nil", [] { return Call{in_memory(RGB), {2}, nullptr}; });
    row.assign("closed", [] { return Call{closed(in_memory(RGB)), {2}, noise_block(64)}; });

    const Adder in_format = {rows, "RowInFormat(index as integer, ImageFormat as integer) as memoryblock"};
    in_format.get("RGBA to ARGB", [] { return Call{in_memory(RGBA), {2, ARGB}}; });
    in_format.get("no such layout", [] { return Call{in_memory(RGBA), {2, 99}}; });
    in_format.get("no such row", [] { return Call{in_memory(RGBA), {no_row, RGB}}; });
    in_format.assign("G to RGB", [] { return Call{on_block(RGB), {2, G}, noise_block(9)}; });
    in_format.assign("nil", [] { return Call{on_block(RGB), {2, G}, nullptr}; });

    const Adder inverting = {
        rows, "RowInFormat(index as integer, ImageFormat as integer, InvertAlpha as boolean) as memoryblock"};
    inverting.get("AG to GA", [] { return Call{in_file(AG), {2, GA, true}}; });
    inverting.get("no such row", [] { return Call{in_memory(AG), {no_row, GA, true}}; });
    inverting.assign("ARGB to RGBA", [] { return Call{on_picture(), {2, RGBA, true}, noise_block(36)}; });
    inverting.assign("no such row", [] { return Call{on_picture(), {no_row, RGBA, true}, noise_block(36)}; });

    const Adder string = {rows, "RowStringInFormat(index as integer, ImageFormat as integer) as string"};
    string.get("RGB to G", [] { return Call{in_memory(RGB), {2, G}}; });
    string.get("no such row", [] { return Call{in_memory(RGB), {no_row, G}}; });
    string.assign("RGBA to RGB", [] { return Call{in_file(RGB), {2, RGBA}, noise_string(36)}; });
    string.assign("nil", [] { return Call{in_memory(RGB), {2, RGBA}, nullptr}; });

    const Adder data = {rows, "DataStringInFormat(ImageFormat as integer) as string"};
    data.get("GA to RGBA", [] { return Call{in_memory(GA), {RGBA}}; });
    data.get("a view of a file", [] { return Call{view_of(in_file(RGB), 1, 1, 3, 3), {BGR}}; });
    data.get("of the working layout", [] { return Call{in_memory(Scaling), {RGB}}; });
    data.assign("RGB to G", [] { return Call{in_memory(G), {RGB}, noise_string(135)}; });
    data.assign("nil", [] { return Call{in_memory(G), {RGB}, nullptr}; });
}

} // namespace kzb::test
