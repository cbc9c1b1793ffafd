// A canvas to paint sample pictures on, and the noise that makes them look natural.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace painting {

struct Colour {
    float red, green, blue; // 0 to 1
};

struct Point {
    float x, y; // in heights of the picture, from the top left corner
};

float clamp(float value);                        // to 0 to 1
float smooth(float from, float to, float value); // 0 below `from`, 1 above `to`, an s-curve between
Colour mix(Colour from, Colour to, float share);
Colour scale(Colour colour, float factor);

// Noise of several octaves, 0 to 1, the same on every run.
float cloud_noise(float x, float y, int octaves);

class Random {
public:
    explicit Random(uint32_t seed) : state_(seed) {}
    float next(float from, float to);

private:
    uint32_t state_;
};

class Canvas {
public:
    Canvas(int width, int height);

    float height() const { return static_cast<float>(height_); } // in pixels
    float width_in_heights() const { return static_cast<float>(width_) / static_cast<float>(height_); }

    // Every pixel.
    void paint(const std::function<Colour(float x, float y)> &colour_at);

    // The part of a box where `inside` says so and gives the colour, with smooth edges.
    void shape(Point least, Point most, const std::function<bool(Point, Colour &)> &inside);
    void polygon(const std::vector<Point> &corners, Colour colour);
    void line(Point from, Point to, float thickness, Colour colour);

    // Writes an image file; alpha_at gives the opacity.
    bool write(const char *path, const std::function<float(float x, float y)> &alpha_at, std::string &mistake) const;

private:
    Colour &pixel(int x, int y) {
        return pixels_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)];
    }
    float position(int index) const { return (static_cast<float>(index) + 0.5f) / height(); }

    int width_, height_;
    std::vector<Colour> pixels_;
};

} // namespace painting
