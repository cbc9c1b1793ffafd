#include "painting.h"

#include <picturekzb/runtime.h>

#include <algorithm>
#include <cmath>

namespace painting {

namespace {

uint32_t hash(int x, int y) {
    uint32_t h = static_cast<uint32_t>(x) * 0x9E3779B1u ^ static_cast<uint32_t>(y) * 0x85EBCA77u;
    h = (h ^ (h >> 15)) * 0xC2B2AE3Du;
    h = (h ^ (h >> 13)) * 0x27D4EB2Fu;
    return h ^ (h >> 16);
}

float lattice(int x, int y) {
    return static_cast<float>(hash(x, y) >> 8) / 16777216.0f;
}

float value_noise(float x, float y) {
    const float left = std::floor(x), top = std::floor(y);
    const int column = static_cast<int>(left), row = static_cast<int>(top);
    const float u = smooth(0, 1, x - left), v = smooth(0, 1, y - top);
    const float above = lattice(column, row) + (lattice(column + 1, row) - lattice(column, row)) * u;
    const float below = lattice(column, row + 1) + (lattice(column + 1, row + 1) - lattice(column, row + 1)) * u;
    return above + (below - above) * v;
}

uint8_t to_byte(float value) {
    return static_cast<uint8_t>(clamp(value) * 255.0f + 0.5f);
}

uint8_t *row_of(KZBPicture picture, int y) {
    const GWorld *world = kzb_picture_world(picture);
    return static_cast<uint8_t *>(world->base_address) + static_cast<kzb_word>(y) * world->row_bytes;
}

void release(KZBPicture picture) {
    kzb_value value = {};
    value.kind = KZB_OBJECT;
    value.object = reinterpret_cast<KZBObject>(picture);
    kzb_release(&value);
}

} // namespace

float clamp(float value) {
    return std::min(std::max(value, 0.0f), 1.0f);
}

float smooth(float from, float to, float value) {
    const float t = clamp((value - from) / (to - from));
    return t * t * (3 - 2 * t);
}

Colour mix(Colour from, Colour to, float share) {
    return {from.red + (to.red - from.red) * share, from.green + (to.green - from.green) * share,
            from.blue + (to.blue - from.blue) * share};
}

Colour scale(Colour colour, float factor) {
    return {colour.red * factor, colour.green * factor, colour.blue * factor};
}

float cloud_noise(float x, float y, int octaves) {
    float sum = 0, weight = 0.5f, total = 0;
    for (int i = 0; i < octaves; ++i, weight /= 2) {
        sum += weight * value_noise(x, y);
        total += weight;
        x = x * 2.03f + 17.1f;
        y = y * 2.03f + 5.7f;
    }
    return sum / total;
}

float Random::next(float from, float to) {
    state_ = state_ * 1664525u + 1013904223u;
    return from + (to - from) * static_cast<float>(state_ >> 8) / 16777216.0f;
}

Canvas::Canvas(int width, int height)
    : width_(width), height_(height), pixels_(static_cast<size_t>(width) * static_cast<size_t>(height)) {}

void Canvas::paint(const std::function<Colour(float x, float y)> &colour_at) {
    for (int y = 0; y < height_; ++y)
        for (int x = 0; x < width_; ++x) pixel(x, y) = colour_at(position(x), position(y));
}

void Canvas::shape(Point least, Point most, const std::function<bool(Point, Colour &)> &inside) {
    constexpr int samples = 4; // each way in a pixel
    const auto column = [&](float x) { return static_cast<int>(std::floor(x * height())); };
    const int left = std::max(column(least.x), 0), right = std::min(column(most.x), width_ - 1);
    const int top = std::max(column(least.y), 0), bottom = std::min(column(most.y), height_ - 1);
    for (int y = top; y <= bottom; ++y)
        for (int x = left; x <= right; ++x) {
            Colour sum = {};
            int hits = 0;
            for (int i = 0; i < samples * samples; ++i) {
                const float dx = (static_cast<float>(i % samples) + 0.5f) / samples;
                const float dy = (static_cast<float>(i / samples) + 0.5f) / samples;
                Colour colour;
                if (!inside({(static_cast<float>(x) + dx) / height(), (static_cast<float>(y) + dy) / height()}, colour))
                    continue;
                ++hits;
                sum = {sum.red + colour.red, sum.green + colour.green, sum.blue + colour.blue};
            }
            if (hits == 0) continue;
            const float share = static_cast<float>(hits);
            pixel(x, y) = mix(pixel(x, y), scale(sum, 1 / share), share / (samples * samples));
        }
}

void Canvas::polygon(const std::vector<Point> &corners, Colour colour) {
    Point least = corners.front(), most = corners.front();
    for (const Point &corner : corners) {
        least = {std::min(least.x, corner.x), std::min(least.y, corner.y)};
        most = {std::max(most.x, corner.x), std::max(most.y, corner.y)};
    }
    shape(least, most, [&](Point p, Colour &painted) {
        painted = colour;
        bool inside = false;
        for (size_t i = 0, j = corners.size() - 1; i < corners.size(); j = i++) {
            const Point a = corners[i], b = corners[j];
            if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) inside = !inside;
        }
        return inside;
    });
}

void Canvas::line(Point from, Point to, float thickness, Colour colour) {
    const float half = thickness * height() / 2;
    const Point a = {from.x * height(), from.y * height()}, b = {to.x * height(), to.y * height()};
    const float dx = b.x - a.x, dy = b.y - a.y, square = std::max(dx * dx + dy * dy, 1e-6f);
    const int left = std::max(static_cast<int>(std::min(a.x, b.x) - half - 1), 0);
    const int right = std::min(static_cast<int>(std::max(a.x, b.x) + half + 1), width_ - 1);
    const int top = std::max(static_cast<int>(std::min(a.y, b.y) - half - 1), 0);
    const int bottom = std::min(static_cast<int>(std::max(a.y, b.y) + half + 1), height_ - 1);
    for (int y = top; y <= bottom; ++y)
        for (int x = left; x <= right; ++x) {
            const float px = static_cast<float>(x) + 0.5f - a.x, py = static_cast<float>(y) + 0.5f - a.y;
            const float t = clamp((px * dx + py * dy) / square);
            // A line thinner than a pixel is paler instead.
            const float cover = clamp(half + 0.5f - std::hypot(px - t * dx, py - t * dy)) * std::min(2 * half, 1.0f);
            pixel(x, y) = mix(pixel(x, y), colour, cover);
        }
}

bool Canvas::write(const char *path, const std::function<float(float x, float y)> &alpha_at,
                   std::string &mistake) const {
    const KZBPicture picture = kzb_picture_new(width_, height_, 32);
    const KZBPicture mask = kzb_picture_new(width_, height_, 32);
    kzb_error error = {};
    bool written = false;
    if (picture != nullptr && mask != nullptr) {
        const Colour *from = pixels_.data();
        for (int y = 0; y < height_; ++y) {
            uint8_t *pixels = row_of(picture, y), *levels = row_of(mask, y);
            for (int x = 0; x < width_; ++x, ++from, pixels += 4, levels += 4) {
                pixels[1] = to_byte(from->red);
                pixels[2] = to_byte(from->green);
                pixels[3] = to_byte(from->blue);
                levels[1] = levels[2] = levels[3] = to_byte(alpha_at(position(x), position(y)));
            }
        }
        kzb_picture_set_mask(picture, mask);
        written = kzb_picture_write(picture, path, nullptr, &error);
        mistake = error.message;
    } else {
        mistake = "there is not enough memory for the picture";
    }
    release(mask);
    release(picture);
    return written;
}

} // namespace painting
