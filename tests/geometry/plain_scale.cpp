#include "geometry/plain_scale.h"

#include "geometry/sine.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace kzb::test {

namespace {

double sinc(double t) {
    return t == 0 ? 1 : kzb::sine(std::numbers::pi * t) / (std::numbers::pi * t);
}

double weight_of(int32_t mode, double distance) {
    const double x = std::fabs(distance);
    const double x2 = x * x;
    const double x3 = x * x * x;
    switch (mode) {
    case 1:
        return x < 1 ? 1 - x : 0;
    case 2:
        return x <= 0.5 ? 1 : 0;
    case 3:
        return x < 3 ? sinc(x) * sinc(x / 3) : 0;
    case 4:
        return x < 8 ? sinc(x) * sinc(x * 0.125) : 0;
    case 5:
        return x < 1   ? (7 * x3 - 12 * x2 + 16.0 / 3) / 6
               : x < 2 ? (-7.0 / 3 * x3 + 12 * x2 - 20 * x + 32.0 / 3) / 6
                       : 0;
    case 6:
        return x < 1 ? 1.25 * x3 - 2.25 * x2 + 1 : x < 2 ? -0.75 * x3 + 3.75 * x2 - 6 * x + 3 : 0;
    default:
        return x < 1   ? 4.0 / 3 * x3 - 7.0 / 3 * x2 + 1
               : x < 2 ? -7.0 / 12 * x3 + 3 * x2 - 59.0 / 12 * x + 5.0 / 2
               : x < 3 ? 1.0 / 12 * x3 - 2.0 / 3 * x2 + 7.0 / 4 * x - 3.0 / 2
                       : 0;
    }
}

double support_of(int32_t mode) {
    const double supports[] = {1, 0.5, 3, 8, 2, 4, 3};
    return supports[mode - 1];
}

struct Entry {
    double weight;
    int32_t index;
};

struct List {
    std::vector<Entry> entries;
    double sum = 0;
};

std::vector<List> lists_of(int32_t mode, int32_t outputs, int32_t inputs, bool horizontal) {
    std::vector<List> lists;
    const double scale = static_cast<double>(outputs) / inputs;
    const double s = support_of(mode);
    for (int32_t i = 0; i < outputs; ++i) {
        const double c = (i + 0.5) / scale;
        double first, last;
        if (scale < 1) {
            const double h = s / scale;
            first = std::trunc(c - h);
            last = std::trunc(c + h);
        } else {
            first = horizontal ? std::floor(c - s) : std::trunc(c - s);
            last = horizontal ? std::ceil(c + s) : std::trunc(c + s);
        }
        List list;
        for (int32_t j = 0; j < inputs; ++j) {
            if (j < first || j > last) continue;
            const double x = scale < 1 ? (c - j - 0.5) * scale : c - j - 0.5;
            const double weight = weight_of(mode, x);
            if (weight == 0) continue;
            list.entries.push_back({weight, j});
            list.sum += weight;
        }
        lists.push_back(std::move(list));
    }
    return lists;
}

double mean_of(double sum, double weights) {
    const double mean = sum / weights;
    if (std::isnan(mean) || mean < 0) return 0;
    return mean > 255 ? 255 : mean;
}

// A channel that goes through the filter: where it is read, kept and written.
struct Lane {
    std::vector<Channel> from; // red, green and blue are weighed to gray
    int32_t slot;
    std::vector<Channel> to;
};

using enum Channel;

std::vector<Lane> lanes_between(const PlainImage &source, const PlainImage &destination) {
    std::vector<Lane> lanes;
    const std::vector<Channel> colours = {red, green, blue};
    const bool both_alpha = source.has_alpha && destination.has_alpha;
    if (source.is_rgb && destination.is_rgb)
        lanes = {{{red}, 0, {red}}, {{green}, 1, {green}}, {{blue}, 2, {blue}}};
    else if (source.is_rgb && destination.is_gray)
        lanes = {{colours, 1, {gray}}};
    else if (source.is_gray && destination.is_rgb)
        return {{{gray}, 1, colours}};
    else if (source.is_gray && destination.is_gray)
        lanes = {{{gray}, 1, {gray}}};
    else
        return {};
    if (both_alpha) lanes.push_back({{alpha}, 3, {alpha}});
    return lanes;
}

size_t float_position(const PlainImage &temp, int32_t x, int32_t y, int32_t slot) {
    return static_cast<size_t>(temp.position(y, x * 16 + slot * 4));
}

void set_float(const PlainImage &temp, int32_t x, int32_t y, int32_t slot, float value) {
    std::memcpy(temp.storage->data() + float_position(temp, x, y, slot), &value, sizeof value);
}

} // namespace

