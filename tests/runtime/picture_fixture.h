// What the tests of pictures share: the host's entry points by type, a folder of their own, and the audit that every
// test ends with.
#ifndef KZB_TESTS_RUNTIME_PICTURE_FIXTURE_H
#define KZB_TESTS_RUNTIME_PICTURE_FIXTURE_H

#include "host.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace kzb_test {

template <class Function> Function *host_function(const char *name) {
    return reinterpret_cast<Function *>(kzb_host_entry(name));
}

// The typed entry point of this name.
#define HOST(name) (::kzb_test::host_function<name##Function>(#name))

inline KZBObject object_of(KZBPicture picture) {
    return reinterpret_cast<KZBObject>(picture);
}

struct ReleaseReference {
    void operator()(KZBObject object) const { HOST(REALUnlockObject)(object); }
    void operator()(KZBPicture picture) const { HOST(REALUnlockObject)(object_of(picture)); }
};
using PictureOwner = std::unique_ptr<std::remove_pointer_t<KZBPicture>, ReleaseReference>;
using ObjectOwner = std::unique_ptr<std::remove_pointer_t<KZBObject>, ReleaseReference>;

inline PictureOwner make_picture(int32_t width, int32_t height, int32_t depth = 32) {
    return PictureOwner(kzb_picture_new(width, height, depth));
}

using Colour = std::array<uint8_t, 3>; // red, green, blue

// One pixel, read and written by the layouts' own rules.
Colour pixel_at(const GWorld &world, int64_t x, int64_t y);
void set_pixel(GWorld &world, int64_t x, int64_t y, Colour colour);

// The level that a mask's pixel has.
uint8_t gray_of(Colour colour);

// Random bytes in every pixel, byte 0 of exchange pixels included.
void fill_randomly(GWorld &world, std::mt19937 &random);

// Every pixel, row by row.
std::vector<Colour> pixels_of(const GWorld &world);

// Draws through the picture's graphics object and its method, as a module does.
void draw(KZBPicture to, KZBPicture from, std::array<int32_t, 4> target, std::array<int32_t, 4> source);

// Ends with nothing alive, no file open and no misuse that the test did not take.
class PictureTest : public HostTest {
protected:
    void SetUp() override;
    void TearDown() override;

    std::string path(const std::string &name) const { return (folder / name).string(); }

    // The lines of misuse since the last call.
    std::vector<std::string> taken_misuses();

    std::filesystem::path folder;

private:
    size_t descriptors = 0;
};

std::vector<uint8_t> file_bytes(const std::string &path);
void write_bytes(const std::string &path, const std::vector<uint8_t> &bytes);

} // namespace kzb_test

#endif
