#include "arguments.h"

#include <algorithm>

namespace kzb::fuzz {

namespace {

Value array_argument(Feed &feed) {
    static constexpr size_t lengths[] = {256, 0, 1, 9, 25, 255, 257, 10, 49, 8};
    const uint8_t kind = feed.byte();
    if (kind == 255) return nullptr;
    const size_t length = kind < 160 ? lengths[kind % std::size(lengths)] : kind - size_t{160};
    std::vector<int32_t> values(length);
    const auto first = static_cast<uint32_t>(feed.integer()), step = static_cast<uint32_t>(feed.integer());
    for (size_t i = 0; i < length; ++i) values[i] = static_cast<int32_t>(first + step * static_cast<uint32_t>(i));
    if (length > 0 && kind % 2 != 0) values[feed.below(length)] = feed.integer();
    return test::array_of(values);
}

// Integers of which few mean anything come from those, most of the time.
Value integer_argument(Feed &feed, const char *name) {
    const auto is = [name](const char *other) { return same_name(name, other); };
    if (is("ImageFormat") || is("theImageFormat")) return World::format(feed);
    const auto mostly_below = [&feed](uint8_t limit) -> Value {
        const uint8_t byte = feed.byte();
        return byte < 232 ? Value(byte % limit) : Value(feed.integer());
    };
    if (is("mode")) return mostly_below(9);
    if (is("width") || is("height")) return mostly_below(30);
    // Each takes the time of a whole blur.
    if (is("Iterations")) return std::min(feed.integer(), 10);
    return feed.integer();
}

} // namespace

Value plain_argument(Feed &feed, const kzb_parameter &parameter) {
    switch (parameter.type) {
    case KZB_TYPE_INTEGER:
        return integer_argument(feed, parameter.name);
    case KZB_TYPE_BOOLEAN:
        return feed.byte() % 2 != 0;
    case KZB_TYPE_DOUBLE:
        return feed.number();
    case KZB_TYPE_COLOR:
        return test::Colour{static_cast<uint32_t>(feed.integer()) & 0xFFFFFF};
    case KZB_TYPE_INTEGER_ARRAY:
        return array_argument(feed);
    default:
        found(std::string("no plain argument: ") + parameter.name);
    }
}

size_t assigned_size(const Method &method, const Shape &shape, const std::vector<Value> &arguments) {
    if (!shape.valid) return 16;
    const int format = method.parameter("ImageFormat");
    int64_t bytes = shape.row_size;
    if (format >= 0) {
        const auto named = static_cast<int32_t>(arguments[static_cast<size_t>(format)].integer());
        bytes = int64_t{shape.width} * pixel_size(named);
    }
    if (method.is("DataStringInFormat")) bytes *= shape.height;
    return static_cast<size_t>(std::max<int64_t>(bytes, 0));
}

} // namespace kzb::fuzz
