#include "method_notes.h"

#include "note_tables.h"
#include "runtime/names.h"

#include <vector>

namespace kzb::cli {

namespace {

// Arguments that mean the same wherever they stand.
constexpr ArgumentNote common_arguments[] = {
    {"x", "left edge in pixels, 0 being the first; what lies outside the picture is cut off"},
    {"y", "upper edge in pixels, 0 being the first; what lies outside the picture is cut off"},
    {"w", "width in pixels; a negative one reaches to the left of x"},
    {"h", "height in pixels; a negative one reaches upwards from y"},
    {"width", "width in pixels; a negative one reaches to the left of x"},
    {"height", "height in pixels; a negative one reaches upwards from y"},
    {"red", "0 to 255; of other numbers the low byte counts"},
    {"green", "0 to 255; of other numbers the low byte counts"},
    {"blue", "0 to 255; of other numbers the low byte counts"},
    {"alpha", "0, transparent, to 255, opaque; of other numbers the low byte counts"},
    {"gray", "0 to 255; of other numbers the low byte counts"},
    {"dest", "the picture to write to, of the source's size and layout and not compared with it; nil makes a new one"},
    {"index", "a row, 0 to Height - 1; others raise OutOfBoundsException"},
    {"ImageFormat", "a layout, 1 to 21"},
    {"pic", "a picture of the host; of any depth unless said otherwise"},
    {"DestX", "column of this picture at which the copy begins"},
    {"DestY", "row of this picture at which the copy begins"},
    {"DestWidth", "columns to copy, cut to what both pictures hold; nothing is scaled"},
    {"DestHeight", "rows to copy, cut to what both pictures hold; nothing is scaled"},
    {"SourceX", "column of the source at which the copy begins; a negative one moves the copy to the left"},
    {"SourceY", "row of the source at which the copy begins; a negative one moves the copy upwards"},
};

std::vector<Family> gathered() {
    std::vector<Family> all;
    for (const auto group : {filter_families(), geometry_families(), image_families()})
        all.insert(all.end(), group.begin(), group.end());
    return all;
}

const char *find_note(std::span<const ArgumentNote> notes, std::string_view argument) {
    for (const ArgumentNote &note : notes)
        if (note.name != nullptr && same_name(note.name, argument)) return note.takes;
    return nullptr;
}

} // namespace

std::span<const Family> families() {
    static const std::vector<Family> all = gathered();
    return all;
}

const MethodNote *note_on(std::string_view method) {
    for (const Family &family : families())
        for (const MethodNote &note : family.methods)
            if (same_name(note.name, method)) return &note;
    return nullptr;
}

const char *note_on_argument(std::string_view method, std::string_view argument) {
    const MethodNote *note = note_on(method);
    if (note == nullptr) return nullptr;
    const char *own = find_note(note->arguments, argument);
    return own != nullptr ? own : find_note(common_arguments, argument);
}

const char *constants_for(std::string_view method, std::string_view argument) {
    if (same_name(argument, "ImageFormat")) return "ImageFormat";
    if (same_name(method, "Scale") && same_name(argument, "mode")) return "Scale";
    if (same_name(method, "DitherFilter") && same_name(argument, "matrix")) return "Dither";
    return nullptr;
}

} // namespace kzb::cli
