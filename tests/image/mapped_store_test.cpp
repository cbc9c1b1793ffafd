// File-backed images: the scratch file, its blocks, and what becomes of it.

#include "fixtures/storages.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace kzb::test {
namespace {

namespace files = std::filesystem;

Image in_file(const std::string &path, int32_t width, int32_t height, int32_t format, int32_t block_size = 0) {
    return Image(Object::make("PictureKZB", width, height, format, block_size, folder_item(path)));
}

// The blocks of a file that this process has mapped: offset and length.
struct Block {
    int64_t offset, length;
    bool operator==(const Block &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Block &block) {
    return out << block.length << " bytes at " << block.offset;
}

std::vector<Block> blocks_of(const std::string &path) {
    std::vector<Block> blocks;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find(path) == std::string::npos) continue;
        unsigned long long start = 0, end = 0, offset = 0;
        char rights[5];
        EXPECT_EQ(std::sscanf(line.c_str(), "%llx-%llx %4s %llx", &start, &end, rights, &offset), 4);
        EXPECT_STREQ(rights, "rw-s");
        blocks.push_back({static_cast<int64_t>(offset), static_cast<int64_t>(end - start)});
    }
    return blocks;
}

// Descriptors that this process has open on a file.
std::vector<int> descriptors_of(const std::string &path) {
    std::vector<int> found;
    for (const auto &entry : files::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (files::read_symlink(entry, gone) == path) found.push_back(std::stoi(entry.path().filename()));
    }
    return found;
}

constexpr int64_t page = 4096;

