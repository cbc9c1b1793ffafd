// Fuzzes single calls on equal pixels in every kind of storage: all must give equal bytes. Two images side by side in
// the storage of a third share rows but no pixels: the module takes its plain path for them, so that the plain path and
// the fast ones are held against each other.

#include "arguments.h"
#include "places.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace kzb::fuzz {

namespace {

constexpr int32_t largest_side = 20;

// The channels of an image that a call made.
Bytes channels_of(const Value &image) {
    static constexpr const char *names[][2] = {{"HasRed", "RedOffset"},
                                               {"HasGreen", "GreenOffset"},
                                               {"HasBlue", "BlueOffset"},
                                               {"HasGray", "GrayOffset"},
                                               {"HasAlpha", "AlphaOffset"}};
    const Shape shape = shape_of(image);
    Bytes bytes = {static_cast<uint8_t>(shape.valid), static_cast<uint8_t>(shape.width),
                   static_cast<uint8_t>(shape.height), static_cast<uint8_t>(shape.format)};
    if (!shape.valid || shape.width < 1) return bytes;
    std::vector<int32_t> offsets;
    for (const auto &[has, offset] : names)
        if (get(image, has).boolean()) offsets.push_back(static_cast<int32_t>(get(image, offset).integer()));
    for (int32_t y = 0; y < shape.height; ++y) {
        const Bytes row = call(image, "Row", {y}).bytes();
        for (int32_t x = 0; x < shape.width; ++x)
            for (const int32_t offset : offsets)
                bytes.push_back(row.at(static_cast<size_t>(x * shape.pixel_size + offset)));
    }
    return bytes;
}

Bytes picture_bytes(const Value &picture) {
    const GWorld *world = kzb_picture_world(reinterpret_cast<KZBPicture>(picture.object()));
    const auto *bytes = static_cast<const uint8_t *>(world->base_address);
    return Bytes(bytes, bytes + world->row_bytes * world->height);
}

Bytes bytes_of(const Value &result) {
    switch (result.kind()) {
    case KZB_NIL:
        return {0};
    case KZB_BOOLEAN:
        return {static_cast<uint8_t>(result.integer())};
    case KZB_STRING:
        return result.is_nil() ? Bytes() : result.bytes();
    case KZB_OBJECT:
        break;
    default:
        found("a result of a kind that no method gives");
    }
    if (result.is_nil()) return {0};
    const char *class_name = kzb_class_name(result.object());
    if (same_name(class_name, "PictureKZB")) return channels_of(result);
    return same_name(class_name, "Picture") ? picture_bytes(result) : result.bytes();
}

// A call: the image it is made on, the other image that it names (none, the same, another), a working image for those
// that take one, and the rest.
struct Case {
    const Method *method = nullptr;
    Kind self = {}, other = {};
    bool with_other = false, same = false;
    bool with_temp = false;
    uint32_t seed = 0;
    std::vector<Value> arguments; // nil where an image goes
    Value assigned;
    bool assigns = false;
};

std::string text_of(const Kind &kind) {
    return std::to_string(kind.width) + " x " + std::to_string(kind.height) + " layout " + std::to_string(kind.format);
}

std::string describe(const Case &wanted, Place place) {
    std::string text = std::string(wanted.method->declaration.name) + " in " + place_names[static_cast<size_t>(place)] +
                       ", image " + text_of(wanted.self) + ", other ";
    text += wanted.same ? "the same" : wanted.with_other ? text_of(wanted.other) : "nil";
    for (const Value &argument : wanted.arguments) {
        if (argument.kind() == KZB_INTEGER) text += ", " + std::to_string(argument.integer());
        if (argument.kind() == KZB_DOUBLE) text += ", " + std::to_string(argument.number());
    }
    return text;
}

bool excluded(const Method &method) {
    // Those that make images, those that are about bytes of the storage and not about pixels, and one that reads what
    // follows a row's last pixel.
    for (const char *name :
         {"Constructor", "CreatePictureKZB", "Close", "RawRow", "Row", "Clone", "ClearRect", "FillRect", "NeonFilter"})
        if (method.is(name)) return true;
    return method.class_name != nullptr;
}

bool quarter_turn(const Method &method) {
    for (const char *name : {"Rotate90", "Rotate90slow", "Rotate270", "Rotate270slow"})
        if (method.is(name)) return true;
    return false;
}

int32_t layout_like(int32_t format, Feed &feed) {
    static constexpr std::array<std::array<int32_t, 6>, 4> alike = {
        {{1, 3, 5, 6, 8, 10}, {2, 4, 7, 9, 2, 4}, {11, 15, 16, 18, 20, 21}, {12, 13, 12, 13, 12, 13}}};
    for (const auto &group : alike)
        if (std::find(group.begin(), group.end(), format) != group.end()) return group[feed.below(group.size())];
    return format;
}

// What is needed of a picture to draw from.
Value picture(Feed &feed) {
    const auto width = static_cast<int32_t>(1 + feed.below(40)), height = static_cast<int32_t>(1 + feed.below(40));
    KZBPicture made = kzb_picture_new(width, height, feed.byte() % 2 != 0 ? 32 : 24);
    const GWorld *world = kzb_picture_world(made);
    uint32_t state = feed.byte();
    auto *bytes = static_cast<uint8_t *>(world->base_address);
    for (kzb_word i = 0; i < world->row_bytes * world->height; ++i)
        bytes[i] = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
    return Value::adopt(reinterpret_cast<KZBObject>(made));
}

Case read_case(Feed &feed) {
    Case made;
    made.method = &module().methods[feed.below(module().methods.size())];
    const auto side = [&] { return static_cast<int32_t>(1 + feed.below(largest_side)); };
    made.self.width = side();
    made.self.height = side();
    made.self.format = static_cast<int32_t>(1 + feed.below(20));
    if (made.self.format >= 14) ++made.self.format;
    const uint8_t mode = feed.byte();
    made.with_other = mode % 4 != 0;
    made.same = mode % 8 == 1;
    made.with_temp = mode & 64;
    made.other = made.self;
    if (quarter_turn(*made.method) || mode & 32) {
        made.other.width = made.other.height = std::max(made.self.width, made.self.height) + mode % 3;
        // In place it would not fit.
        made.same = false;
    }
    if (mode & 128) made.other.format = layout_like(made.self.format, feed);
    // The box blurs' second pass walks the destination in steps of the source's pixels, whatever is there.
    if (made.method->parameter("Radius") >= 0 && pixel_size(made.other.format) != pixel_size(made.self.format))
        made.other.format = made.self.format;
    made.seed = feed.byte();
    for (size_t i = 0; i < made.method->declaration.parameter_count; ++i) {
        const kzb_parameter &parameter = made.method->declaration.parameters[i];
        if (parameter.type != KZB_TYPE_OBJECT)
            made.arguments.push_back(plain_argument(feed, parameter));
        else if (same_name(parameter.type_name, "Picture"))
            made.arguments.push_back(picture(feed));
        else
            made.arguments.emplace_back();
    }
    made.assigns = made.method->assignable && feed.byte() % 2 != 0;
    if (made.assigns) {
        const size_t size = assigned_size(
            *made.method, {true, false, made.self.width, made.self.height, made.self.format, 0, 0, 0}, made.arguments);
        Bytes bytes(size);
        uint32_t state = feed.byte();
        for (uint8_t &byte : bytes) byte = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
        made.assigned =
            made.method->declaration.result == KZB_TYPE_STRING ? test::string_of(bytes) : test::block_of(bytes);
    }
    return made;
}

struct Images {
    Placed self, other, temp;
};

// The case's images in a kind of storage; none where it does not come in that storage.
std::optional<Images> images_in(Place place, const Case &wanted) {
    Images images;
    const bool two = wanted.with_other && !wanted.same;
    if (place == Place::beside || place == Place::beside_in_file) {
        if (!two || wanted.self.format != wanted.other.format) return std::nullopt;
        const Kind both = {wanted.self.width + wanted.other.width, std::max(wanted.self.height, wanted.other.height),
                           wanted.self.format};
        const Value parent = *whole(place == Place::beside ? Place::memory : Place::file, both, 0);
        images.self = view_of(parent, wanted.self, 0, 0);
        images.other = view_of(parent, wanted.other, wanted.self.width, 0);
        images.self.surrounded = images.other.surrounded = false;
    } else {
        auto self = placed(place, wanted.self, 0);
        if (!self) return std::nullopt;
        images.self = *self;
        if (two) {
            auto other = placed(place, wanted.other, 1);
            if (!other) return std::nullopt;
            images.other = *other;
        }
    }
    if (wanted.same) images.other = images.self;
    paint(images.self, wanted.seed);
    if (two) paint(images.other, wanted.seed + 1);
    if (wanted.with_temp) {
        constexpr int32_t working_layout = 14;
        // Large enough for each: as wide as the result, as high as the source.
        const Kind kind = {2 * largest_side, largest_side + 2, working_layout};
        images.temp = {*whole(place == Place::file || place == Place::file_view ? Place::file : Place::memory, kind, 2),
                       kind};
    }
    return images;
}

struct Outcome {
    Bytes result, self, other;
};

std::optional<Outcome> outcome_in(Place place, const Case &wanted) {
    const auto images = images_in(place, wanted);
    if (!images) return std::nullopt;
    std::vector<Value> arguments = wanted.arguments;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const kzb_parameter &parameter = wanted.method->declaration.parameters[i];
        if (!same_name(parameter.type_name, "PictureKZB")) continue;
        arguments[i] = same_name(parameter.name, "temp") ? images->temp.image : images->other.image;
    }
    std::srand(1);
    Outcome outcome;
    if (wanted.assigns)
        assign(images->self.image, wanted.method->declaration.name, arguments, wanted.assigned);
    else
        outcome.result = bytes_of(call(images->self.image, wanted.method->declaration.name, arguments));
    if (!take_pixels(images->self, outcome.self) || (wanted.with_other && !take_pixels(images->other, outcome.other)))
        found(describe(wanted, place) + ": a byte beside the pixels was written");
    return outcome;
}

