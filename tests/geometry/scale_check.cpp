#include "geometry/scale_check.h"

#include <gtest/gtest.h>

namespace kzb::test {

Image random_image(Storage storage, Size size, int32_t format) {
    static uint32_t seed = 0;
    return *make_image(storage, size.width, size.height, format, ++seed);
}

Image random_image(Size size, int32_t format) {
    return random_image(Storage::memory, size, format);
}

bool scale(const Image &image, const Image &source, const Value &temp, int32_t mode, Size size) {
    return image.call("Scale", source, temp, mode, size.width, size.height).boolean();
}

void check_scale(const Image &image, const Image &source, const Object &temp, int32_t mode, Size size,
                 const std::string &label) {
    SCOPED_TRACE(label + ", mode " + std::to_string(mode) + ", " + layout(source.format()).name + " " +
                 std::to_string(source.width()) + " x " + std::to_string(source.height()) + " to " +
                 layout(image.format()).name + " " + std::to_string(size.width) + " x " + std::to_string(size.height));
    Snapshots snapshots;
    const PlainImage plain_source = snapshots.of(source);
    const PlainImage plain = snapshots.of(image);
    const PlainImage plain_temp =
        temp ? snapshots.of(Image(temp)) : PlainImage::in_memory(size.width, plain_source.height, scaling_format);
    ASSERT_TRUE(plain_scale(plain_source, plain_temp, plain, mode, size.width, size.height));
    EXPECT_TRUE(scale(image, source, temp, mode, size));
    EXPECT_EQ(difference(image, plain), "") << "in the destination";
    EXPECT_EQ(difference(source, plain_source), "") << "in the source";
    if (temp) {
        EXPECT_EQ(difference(Image(temp), plain_temp), "") << "in the intermediate image";
    }
}

void check_refused(const Image &image, const Image &source, const Value &temp, int32_t mode, Size size,
                   const std::string &label) {
    SCOPED_TRACE(label);
    const Bytes before = storage_of(image);
    EXPECT_FALSE(scale(image, source, temp, mode, size));
    EXPECT_EQ(storage_of(image), before);
}

} // namespace kzb::test
