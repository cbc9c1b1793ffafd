// The command as a user runs it: words in, an exit code, two texts and picture files out.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kzb::test {

struct Outcome {
    int exit; // 128 and more: ended by a signal
    std::string out;
    std::string err;
};

// Runs the command with these words after its name, in the folder.
Outcome run_command(const std::string &folder, const std::vector<std::string> &words);

using Pixel = std::array<uint8_t, 4>; // red, green, blue, alpha

struct Pixels {
    int32_t width = 0;
    int32_t height = 0;
    bool has_alpha = false;
    std::vector<Pixel> all; // row by row; alpha 255 where there is none
    Pixel at(int32_t x, int32_t y) const {
        return all.at(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x));
    }
    bool operator==(const Pixels &) const = default;
};

using PixelRule = std::function<Pixel(int32_t x, int32_t y)>;

Pixels make_pixels(int32_t width, int32_t height, bool has_alpha, const PixelRule &rule);
void write_pixels(const Pixels &pixels, const std::string &path);
Pixels read_pixels(const std::string &path);

// Small pictures without two equal pixels: colours, and colours with alpha.
inline constexpr int32_t sample_width = 7;
inline constexpr int32_t sample_height = 5;
Pixels plain_sample();
Pixels alpha_sample();

// A folder of its own with plain.png and alpha.png in it, and ways to run kzb there.
class CommandTest : public testing::Test {
protected:
    void SetUp() override;

    std::string path(const std::string &name) const { return folder_ + "/" + name; }
    Outcome run(const std::vector<std::string> &words) const { return run_command(folder_, words); }

    // Runs `kzb INPUT words -o out.png`, expects that it ends well and without a word, and gives out.png.
    Pixels result(const std::string &input, const std::vector<std::string> &words) const;

    void write_file(const std::string &name, const std::string &bytes) const;
    std::string read_file(const std::string &name) const;
    // The names in the folder, in order.
    std::vector<std::string> files() const;

private:
    std::string folder_;
};

} // namespace kzb::test
