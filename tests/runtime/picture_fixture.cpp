#include "picture_fixture.h"

#include <cstring>
#include <fstream>
#include <unistd.h>

namespace kzb_test {

namespace {

uint8_t *pixel_address(const GWorld &world, int64_t x, int64_t y) {
    return static_cast<uint8_t *>(world.base_address) + y * world.row_bytes + x * world.depth / 8;
}

size_t open_descriptors() {
    std::filesystem::directory_iterator entries("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

} // namespace

uint8_t gray_of(Colour colour) {
    return static_cast<uint8_t>((77 * colour[0] + 151 * colour[1] + 28 * colour[2]) / 256);
}

Colour pixel_at(const GWorld &world, int64_t x, int64_t y) {
    const uint8_t *pixel = pixel_address(world, x, y);
    if (world.depth == 8) return {pixel[0], pixel[0], pixel[0]};
    if (world.depth == 24) return {pixel[0], pixel[1], pixel[2]};
    if (world.depth == 32) return {pixel[1], pixel[2], pixel[3]};
    uint16_t word;
    std::memcpy(&word, pixel, 2);
    const auto wide = [&](int shift) {
        const int five = word >> shift & 31;
        return static_cast<uint8_t>(five * 8 + five / 4);
    };
    return {wide(10), wide(5), wide(0)};
}

void set_pixel(GWorld &world, int64_t x, int64_t y, Colour colour) {
    uint8_t *pixel = pixel_address(world, x, y);
    if (world.depth == 8) {
        pixel[0] = gray_of(colour);
    } else if (world.depth == 16) {
        const auto word = static_cast<uint16_t>(colour[0] / 8 * 1024 + colour[1] / 8 * 32 + colour[2] / 8);
        std::memcpy(pixel, &word, 2);
    } else {
        std::memcpy(pixel + (world.depth == 32 ? 1 : 0), colour.data(), 3);
    }
}

void fill_randomly(GWorld &world, std::mt19937 &random) {
    for (kzb_word y = 0; y < world.height; ++y) {
        uint8_t *row = pixel_address(world, 0, y);
        for (kzb_word i = 0; i < world.width * world.depth / 8; ++i) row[i] = static_cast<uint8_t>(random());
    }
}

std::vector<Colour> pixels_of(const GWorld &world) {
    std::vector<Colour> pixels;
    for (kzb_word y = 0; y < world.height; ++y) {
        for (kzb_word x = 0; x < world.width; ++x) pixels.push_back(pixel_at(world, x, y));
    }
    return pixels;
}

void draw(KZBPicture to, KZBPicture from, std::array<int32_t, 4> target, std::array<int32_t, 4> source) {
    const ObjectOwner graphics(HOST(pluginPictureGraphicsGetter)(to));
    ASSERT_TRUE(graphics);
    const KZBFunction method = HOST(REALLoadObjectMethod)(
        graphics.get(), "DrawPicture( p as Picture, x as Integer, y as Integer, dw as Integer, dh as Integer, "
                        "sx as Integer, sy as Integer, sw as Integer, sh as Integer )");
    ASSERT_TRUE(method);
    reinterpret_cast<GraphicsDrawPicture *>(method)(graphics.get(), from, target[0], target[1], target[2], target[3],
                                                    source[0], source[1], source[2], source[3]);
}

std::vector<std::string> PictureTest::taken_misuses() {
    return std::exchange(misuses, {});
}

void PictureTest::SetUp() {
    HostTest::SetUp();
    std::string name = (std::filesystem::temp_directory_path() / "kzb-pictures-XXXXXX").string();
    ASSERT_TRUE(mkdtemp(name.data()));
    folder = name;
    descriptors = open_descriptors();
}

void PictureTest::TearDown() {
    EXPECT_EQ(open_descriptors(), descriptors);
    EXPECT_EQ(kzb_live_references(), 0u);
    std::filesystem::remove_all(folder);
    HostTest::TearDown();
}

std::vector<uint8_t> file_bytes(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void write_bytes(const std::string &path, const std::vector<uint8_t> &bytes) {
    // Some file systems write a file to the disk at once when it is truncated and written anew.
    std::filesystem::remove(path);
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

} // namespace kzb_test