float float_of(const PlainImage &temp, int32_t x, int32_t y, int32_t slot) {
    float value;
    std::memcpy(&value, temp.storage->data() + float_position(temp, x, y, slot), sizeof value);
    return value;
}

bool plain_scale(const PlainImage &source, const PlainImage &temp, const PlainImage &destination, int32_t mode,
                 int32_t width, int32_t height) {
    const std::vector<Lane> lanes = lanes_between(source, destination);
    if (lanes.empty()) return false;
    const std::vector<List> columns = lists_of(mode, width, source.width, true);
    for (int32_t y = 0; y < source.height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const List &list = columns[static_cast<size_t>(x)];
            std::array<bool, 4> used = {};
            for (const Lane &lane : lanes) {
                double sum = 0;
                for (const Entry &entry : list.entries) {
                    const auto byte = [&](size_t i) { return source.get(entry.index, y, lane.from[i]); };
                    const double value =
                        lane.from.size() == 3 ? 0.3 * byte(0) + 0.59 * byte(1) + 0.11 * byte(2) : byte(0);
                    sum += entry.weight * value;
                }
                set_float(temp, x, y, lane.slot, static_cast<float>(mean_of(sum, list.sum)));
                used[static_cast<size_t>(lane.slot)] = true;
            }
            for (int32_t slot = 0; slot < 4; ++slot)
                if (!used[static_cast<size_t>(slot)]) set_float(temp, x, y, slot, 0);
        }
    }
    const std::vector<List> rows = lists_of(mode, height, source.height, false);
    for (int32_t y = 0; y < height; ++y) {
        const List &list = rows[static_cast<size_t>(y)];
        for (int32_t x = 0; x < width; ++x) {
            for (const Lane &lane : lanes) {
                double sum = 0;
                for (const Entry &entry : list.entries) sum += entry.weight * float_of(temp, x, entry.index, lane.slot);
                const auto byte = static_cast<uint8_t>(mean_of(sum, list.sum));
                for (Channel channel : lane.to) destination.set(x, y, channel, byte);
            }
        }
    }
    return true;
}

bool plain_scale_fast(const PlainImage &source, const PlainImage &destination, int32_t width, int32_t height) {
    const auto unsigned_minimum = [](int32_t a, int32_t b) {
        return static_cast<int32_t>(std::min(static_cast<uint32_t>(a), static_cast<uint32_t>(b)));
    };
    const int32_t w = unsigned_minimum(destination.width, width);
    const int32_t h = unsigned_minimum(destination.height, height);
    const std::vector<Lane> lanes = lanes_between(source, destination);
    if (w < 1 || h < 1 || lanes.empty()) return false;
    const double sx = static_cast<double>(source.width) / w;
    const double sy = static_cast<double>(source.height) / h;
    for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) {
            const auto from_x = static_cast<int32_t>(x * sx);
            const auto from_y = static_cast<int32_t>(y * sy);
            const auto there = [&](Channel channel) {
                return source.inside(
                    source.position(from_y, int64_t{from_x} * source.pixel_size + source.offset(channel)));
            };
            const auto byte = [&](Channel channel) { return source.get(from_x, from_y, channel); };
            if (!std::all_of(lanes.begin(), lanes.end(),
                             [&](const Lane &lane) { return std::all_of(lane.from.begin(), lane.from.end(), there); }))
                continue;
            for (const Lane &lane : lanes) {
                const uint8_t value =
                    lane.from.size() == 3
                        ? static_cast<uint8_t>((77 * byte(red) + 151 * byte(green) + 28 * byte(blue)) >> 8)
                        : byte(lane.from[0]);
                for (Channel channel : lane.to) destination.set(x, y, channel, value);
            }
        }
    }
    return true;
}

} // namespace kzb::test
