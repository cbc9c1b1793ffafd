#include "geometry/rotate.h"

#include "geometry/quarter_turn.h"
#include "geometry/shear_bands.h"
#include "geometry/sine.h"
#include "geometry/skew.h"
#include "image/factory.h"
#include "image/lifecycle.h"
#include "image/paced_image.h"
#include "image/packed_rows.h"
#include "platform/buffer.h"

#include <cmath>
#include <numbers>

namespace kzb {

namespace {

// The angle from 0 to 360. A remainder is what repeated subtraction of whole turns gives as long as that is exact, up
// to 2^56; it also ends for larger angles. A tiny negative angle becomes 360, as its sum with a turn does.
double within_a_turn(double angle) {
    const double remainder = std::fmod(angle, 360.0);
    return remainder < 0 ? remainder + 360.0 : remainder;
}

// An image turned by a multiple of 90 degrees, and what is left of the angle.
struct Turned {
    ImageReference image;
    double angle;
};

Turned turn_roughly(ImageObject image, double angle) {
    if (angle > 45 && angle <= 135) return {ImageReference::adopt(rotate_90_slow(image, nullptr)), angle - 90};
    if (angle > 135 && angle <= 225) return {ImageReference::adopt(rotate_180(image, nullptr)), angle - 180};
    if (angle > 225 && angle <= 315) return {ImageReference::adopt(rotate_270_slow(image, nullptr)), angle - 270};
    return {ImageReference::share(image), angle};
}

// The three shears of one image. A shear that cannot be made leaves the result nil.
class ThreeShears {
public:
    ThreeShears(ImageRecord &image, const Channels &channels, const Background &background, double angle)
        : image_(image), channels_(channels), background_(background), format_(image.ImageFormat), width_(image.Width),
          height_(image.Height) {
        const double radians = std::numbers::pi * angle / 180;
        sine_ = sine(radians);
        cosine_ = cosine(radians);
        tangent_ = tangent(radians / 2);
    }

    ImageReference run();

private:
    ImageReference image_like(ImageRecord &source, double width, double height) const;
    ImageReference shear_at_once() const;
    // How far the lines are shifted in images of these sizes: the first and second image's width, the result's height.
    Buffer<Shift> first_shifts() const;
    Buffer<Shift> second_shifts(int32_t columns, int32_t width) const;
    Buffer<Shift> third_shifts(int32_t height) const;
    ImageReference first_shear() const;
    ImageReference second_shear(ImageRecord &source) const;
    ImageReference third_shear(ImageRecord &source) const;
    Skew skew(ImageRecord &source, ImageRecord &destination) const {
        return {source, destination, channels_, background_};
    }
    double first_width() const { return width_ + std::trunc(height_ * std::fabs(tangent_)); }
    double result_width() const { return std::trunc(height_ * std::fabs(sine_) + width_ * cosine_) + 1; }
    double sheared_height() const { return std::trunc(width_ * std::fabs(sine_) + height_ * cosine_) + 1; }