TEST(BlockSize, EveryWishUpToTheSquareOfThePageSizeGivesThatSquare) {
    ASSERT_EQ(getpagesize(), page);
    const Image image = in_file(scratch_path(), 1, 10'000, 11);
    EXPECT_EQ(image.integer("MappingBlockSize"), 16'777'216);
    for (int32_t wish : {1, 1 << 20, 16 << 20, (16 << 20) + 4095, -1, INT32_MIN, 0}) {
        EXPECT_EQ(in_file(scratch_path(), 1, 5000, 11, wish).integer("MappingBlockSize"), 16'777'216) << wish;
        image.set("MappingBlockSize", wish);
        EXPECT_EQ(image.integer("MappingBlockSize"), 16'777'216) << wish;
    }
    for (auto [wish, size] :
         {std::pair(32 << 20, 33'554'432), {(16 << 20) + 4096, 16'781'312}, {INT32_MAX, 40'960'000}}) {
        EXPECT_EQ(in_file(scratch_path(), 1, 10'000, 11, wish).integer("MappingBlockSize"), size) << wish;
        image.set("MappingBlockSize", wish);
        EXPECT_EQ(image.integer("MappingBlockSize"), size) << wish;
    }
}

TEST(BlockSize, IsNoMoreThanTheImage) {
    const std::string path = scratch_path();
    const Image image = in_file(path, 100, 100, 1);
    EXPECT_EQ(image.integer("RowSize"), 4096);
    EXPECT_EQ(image.integer("TotalSize"), 409'600);
    EXPECT_EQ(image.integer("MappingBlockSize"), 409'600);
    EXPECT_EQ(blocks_of(path), (std::vector<Block>{{0, 409'600}}));
    image.row(99);
    EXPECT_EQ(blocks_of(path), (std::vector<Block>{{0, 409'600}})) << "100 rows per block";
}

TEST(BlockSize, HoldsFiveRows) {
    const std::string path = scratch_path();
    const Image image = in_file(path, 1'000'000, 8, 2);
    EXPECT_EQ(image.integer("RowSize"), 4'001'792);
    EXPECT_EQ(image.integer("MappingBlockSize"), 5 * 4'001'792);
    EXPECT_EQ(in_file(scratch_path(), 10, 2, 2).integer("MappingBlockSize"), 5 * 4096) << "more than the image";
}

TEST(Blocks, StartTwoRowsBeforeTheRowAndEndWithTheImage) {
    const std::string path = scratch_path();
    const Image image = in_file(path, 102'400, 100, 2);
    constexpr int64_t row = 409'600;
    ASSERT_EQ(image.integer("RowSize"), row);
    ASSERT_EQ(image.integer("MappingBlockSize") / row, 40);
    const auto first_row_with = [&](int32_t requested) {
        image.row(requested);
        const auto blocks = blocks_of(path);
        EXPECT_EQ(blocks.size(), 1u);
        EXPECT_EQ(blocks.at(0).length, 16'777'216);
        return blocks.at(0).offset / row;
    };
    EXPECT_EQ(first_row_with(0), 0);
    EXPECT_EQ(first_row_with(39), 0);
    EXPECT_EQ(first_row_with(50), 48);
    EXPECT_EQ(first_row_with(48), 48);
    EXPECT_EQ(first_row_with(87), 48);
    EXPECT_EQ(first_row_with(99), 60);
    EXPECT_EQ(first_row_with(60), 60);
    EXPECT_EQ(first_row_with(59), 57);
    EXPECT_EQ(first_row_with(1), 1);
    EXPECT_EQ(first_row_with(0), 0);
    EXPECT_EQ(first_row_with(40), 38);
    EXPECT_EQ(first_row_with(88), 60);
}

TEST(Blocks, OfAViewHoldTheRowsThatItShows) {
    const Image tall = make_tall_image(3, 2, 4);
    // Views lower than a block, as high as one, higher, and at the end; each has a window of its own.
    for (auto [y, height] :
         {std::pair(0, 8250), {1, 8249}, {5000, 3}, {4000, 4096}, {4100, 4150}, {3500, 4700}, {8249, 1}}) {
        SCOPED_TRACE(std::to_string(height) + " rows from " + std::to_string(y));
        const Image view(tall.call("ClipImage", 1, y, 2, height));
        ASSERT_EQ(view.height(), height);
        for (int32_t step : {1, 997})
            for (int32_t i = 0; i < height; i += step) {
                ASSERT_EQ(view.row(i), tall.row(y + i)) << i;
                if (step == 1 && i == 20) i = std::max(i, height - 20);
            }
        view.set("MappingBlockSize", 32 << 20);
        EXPECT_EQ(tall.integer("MappingBlockSize"), 16 << 20) << "the parent keeps its own";
        EXPECT_EQ(view.row(height - 1), tall.row(y + height - 1));
    }
}

TEST(MappingBlockSize, IsSetAndTheFirstBlockMappedAgain) {
    const std::string path = scratch_path();
    const Image image = in_file(path, 4, 12'000, 2, 32 << 20);
    image.row(11'000);
    EXPECT_EQ(blocks_of(path), (std::vector<Block>{{(12'000 - 8192) * page, 32 << 20}}));
    image.set("MappingBlockSize", 0);
    EXPECT_EQ(blocks_of(path), (std::vector<Block>{{0, 16 << 20}}));
    EXPECT_EQ(image.row(11'000).size(), 4096u);
    EXPECT_EQ(blocks_of(path), (std::vector<Block>{{(12'000 - 4096) * page, 16 << 20}}));
}

TEST(MappingBlockSize, OfAnImageInMemoryIsANumber) {
    const Image image = *make_image(Storage::memory, 10, 10, 1, 1);
    EXPECT_EQ(image.integer("MappingBlockSize"), 0);
    const Bytes before = storage_of(image);
    image.set("MappingBlockSize", 1 << 20);
    EXPECT_EQ(image.integer("MappingBlockSize"), 4096) << "its 640 bytes in whole pages";
    EXPECT_EQ(storage_of(image), before);
}

TEST(MappingBlockSize, OfFiveRowsBeyond31BitsIsNotSet) {
    uint8_t byte = 0;
    for (const auto &[row_size, set] : {std::pair{429'490'176, true}, {429'500'000, false}}) {
        const Image image(Object::make("PictureKZB", block_at(&byte), 1, 1, 11, row_size));
        ASSERT_TRUE(image.valid());
        image.set("MappingBlockSize", 1);
        EXPECT_EQ(image.integer("MappingBlockSize"), set ? 5 * int64_t{row_size} : 0) << row_size;
    }
}

TEST(MappingBlockSize, IsLeftAloneWithoutStorage) {
    const Image empty(Object::make("PictureKZB"));
    empty.set("MappingBlockSize", 5);
    EXPECT_EQ(empty.integer("MappingBlockSize"), 0);
    const Image closed = in_file(scratch_path(), 4, 4, 2);
    const Image view(closed.call("ClipImage", 0, 0, 2, 2));
    closed.call("Close");
    for (const Image &image : {closed, view, Image(0, 4, 1)}) {
        const int64_t before = image.integer("MappingBlockSize");
        image.set("MappingBlockSize", 1 << 30);
        EXPECT_EQ(image.integer("MappingBlockSize"), before);
    }
}

TEST(ScratchFile, IsPrivateAsLongAsTheImageAndOnePage) {
    const std::string path = scratch_path();
    const Image image = in_file(path, 100, 7, 2);
    ASSERT_TRUE(image.valid());
    EXPECT_TRUE(image.flag("IsMapping"));
    struct stat status = {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_size, image.integer("TotalSize") + page);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
    const auto descriptors = descriptors_of(path);
    ASSERT_EQ(descriptors.size(), 1u);
    EXPECT_TRUE(fcntl(descriptors[0], F_GETFD) & FD_CLOEXEC) << "not handed to other programs";
    for (int32_t y = 0; y < 7; ++y) EXPECT_EQ(image.row(y), Bytes(4096));
    image.call("Close");
    EXPECT_FALSE(files::exists(path));
    EXPECT_TRUE(descriptors_of(path).empty());
    EXPECT_TRUE(blocks_of(path).empty());
}

TEST(ScratchFile, HoldsTheRowsAtTheirPlaces) {
    const std::string path = scratch_path();
    const Image image = in_file(path, 50, 9, 2);
    for (int32_t y = 0; y < 9; ++y) image.assign("Row", block_of(random_bytes(4096, static_cast<uint32_t>(y))), y);
    std::ifstream file(path, std::ios::binary);
    const Bytes bytes((std::istreambuf_iterator<char>(file)), {});
    ASSERT_EQ(bytes.size(), 10u * 4096);
    EXPECT_TRUE(std::equal(bytes.begin() + 6 * page, bytes.begin() + 7 * page, random_bytes(4096, 6).begin()));
    EXPECT_TRUE(std::all_of(bytes.begin() + 9 * page, bytes.end(), [](uint8_t byte) { return byte == 0; }));
}

TEST(ScratchFile, IsWalkedWholeWhereBlocksAreNoWholeLargePages) {
    // 819 rows in a block; by large pages it would be 512, and twice as many blocks.
    constexpr int32_t width = 5 * 4096, height = 1537;
    const Image image = in_file(scratch_path(), width, height, 11);
    const auto bytes_of_row = [](int32_t y) { return random_bytes(width, static_cast<uint32_t>(y)); };
    for (int32_t y : {0, 511, 512, 818, 819, 1536}) image.assign("Row", block_of(bytes_of_row(y)), y);
    image.call("Invert");
    for (int32_t y = 0; y < height; ++y) {
        const bool filled = y == 0 || y == 511 || y == 512 || y == 818 || y == 819 || y == 1536;
        Bytes expected = filled ? bytes_of_row(y) : Bytes(width);
        for (uint8_t &byte : expected) byte = static_cast<uint8_t>(~byte);
        ASSERT_TRUE(image.row(y) == expected) << y;
    }
}

TEST(ScratchFile, GoesWithTheLastReference) {
    const std::string path = scratch_path();
    {
        const Image image = in_file(path, 4, 4, 2);
        const Image view(image.call("ClipImage", 0, 0, 2, 2));
        EXPECT_TRUE(files::exists(path));
    }
    EXPECT_FALSE(files::exists(path));
    EXPECT_TRUE(blocks_of(path).empty());
}

TEST(ScratchFile, ReplacesAFileThatWasThere) {
    const std::string path = scratch_path();
    std::ofstream(path) << std::string(100'000, 'x');
    files::permissions(path, files::perms(0644));
    const Image image = in_file(path, 4, 3, 2);
    ASSERT_TRUE(image.valid());
    struct stat status = {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 4 * page);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
    EXPECT_EQ(image.row(2), Bytes(4096));
}

TEST(ScratchFile, OfAnImageBuiltAnewGoesAtOnce) {
    const std::string first = scratch_path(), second = scratch_path();
    const Image image = in_file(first, 4, 3, 2);
    image.call("Constructor", 4, 3, 2, 0, folder_item(second));
    EXPECT_FALSE(files::exists(first));
    EXPECT_TRUE(files::exists(second));
    image.call("Constructor", 4, 3, 2, 0, folder_item(second));
    EXPECT_TRUE(image.valid());
    EXPECT_TRUE(files::exists(second)) << "on the same file";
    image.call("Constructor", 4, 3, 2);
    EXPECT_FALSE(files::exists(second));
    EXPECT_FALSE(image.flag("IsMapping"));
    EXPECT_EQ(image.integer("MappingBlockSize"), 0);
}

TEST(ScratchFile, ThatAnotherImageUsesIsLeftAlone) {
    const std::string path = scratch_path();
    const Image image = in_file(path, 4, 3, 2);
    image.call("FillRect", 5);
    EXPECT_FALSE(in_file(path, 400, 300, 2).valid());
    EXPECT_EQ(image.row(2), Bytes(4096, 5));
    EXPECT_EQ(files::file_size(path), 4u * 4096);
}

TEST(ScratchFile, IsNotOnDescriptor0WhichASecondReleaseCloses) {
    kzb_standard_input(); // so that the program's own is out of the way
    close(0);
    const std::string path = scratch_path();
    const Image image(Object::make("PictureKZB", 4, 3, 2, 0, folder_item(path)));
    const auto descriptors = descriptors_of(path);
    ASSERT_EQ(descriptors.size(), 1u);
    EXPECT_NE(descriptors[0], 0);
    {
        const Image other = in_file(scratch_path(), 4, 3, 2);
        other.call("Close");
        other.call("Close");
    }
    EXPECT_EQ(files::file_size(path), 4u * 4096);
    image.call("FillRect", 7);
    EXPECT_EQ(image.row(2)[0], 7);
    EXPECT_FALSE(in_file(path, 4, 3, 2).valid()) << "still locked";
}

// The image was not made, the size and layout can be read, and nothing is left behind at the path.
void expect_refused(const Image &image, const std::string &path, int32_t width, int32_t height, int32_t format) {
    EXPECT_FALSE(image.valid());
    EXPECT_EQ(image.width(), width);
    EXPECT_EQ(image.height(), height);
    EXPECT_EQ(image.format(), format);
    EXPECT_FALSE(files::exists(path));
    image.call("FillRect", 1);
    image.call("Close");
    image.call("Close");
}

TEST(FileBacked, ARowWithoutBytesOrBeyond31BitsIsRefused) {
    for (auto [width, format] : {std::pair(0, 2), {536'870'912, 2}, {INT32_MAX, 2}, {INT32_MAX, 14}, {INT32_MAX, 11}}) {
        const std::string path = scratch_path();
        expect_refused(in_file(path, width, 3, format), path, width, 3, format);
    }
}

TEST(FileBacked, FiveRowsBeyond31BitsAreRefused) {
    const std::string path = scratch_path();
    EXPECT_FALSE(in_file(path, 429'494'273, 1, 11).valid()) << "a byte more than fits";
    EXPECT_FALSE(files::exists(path));
}

TEST(FileBacked, NegativeSizesAndUnknownLayoutsAreRefused) {
    for (auto [width, height, format] :
         {std::array{-1, 3, 2}, {3, -1, 2}, {INT32_MIN, INT32_MIN, 2}, {3, 3, 0}, {3, 3, 22}}) {
        const std::string path = scratch_path();
        expect_refused(in_file(path, width, height, format), path, width, height, format);
    }
}

TEST(FileBacked, AnUnknownLayoutLeavesAFileThatWasThere) {
    const std::string path = scratch_path();
    std::ofstream(path) << "kept";
    EXPECT_FALSE(in_file(path, 3, 3, 0).valid());
    EXPECT_EQ(files::file_size(path), 4u);
}

TEST(FileBacked, SizesThatNoDiskHoldsAreRefused) {
    const std::string path = scratch_path();
    expect_refused(in_file(path, 400'000'000, INT32_MAX, 11), path, 400'000'000, INT32_MAX, 11);
}

TEST(FileBacked, WithoutAPathThereIsNone) {
    const Image image(Object::make("PictureKZB", 3, 3, 2, 0, nullptr));
    EXPECT_FALSE(image.valid());
    EXPECT_EQ(image.width(), 3);
    EXPECT_FALSE(in_file(scratch_path() + "/no/such/folder", 3, 3, 2).valid());
}

TEST(FileBacked, WhatIsNoPlainFileIsLeftAlone) {
    const std::string folder = scratch_path(), pipe = scratch_path();
    files::create_directory(folder);
    EXPECT_FALSE(in_file(folder, 3, 3, 2).valid());
    EXPECT_TRUE(files::is_directory(folder));
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(in_file(pipe, 3, 3, 2).valid());
    EXPECT_TRUE(files::is_fifo(pipe));
}

TEST(FileBacked, WithoutRowsItIsValidAndNothingHappensToIt) {
    const std::string path = scratch_path();
    const Image image = in_file(path, 3, 0, 2);
    EXPECT_TRUE(image.valid());
    EXPECT_EQ(files::file_size(path), 4096u);
    image.call("ClearRect");
    image.call("FillRect", 3);
    image.set("MappingBlockSize", 0);
    EXPECT_EQ(image.failure("Row", 0).exception, "OutOfBoundsException");
}

TEST(FileBacked, PathsAreUnicode) {
    const std::string path = scratch_path() + " é – ɟıןǝ 文件 \U0001F5BC";
    const Image image = in_file(path, 3, 3, 2);
    EXPECT_TRUE(image.valid());
    EXPECT_TRUE(files::exists(path));
}

} // namespace
} // namespace kzb::test