void compare(const char *what, const Bytes &expected, const Bytes &other, const Case &wanted, Place place) {
    if (expected == other) return;
    const auto place_of = std::mismatch(expected.begin(), expected.end(), other.begin(), other.end()).first;
    found(describe(wanted, place) + ": " + what + " differs from that in memory, at byte " +
          std::to_string(place_of - expected.begin()));
}

void run(const uint8_t *bytes, size_t count) {
    module();
    const size_t objects = kzb_live_count(nullptr);
    {
        Feed feed(bytes, count);
        const Case wanted = read_case(feed);
        if (excluded(*wanted.method)) return;
        open_folder();
        const Outcome expected = *outcome_in(Place::memory, wanted);
        for (const Place place : every_place) {
            if (place == Place::memory) continue;
            const auto outcome = outcome_in(place, wanted);
            if (!outcome) continue;
            compare("the result", expected.result, outcome->result, wanted, place);
            compare("the image", expected.self, outcome->self, wanted, place);
            compare("the other image", expected.other, outcome->other, wanted, place);
        }
    }
    if (!close_folder()) found("a file was left in its folder");
    if (kzb_live_count(nullptr) != objects) found("objects, strings or arrays of the host were left behind");
}

} // namespace

} // namespace kzb::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count) {
    kzb::fuzz::run(bytes, count);
    return 0;
}
