#include "geometry/plain_rotation.h"

#include <cmath>

namespace kzb::test {

namespace {

// The nearest doubles.
double sine(double x) {
    return static_cast<double>(std::sin(static_cast<long double>(x)));
}
double cosine(double x) {
    return static_cast<double>(std::cos(static_cast<long double>(x)));
}
double tangent(double x) {
    return static_cast<double>(std::tan(static_cast<long double>(x)));
}

std::vector<Channel> sheared_channels(const PlainImage &image) {
    return image.channels(!image.is_gray);
}

uint8_t background_of(const Colours &background, Channel channel) {
    return background[static_cast<size_t>(channel)];
}

void skew_row(const PlainImage &source, const PlainImage &destination, const std::vector<Channel> &channels,
              const Colours &background, int64_t y, double distance) {
    const auto k = static_cast<int64_t>(std::floor(distance));
    const double f = distance - std::floor(distance);
    for (int64_t x = 0; x < destination.width; ++x)
        for (Channel c : channels) destination.set(x, y, c, background_of(background, c));
    std::array<int, 5> left_prev = {};
    for (int64_t x = 0; x < source.width; ++x) {
        for (Channel c : channels) {
            const int p = source.get(x, y, c);
            const int left = static_cast<int>(p * f);
            int &previous = left_prev[static_cast<size_t>(c)];
            if (x + k >= 0 && x + k < destination.width)
                destination.set(x + k, y, c, static_cast<uint8_t>(p - left + previous));
            previous = left;
        }
    }
    const int64_t end = k + source.width;
    if (end < 0 || end >= destination.width) return;
    for (Channel c : channels) {
        const int b = background_of(background, c);
        destination.set(end, y, c, static_cast<uint8_t>(b - (b * f - left_prev[static_cast<size_t>(c)])));
    }
}

void skew_column(const PlainImage &source, const PlainImage &destination, const std::vector<Channel> &channels,
                 const Colours &background, int64_t x, double distance) {
    const auto k = static_cast<int64_t>(std::floor(distance));
    const double f = distance - std::floor(distance);
    for (int64_t y = 0; y < destination.height; ++y)
        for (Channel c : channels) destination.set(x, y, c, background_of(background, c));
    std::array<int, 5> left_prev = {};
    for (int64_t y = 0; y < source.height; ++y) {
        for (Channel c : channels) {
            const int p = source.get(x, y, c);
            const int left = static_cast<int>(p * f);
            int &previous = left_prev[static_cast<size_t>(c)];
            if (y + k >= 0 && y + k < destination.height)
                destination.set(x, y + k, c, static_cast<uint8_t>(p - left + previous));
            previous = left;
        }
    }
    const int64_t last = k + source.height - 1;
    if (last < 0 || last >= destination.height) return;
    for (Channel c : channels) {
        const int b = background_of(background, c);
        destination.set(x, last, c, static_cast<uint8_t>(b - (b * f - left_prev[static_cast<size_t>(c)])));
    }
}

} // namespace

double within_a_turn(double angle) {
    while (angle >= 360) angle -= 360;
    while (angle < 0) angle += 360;
    return angle;
}

PlainImage turned(const PlainImage &image, int quarters) {
    const bool half = quarters == 2;
    const PlainImage result =
        PlainImage::in_memory(half ? image.width : image.height, half ? image.height : image.width, image.format);
    for (int64_t y = 0; y < image.height; ++y) {
        for (int64_t x = 0; x < image.width; ++x) {
            const int64_t to_x = quarters == 1 ? y : quarters == 2 ? image.width - 1 - x : image.height - 1 - y;
            const int64_t to_y = quarters == 1 ? image.width - 1 - x : quarters == 2 ? image.height - 1 - y : x;
            for (Channel channel : image.channels()) result.set(to_x, to_y, channel, image.get(x, y, channel));
        }
    }
    return result;
}

PlainImage three_shears(const PlainImage &image, double angle, const Colours &background, const Supply &supply) {
    const double rho = 3.141592653589793 * angle / 180;
    const double s = sine(rho), c = cosine(rho), t = tangent(rho / 2);
    const double w = image.width, h = image.height;
    const auto channels = sheared_channels(image);
    const auto high = static_cast<int32_t>(std::trunc(w * std::fabs(s) + h * c)) + 1;

    const PlainImage first = supply(image.width + static_cast<int32_t>(std::trunc(h * std::fabs(t))), image.height);
    for (int32_t u = 0; u < image.height; ++u)
        skew_row(image, first, channels, background, u, (t >= 0 ? u + 0.5 : u - h + 0.5) * t);

    const PlainImage second = supply(first.width, high);
    double d = s > 0 ? s * (w - 1) : -s * (w - second.width);
    for (int32_t u = 0; u < first.width; ++u, d -= s) skew_column(first, second, channels, background, u, d);

    const PlainImage third = supply(static_cast<int32_t>(std::trunc(h * std::fabs(s) + w * c)) + 1, high);
    d = s >= 0 ? -(w - 1) * s * t : ((1 - third.height) - (w - 1) * s) * t;
    for (int32_t u = 0; u < third.height; ++u, d += t) skew_row(second, third, channels, background, u, d);
    return third;
}

PlainImage rotated(const PlainImage &image, double angle, const Colours &background) {
    angle = within_a_turn(angle);
    const int quarters = angle > 45 && angle <= 135    ? 1
                         : angle > 135 && angle <= 225 ? 2
                         : angle > 225 && angle <= 315 ? 3
                                                       : 0;
    const PlainImage straight = quarters == 0 ? image : turned(image, quarters);
    return three_shears(straight, angle - 90 * quarters, background, [&](int32_t width, int32_t height) {
        return PlainImage::in_memory(width, height, image.format);
    });
}

} // namespace kzb::test
