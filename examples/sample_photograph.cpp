// Paints a picture that is as hard on an image program as a photograph: an evening at a lake, with smooth gradients,
// hard edges, thin lines, fine detail and a border that fades to transparent.
//
//     sample_photograph OUTPUT [WIDTH HEIGHT]
#include "painting.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

using namespace painting;

namespace {

// Heights are fractions of the picture's own, from the top; widths use the same unit.
constexpr float shore = 0.64f;
constexpr float meadow = 0.78f;
constexpr float balloon_height = 0.27f;

Colour sky(const Canvas &canvas, float x, float y) {
    const Colour zenith = {0.10f, 0.27f, 0.56f}, middle = {0.47f, 0.64f, 0.82f}, low = {0.98f, 0.78f, 0.52f};
    Colour colour = y < 0.35f ? mix(zenith, middle, y / 0.35f) : mix(middle, low, smooth(0.35f, shore, y));
    const float clouds = smooth(0.50f, 0.80f, cloud_noise(x * 2.2f, y * 7.0f, 5)) * smooth(0.02f, 0.25f, y);
    colour = mix(colour, mix(Colour{1.0f, 0.97f, 0.93f}, Colour{0.95f, 0.62f, 0.45f}, y / shore), clouds * 0.75f);
    const float distance = std::hypot(x - canvas.width_in_heights() * 0.66f, y - 0.47f);
    colour = mix(colour, {1.0f, 0.84f, 0.55f}, 0.85f * std::exp(-distance * 5.5f));
    return mix(colour, {1.0f, 0.98f, 0.90f}, 1.0f - smooth(0.030f, 0.033f, distance));
}

float ridge(int layer, float x) {
    const float heights[] = {0.545f, 0.575f, 0.615f};
    const float relief[] = {0.150f, 0.120f, 0.060f};
    const float l = static_cast<float>(layer);
    return heights[layer] + relief[layer] * (0.5f - cloud_noise(x * (1.6f + l * 0.9f), 11.0f + 7.0f * l, 6));
}

Colour land(const Canvas &canvas, float x, float y) {
    Colour colour = sky(canvas, x, y);
    const Colour shades[] = {{0.52f, 0.55f, 0.66f}, {0.33f, 0.42f, 0.46f}, {0.16f, 0.27f, 0.20f}};
    for (int layer = 0; layer < 3; ++layer) {
        const float detail = 40.0f + 60.0f * static_cast<float>(layer);
        const float texture = 0.75f + 0.5f * cloud_noise(x * detail, y * detail * 2, 3);
        const Colour shade = scale(shades[layer], texture);
        colour = mix(colour, mix(shade, {0.95f, 0.75f, 0.58f}, 0.30f - 0.12f * static_cast<float>(layer)),
                     clamp((y - ridge(layer, x)) * canvas.height() + 0.5f));
    }
    return colour;
}

Colour lake(const Canvas &canvas, float x, float y) {
    const float depth = (y - shore) / (meadow - shore);
    const float ripple = (cloud_noise(x * 14.0f, y * 160.0f, 4) - 0.5f) * (0.01f + 0.05f * depth);
    Colour colour = scale(land(canvas, x + ripple, shore - (y - shore) * 1.6f + ripple), 0.82f);
    colour = mix(colour, {0.07f, 0.17f, 0.27f}, 0.20f + 0.30f * depth);
    const float glitter = smooth(0.62f, 0.80f, cloud_noise(x * 60.0f, y * 420.0f, 2));
    const float under_sun = std::exp(-std::fabs(x - canvas.width_in_heights() * 0.66f) * 7.0f);
    return mix(colour, {1.0f, 0.90f, 0.66f}, glitter * under_sun);
}

Colour ground(float x, float y) {
    const float near = (y - meadow) / (1.0f - meadow);
    const float grain = cloud_noise(x * 90.0f / (0.4f + near), y * 300.0f / (0.4f + near), 4);
    return scale(mix({0.30f, 0.36f, 0.14f}, {0.11f, 0.21f, 0.07f}, near), 0.6f + 0.9f * grain);
}

void paint_background(Canvas &canvas) {
    canvas.paint([&](float x, float y) {
        if (y < shore) return land(canvas, x, y);
        const float edge = meadow + 0.02f * (cloud_noise(x * 3.0f, 3.0f, 4) - 0.5f);
        return y < edge ? lake(canvas, x, y) : ground(x, y);
    });
}

// A striped balloon: hard edges, straight and round.
void paint_balloon(Canvas &canvas) {
    const Point centre = {canvas.width_in_heights() * 0.24f, balloon_height};
    const float radius = 0.115f;
    const Point basket = {centre.x, centre.y + radius * 1.75f};
    for (float side : {-0.7f, -0.25f, 0.25f, 0.7f})
        canvas.line({centre.x + side * radius, centre.y + radius * 0.72f}, {basket.x + side * 0.018f, basket.y},
                    0.0012f, {0.15f, 0.12f, 0.10f});
    const Colour stripes[] = {{0.83f, 0.13f, 0.12f}, {0.97f, 0.93f, 0.84f}, {0.93f, 0.66f, 0.10f}};
    canvas.shape({centre.x - radius, centre.y - radius}, {centre.x + radius, centre.y + radius * 1.35f},
                 [&](Point p, Colour &colour) {
                     const float x = (p.x - centre.x) / radius, y = (p.y - centre.y) / radius;
                     const float half = y < 0 ? std::sqrt(clamp(1 - y * y)) : 1.0f - 0.42f * y * y;
                     if (std::fabs(x) > half) return false;
                     const int stripe = static_cast<int>((std::asin(x / half) + 1.5708f) * 3.2f);
                     colour = scale(stripes[stripe % 3], 0.72f + 0.28f * clamp(0.6f + 0.7f * x));
                     return true;
                 });
    canvas.polygon({{basket.x - 0.018f, basket.y},
                    {basket.x + 0.018f, basket.y},
                    {basket.x + 0.014f, basket.y + 0.028f},
                    {basket.x - 0.014f, basket.y + 0.028f}},
                   {0.42f, 0.26f, 0.12f});
}

void paint_barn(Canvas &canvas) {
    const float x = canvas.width_in_heights() * 0.80f, y = 0.70f;
    const Colour red = {0.58f, 0.12f, 0.09f}, dark = {0.20f, 0.16f, 0.17f}, white = {0.95f, 0.93f, 0.88f};
    canvas.polygon({{x, y}, {x + 0.22f, y}, {x + 0.22f, y + 0.11f}, {x, y + 0.11f}}, red);
    for (float board = 0.008f; board < 0.22f; board += 0.008f)
        canvas.line({x + board, y}, {x + board, y + 0.11f}, 0.0008f, {0.40f, 0.08f, 0.06f});
    canvas.polygon({{x - 0.015f, y}, {x + 0.05f, y - 0.075f}, {x + 0.17f, y - 0.075f}, {x + 0.235f, y}}, dark);
    for (float left : {0.03f, 0.15f}) {
        const Point a = {x + left, y + 0.03f}, b = {x + left + 0.04f, y + 0.07f};
        canvas.polygon({a, {b.x, a.y}, b, {a.x, b.y}}, {0.98f, 0.83f, 0.45f});
        canvas.line({(a.x + b.x) / 2, a.y}, {(a.x + b.x) / 2, b.y}, 0.0022f, white);
        canvas.line({a.x, (a.y + b.y) / 2}, {b.x, (a.y + b.y) / 2}, 0.0022f, white);
    }
    canvas.polygon({{x + 0.09f, y + 0.04f}, {x + 0.13f, y + 0.04f}, {x + 0.13f, y + 0.11f}, {x + 0.09f, y + 0.11f}},
                   white);
    canvas.line({x + 0.09f, y + 0.04f}, {x + 0.13f, y + 0.11f}, 0.003f, red);
    canvas.line({x + 0.13f, y + 0.04f}, {x + 0.09f, y + 0.11f}, 0.003f, red);
}

// Posts, and between them wires thinner than a pixel.
void paint_fence(Canvas &canvas) {
    Random random(77);
    const float step = 0.16f;
    const auto post_top = [&](float x) { return meadow + 0.005f + 0.01f * std::sin(x * 3.0f); };
    for (float x = -0.05f; x < canvas.width_in_heights() + step; x += step) {
        for (float wire : {0.02f, 0.045f, 0.07f}) {
            const Point from = {x, post_top(x) + wire}, to = {x + step, post_top(x + step) + wire};
            const Point sag = {(from.x + to.x) / 2, (from.y + to.y) / 2 + 0.006f};
            canvas.line(from, sag, 0.0009f, {0.78f, 0.76f, 0.72f});
            canvas.line(sag, to, 0.0009f, {0.78f, 0.76f, 0.72f});
        }
        const float top = post_top(x), lean = random.next(-0.004f, 0.004f);
        canvas.polygon(
            {{x - 0.005f + lean, top}, {x + 0.005f + lean, top}, {x + 0.006f, top + 0.11f}, {x - 0.006f, top + 0.11f}},
            {0.36f, 0.29f, 0.22f});
    }
}

void paint_grass(Canvas &canvas) {
    Random random(2024);
    const int blades = static_cast<int>(5200.0f * canvas.width_in_heights());
    for (int i = 0; i < blades; ++i) {
        // From far to near, so that the near ones cover the far ones.
        const float near = std::sqrt(static_cast<float>(i) / static_cast<float>(blades));
        Point at = {random.next(-0.05f, canvas.width_in_heights() + 0.05f), meadow + 0.02f + near * 0.26f};
        const float length = (0.015f + 0.075f * near) * random.next(0.6f, 1.3f);
        const float lean = random.next(-0.6f, 0.9f), thickness = 0.0006f + 0.0022f * near;
        const Colour colour =
            scale(mix({0.20f, 0.38f, 0.10f}, {0.72f, 0.68f, 0.25f}, random.next(0.0f, 1.0f)), random.next(0.45f, 1.1f));
        constexpr int parts = 5;
        for (int part = 0; part < parts; ++part) {
            const float t = static_cast<float>(part) / parts;
            const Point to = {at.x + lean * length * (0.1f + t) / parts, at.y - length * (1.0f - 0.3f * t) / parts};
            canvas.line(at, to, thickness * (1.0f - t), colour);
            at = to;
        }
    }
    for (int i = 0; i < 260; ++i) {
        const float near = random.next(0.0f, 1.0f);
        const Point at = {random.next(0.0f, canvas.width_in_heights()), meadow + 0.04f + near * 0.2f};
        const float radius = 0.0015f + 0.0045f * near;
        const Colour petals[] = {{0.95f, 0.95f, 0.98f}, {0.98f, 0.80f, 0.15f}, {0.80f, 0.22f, 0.30f}};
        const Colour petal = petals[i % 3];
        canvas.shape({at.x - radius, at.y - radius}, {at.x + radius, at.y + radius}, [&](Point p, Colour &colour) {
            colour = petal;
            return std::hypot(p.x - at.x, p.y - at.y) < radius;
        });
    }
}

// Opaque inside, fading softly to transparent towards the corners.
float opacity(const Canvas &canvas, float x, float y) {
    const float across = std::fabs(2 * x / canvas.width_in_heights() - 1), down = std::fabs(2 * y - 1);
    return 1.0f - smooth(0.74f, 1.0f, std::pow(std::pow(across, 5.0f) + std::pow(down, 5.0f), 0.2f));
}

} // namespace

int main(int count, char **arguments) {
    const int width = count == 4 ? std::atoi(arguments[2]) : 2560;
    const int height = count == 4 ? std::atoi(arguments[3]) : 1600;
    if ((count != 2 && count != 4) || width < 1 || height < 1) {
        std::fprintf(stderr, "usage: sample_photograph OUTPUT [WIDTH HEIGHT]\n");
        return 2;
    }
    Canvas canvas(width, height);
    paint_background(canvas);
    paint_barn(canvas);
    paint_balloon(canvas);
    paint_fence(canvas);
    paint_grass(canvas);
    std::string mistake;
    if (canvas.write(
            arguments[1], [&](float x, float y) { return opacity(canvas, x, y); }, mistake))
        return 0;
    std::fprintf(stderr, "sample_photograph: %s\n", mistake.c_str());
    return 1;
}