    ImageRecord &image_;
    const Channels &channels_;
    const Background &background_;
    const int32_t format_;
    const double width_;
    const double height_;
    double sine_;
    double cosine_;
    double tangent_;
};

// The shifts of `count` lines, `shift(line)` being asked for in ascending order; none when the memory cannot be had.
template <class Distance> Buffer<Shift> shifts_of(int32_t count, Distance distance) {
    Buffer<Shift> shifts(count);
    if (shifts)
        for (int32_t i = 0; i < count; ++i) shifts[static_cast<size_t>(i)] = shift_of(distance(i));
    return shifts;
}

// The same for distances that grow by a step from line to line.
Buffer<Shift> growing_shifts(int32_t count, double distance, double step) {
    return shifts_of(count, [&](int32_t) { return std::exchange(distance, distance + step); });
}

// A new image to which `source` is sheared, paced; nil when it cannot be had or user code has meanwhile changed the
// source.
ImageReference ThreeShears::image_like(ImageRecord &source, double width, double height) const {
    const auto fits = [](double size) { return size >= INT32_MIN && size <= INT32_MAX; };
    if (!fits(width) || !fits(height)) return {};
    const PacedImage sheared(source);
    auto image = create_image(&image_, static_cast<int32_t>(width), static_cast<int32_t>(height), format_);
    if (!image) return {};
    ImageRecord &record = *record_of(image.get());
    PacedImage paced(record);
    if (!usable(record) || !paced.pace() || !sheared.unchanged()) return {};
    return image;
}

Buffer<Shift> ThreeShears::first_shifts() const {
    return shifts_of(image_.Height,
                     [&](int32_t row) { return (tangent_ >= 0 ? row + 0.5 : row - height_ + 0.5) * tangent_; });
}

Buffer<Shift> ThreeShears::second_shifts(int32_t columns, int32_t width) const {
    return growing_shifts(columns, sine_ > 0 ? sine_ * (width_ - 1) : -sine_ * (width_ - width), -sine_);
}

Buffer<Shift> ThreeShears::third_shifts(int32_t height) const {
    const double start =
        sine_ >= 0 ? -(width_ - 1) * sine_ * tangent_ : ((1 - double(height)) - (width_ - 1) * sine_) * tangent_;
    return growing_shifts(height, start, tangent_);
}

ImageReference ThreeShears::first_shear() const {
    auto result = image_like(image_, first_width(), height_);
    if (!result) return {};
    const auto shifts = first_shifts();
    if (!shifts) return {};
    skew_rows(skew(image_, *record_of(result.get())), shifts.get(), image_.Height);
    return result;
}

ImageReference ThreeShears::second_shear(ImageRecord &source) const {
    auto result = image_like(source, source.Width, sheared_height());
    if (!result) return {};
    ImageRecord &destination = *record_of(result.get());
    const auto shifts = second_shifts(source.Width, destination.Width);
    if (!shifts) return {};
    skew_columns(skew(source, destination), shifts.get());
    return result;
}

ImageReference ThreeShears::third_shear(ImageRecord &source) const {
    auto result = image_like(source, result_width(), sheared_height());
    if (!result) return {};
    ImageRecord &destination = *record_of(result.get());
    const auto shifts = third_shifts(destination.Height);
    if (!shifts) return {};
    skew_rows(skew(source, destination), shifts.get(), destination.Height);
    return result;
}

// The same without images between, where user code could not meet them, but only where they could be had.
ImageReference ThreeShears::shear_at_once() const {
    const bool reachable = image_.Width > 0 && rows_lie_apart(image_, channels_, image_.Width);
    if (may_ask_program(image_) || !reachable) return {};
    const auto can_be_had = [&](double width, double height) {
        return width <= INT32_MAX && height <= INT32_MAX &&
               fits_in_memory(static_cast<int32_t>(width), static_cast<int32_t>(height), image_.PixelSize);
    };
    if (!can_be_had(first_width(), height_) || !can_be_had(first_width(), sheared_height())) return {};
    auto result = image_like(image_, result_width(), sheared_height());
    if (!result) return {};
    ImageRecord &destination = *record_of(result.get());
    const auto columns = static_cast<int32_t>(first_width());
    const auto first = first_shifts(), second = second_shifts(columns, columns),
               third = third_shifts(destination.Height);
    if (!first || !second || !third) return {};
    ShearBands bands(packed_order(skew(image_, destination)),
                     {columns, destination.Height, first.get(), second.get(), third.get()});
    if (!bands) return {};
    bands.run();
    return result;
}

ImageReference ThreeShears::run() {
    if (auto result = shear_at_once()) return result;
    auto first = first_shear();
    if (!first) return {};
    auto second = second_shear(*record_of(first.get()));
    if (!second) return {};
    first.reset();
    return third_shear(*record_of(second.get()));
}

} // namespace

ImageObject rotate(ImageObject image, double angle, int32_t red, int32_t green, int32_t blue, int32_t alpha,
                   int32_t gray) {
    if (!usable(*record_of(image)) || !std::isfinite(angle)) return nullptr;
    angle = within_a_turn(angle);
    if (angle == 0) return ImageReference::share(image).release();
    if (angle == 90) return rotate_90_slow(image, nullptr);
    if (angle == 180) return rotate_180(image, nullptr);
    if (angle == 270) return rotate_270_slow(image, nullptr);

    const Turned turned = turn_roughly(image, angle);
    if (!turned.image) return nullptr;
    ImageRecord &record = *record_of(turned.image.get());
    const bool is_gray = record.IsGray;
    const Channels channels = is_gray ? colour_channels_of(record) : channels_of(record);
    PacedImage paced(record);
    if (channels.size() == 0 || !usable(record) || !paced.pace()) return nullptr;
    const auto low_byte = [](int32_t value) { return static_cast<uint8_t>(value); };
    const Background background = is_gray ? Background{low_byte(gray)}
                                          : Background{low_byte(red), low_byte(green), low_byte(blue), low_byte(alpha)};
    return ThreeShears(record, channels, background, turned.angle).run().release();
}

} // namespace kzb
