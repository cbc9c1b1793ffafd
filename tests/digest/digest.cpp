#include "digest/digest.h"

#include <algorithm>
#include <cstring>

namespace kzb::test {

namespace {

int32_t offset_of(const Image &image, Channel channel) {
    constexpr const char *properties[] = {"RedOffset", "GreenOffset", "BlueOffset", "GrayOffset", "AlphaOffset"};
    return static_cast<int32_t>(image.integer(properties[static_cast<size_t>(channel)]));
}

// The byte of the storage's rows at which an image's own begin.
size_t row_start(const Image &image) {
    const Layout &made = layout(image.format());
    for (Channel channel : every_channel)
        if (made.offset(channel) >= 0) return static_cast<size_t>(offset_of(image, channel) - made.offset(channel));
    return 0;
}

size_t row_bytes(const Image &image) {
    return static_cast<size_t>(image.width()) * static_cast<size_t>(image.integer("PixelSize"));
}

} // namespace

void Digest::add(const void *bytes, size_t count) {
    const auto *byte = static_cast<const uint8_t *>(bytes);
    for (size_t i = 0; i < count; ++i) value_ = (value_ ^ byte[i]) * 0x100000001b3;
}

void Digest::add(int64_t value) {
    for (int shift = 0; shift < 64; shift += 8) {
        const auto byte = static_cast<uint8_t>(value >> shift);
        add(&byte, 1);
    }
}

void Digest::add(const Value &value) {
    if (value.is_nil()) return add(int64_t{-1});
    add(static_cast<int64_t>(value.kind()));
    switch (value.kind()) {
    case KZB_STRING: {
        const Bytes bytes = value.bytes();
        add(static_cast<int64_t>(bytes.size()));
        return add(bytes.data(), bytes.size());
    }
    case KZB_OBJECT: {
        const std::string name = kzb_class_name(value.object());
        if (name == "PictureKZB") return add_channels(Image(value));
        if (name == "Picture") return add(reinterpret_cast<KZBPicture>(value.object()));
        const Bytes bytes = value.bytes();
        add(static_cast<int64_t>(bytes.size()));
        return add(bytes.data(), bytes.size());
    }
    default:
        return add(value.integer());
    }
}

void Digest::add(const Image &image) {
    const size_t start = row_start(image);
    const size_t count = row_bytes(image);
    add(int64_t{image.width()});
    add(int64_t{image.height()});
    add(int64_t{image.format()});
    for (int32_t y = 0; y < image.height(); ++y) add(image.row(y).data() + start, count);
}

void Digest::add_channels(const Image &image) {
    const PlainImage plain = Snapshots().of(image);
    add(int64_t{plain.width});
    add(int64_t{plain.height});
    add(int64_t{plain.format});
    for (Channel channel : plain.channels())
        for (int32_t y = 0; y < plain.height; ++y)
            for (int32_t x = 0; x < plain.width; ++x) {
                const uint8_t byte = plain.get(x, y, channel);
                add(&byte, 1);
            }
}

void Digest::add(KZBPicture picture) {
    const GWorld &world = *kzb_picture_world(picture);
    add(int64_t{world.depth});
    add(int64_t{world.width});
    add(int64_t{world.height});
    const auto *row = static_cast<const uint8_t *>(world.base_address);
    for (kzb_word y = 0; y < world.height; ++y, row += world.row_bytes)
        add(row, static_cast<size_t>(world.width * world.depth / 8));
    add(Value::adopt(reinterpret_cast<KZBObject>(kzb_picture_mask(picture))));
}

void fill_pixels(const Image &image, uint32_t seed) {
    const size_t start = row_start(image);
    const size_t count = row_bytes(image);
    const Bytes pixels = random_bytes(count * static_cast<size_t>(image.height()), seed);
    for (int32_t y = 0; y < image.height(); ++y) {
        Bytes row = image.row(y);
        std::memcpy(row.data() + start, pixels.data() + static_cast<size_t>(y) * count, count);
        image.assign("Row", block_of(row), y);
    }
}

Image Subjects::made(int32_t width, int32_t height, int32_t format) const {
    Image result(width, height, format);
    fill_pixels(result, 77);
    return result;
}

Value Subjects::picture(int32_t width, int32_t height, int32_t depth) const {
    const KZBPicture picture = kzb_picture_new(width, height, depth);
    const Value result = Value::adopt(reinterpret_cast<KZBObject>(picture));
    const GWorld &world = *kzb_picture_world(picture);
    const auto row_size = static_cast<size_t>(width) * static_cast<size_t>(depth / 8);
    const Bytes pixels = random_bytes(row_size * static_cast<size_t>(height), 78);
    for (size_t y = 0; y < static_cast<size_t>(height); ++y) {
        auto *row = static_cast<uint8_t *>(world.base_address) + y * static_cast<size_t>(world.row_bytes);
        const uint8_t *from = pixels.data() + y * row_size;
        if (depth != 16) {
            std::memcpy(row, from, row_size);
            continue;
        }
        // Words in the machine's own byte order.
        for (size_t x = 0; x < static_cast<size_t>(width); ++x) {
            const auto word = static_cast<uint16_t>((from[2 * x] << 8 | from[2 * x + 1]) & 0x7FFF);
            std::memcpy(row + 2 * x, &word, sizeof word);
        }
    }
    return result;
}

} // namespace kzb::test
