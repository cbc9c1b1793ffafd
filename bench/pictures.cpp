#include "pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <deque>

namespace kzb::bench {

using namespace test;

Raster raster_of(const Image &image) {
    const Value memory = image.get("Memory");
    auto *bytes = static_cast<uint8_t *>(kzb_block_bytes(reinterpret_cast<KZBMemoryBlock>(memory.object()), nullptr));
    return {bytes, image.width(), image.height(), static_cast<int32_t>(image.integer("PixelSize")),
            static_cast<size_t>(image.integer("RowSize"))};
}

namespace {

void paint_anew(const Raster &raster, uint32_t seed) {
    uint32_t state = seed * 2654435761u + 1;
    std::vector<float> waves(static_cast<size_t>(raster.width));
    for (int32_t y = 0; y < raster.height; ++y) {
        const float slow = std::sin(static_cast<float>(y) * 0.011f + static_cast<float>(seed));
        for (size_t x = 0; x < waves.size(); ++x)
            waves[x] = 60.0f * std::sin(static_cast<float>(x) * 0.007f + slow * 3.0f);
        uint8_t *byte = raster.row(y);
        for (int32_t x = 0; x < raster.width; ++x) {
            // Discs with sharp edges on the waves.
            const int32_t u = x % 320 - 160, v = y % 240 - 120;
            const float disc = u * u + v * v < 6400 ? 50.0f : 0.0f;
            for (int32_t channel = 0; channel < raster.channels; ++channel) {
                state = state * 1664525u + 1013904223u;
                const float noise = static_cast<float>(state >> 28) - 7.5f;
                const float value = 110.0f + waves[static_cast<size_t>(x)] + disc * (channel == 1 ? -1.0f : 1.0f) +
                                    slow * 20.0f * static_cast<float>(channel) + noise;
                *byte++ = static_cast<uint8_t>(std::clamp(value, 0.0f, 255.0f));
            }
        }
    }
}

// The pictures painted lately.
struct Painting {
    int32_t width, height, channels;
    uint32_t seed;
    Bytes bytes;
};
constexpr size_t kept_paintings = 8;
constexpr int64_t kept_bytes = int64_t{1} << 27; // of one painting

} // namespace

void paint(const Raster &raster, uint32_t seed) {
    static std::deque<Painting> kept;
    if (int64_t{raster.height} * static_cast<int64_t>(raster.used_row_bytes()) > kept_bytes)
        return paint_anew(raster, seed);
    const auto is_it = [&](const Painting &p) {
        return p.width == raster.width && p.height == raster.height && p.channels == raster.channels && p.seed == seed;
    };
    auto found = std::find_if(kept.begin(), kept.end(), is_it);
    if (found == kept.end()) {
        paint_anew(raster, seed);
        kept.push_back({raster.width, raster.height, raster.channels, seed, pixels_of(raster)});
        if (kept.size() > kept_paintings) kept.pop_front();
        return;
    }
    Raster from = raster;
    from.bytes = found->bytes.data();
    from.row_bytes = raster.used_row_bytes();
    copy_pixels(from, raster);
}

Image painted(int32_t width, int32_t height, int32_t format, uint32_t seed) {
    const Image image(width, height, format);
    paint(raster_of(image), seed);
    return image;
}

Bytes pixels_of(const Raster &raster) {
    const size_t row = raster.used_row_bytes();
    Bytes bytes(row * static_cast<size_t>(raster.height));
    for (int32_t y = 0; y < raster.height; ++y)
        std::memcpy(bytes.data() + row * static_cast<size_t>(y), raster.row(y), row);
    return bytes;
}

Bytes pixels_of(const Value &value) {
    return value.kind() == KZB_STRING ? value.bytes() : pixels_of(raster_of(Image(value)));
}

Bytes pixels_of(const PlainImage &image) {
    return pixels_of(Raster{image.storage->data() + image.position(0, 0), image.width, image.height, image.pixel_size,
                            static_cast<size_t>(image.row_size)});
}

void copy_pixels(const Raster &from, const Raster &to) {
    const size_t row = std::min(from.used_row_bytes(), to.used_row_bytes());
    for (int32_t y = 0; y < std::min(from.height, to.height); ++y) std::memcpy(to.row(y), from.row(y), row);
}

double mean_difference(const Bytes &a, const Bytes &b, int32_t channels) {
    if (a.size() != b.size() || a.empty()) return 255;
    int64_t sum = 0, count = 0;
    const auto colours = static_cast<size_t>(std::min(channels, 3)), step = static_cast<size_t>(channels);
    for (size_t i = 0; i + step <= a.size(); i += step)
        for (size_t c = 0; c < colours; ++c) sum += std::abs(a[i + c] - b[i + c]);
    count = static_cast<int64_t>(a.size() / step * colours);
    return static_cast<double>(sum) / static_cast<double>(count);
}

} // namespace kzb::bench
