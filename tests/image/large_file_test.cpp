// An image larger than the memory that it may take.

#include "fixtures/host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace kzb::test {
namespace {

constexpr int32_t width = 32'768; // of four bytes: rows of 128 KiB
constexpr int32_t height = 24'576;
constexpr int64_t size = int64_t{3} << 30;
constexpr int64_t memory_limit = 200 << 20;

// The most memory that this program had at any time, mapped files included.
int64_t peak_memory() {
    std::ifstream status("/proc/self/status");
    long long kilobytes = 0;
    for (std::string line; std::getline(status, line);)
        if (std::sscanf(line.c_str(), "VmHWM: %lld kB", &kilobytes) == 1) return kilobytes << 10;
    throw std::runtime_error("the system does not tell the peak of the memory");
}

bool in_memory(const std::filesystem::path &folder) {
    std::ifstream mounts("/proc/mounts");
    std::string device, place, type, rest, best, best_type;
    const std::string path = std::filesystem::canonical(folder).string() + "/";
    while (mounts >> device >> place >> type && std::getline(mounts, rest)) {
        if (place.back() != '/') place += '/';
        if (path.starts_with(place) && place.size() >= best.size()) {
            best = place;
            best_type = type;
        }
    }
    return best_type == "tmpfs" || best_type == "ramfs";
}

// A name in a folder on a disk with room for the file.
std::string place_for_the_file() {
    const char *named = std::getenv("KZB_TEST_LARGE_FOLDER");
    for (const std::filesystem::path &folder :
         {std::filesystem::path(named == nullptr ? "" : named), std::filesystem::temp_directory_path(),
          std::filesystem::path("/var/tmp"), std::filesystem::current_path()}) {
        std::error_code error;
        const auto space = std::filesystem::space(folder, error);
        if (!error && space.available > static_cast<uint64_t>(size) + (uint64_t{1} << 30) && !in_memory(folder))
            return folder / ("picturekzb-large-" + std::to_string(getpid()));
    }
    throw std::runtime_error("no disk with 4 GiB of room: name a folder in KZB_TEST_LARGE_FOLDER");
}

constexpr int32_t bands = 12;
constexpr int32_t band_height = 200; // 25 MiB; all of them are more than the limit

// Bands lie apart by as much as they can, the first at the top and the last at the bottom.
int32_t band_start(int32_t band) {
    return static_cast<int32_t>(int64_t{band} * (height - band_height) / (bands - 1));
}

TEST(LargeFile, OfThreeGibibytesIsFilledCroppedAndReadBackInLittleMemory) {
    const std::string path = place_for_the_file();
    {
        const Image image(Object::make("PictureKZB", width, height, 2, 0, folder_item(path)));
        ASSERT_TRUE(image.valid());
        ASSERT_EQ(image.integer("TotalSize"), size);
        EXPECT_EQ(std::filesystem::file_size(path), static_cast<uint64_t>(size) + 4096);
        // Bands all over the file, beyond 2 GiB too; a disk would take long to hold it all.
        for (int32_t band = 0; band < bands; ++band)
            image.call("FillRect", 0, band_start(band), width, band_height, band + 1);
        image.call("FillRectRGB", 1000, 19'000, 4000, 60, 1, 2, 3, 4);

        const Image crop(image.call("ClipImage", 900, 18'990, 4200, 80));
        EXPECT_EQ(crop.width(), 4200);
        const Image copy(4200, 80, 1);
        copy.call("CopyPixels", crop);
        EXPECT_EQ(crop.call("DataStringInFormat", 1).bytes(), copy.call("DataStringInFormat", 1).bytes());
        const Bytes inside = copy.call("RowInFormat", 40, 1).bytes();
        for (size_t x = 0; x < 4200; ++x)
            ASSERT_EQ(Bytes(inside.begin() + 3 * static_cast<ptrdiff_t>(x),
                            inside.begin() + 3 * static_cast<ptrdiff_t>(x) + 3),
                      (x >= 100 && x < 4100 ? Bytes{1, 2, 3} : Bytes{0, 0, 0}))
                << x;

        // A column through each band and the empty rows around it.
        const Image alpha(image.call("AlphaChannel"));
        for (int32_t band = 0; band < bands; ++band) {
            const int32_t top = std::clamp(band_start(band) - 100, 0, height - 400);
            const Image column(1, 400, 11);
            column.call("CopyPixels", alpha, 0, 0, 1, 400, 20'000, top);
            Bytes expected(400);
            std::fill_n(expected.begin() + (band_start(band) - top), band_height, static_cast<uint8_t>(band + 1));
            EXPECT_EQ(column.call("DataStringInFormat", 11).bytes(), expected) << band;
        }
        const Bytes last = image.row(height - 1);
        EXPECT_EQ(last, Bytes(last.size(), bands));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_LT(peak_memory(), memory_limit);
}

} // namespace
} // namespace kzb::test
