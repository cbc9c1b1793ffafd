// What file-backed images ask of the system: how often they map, and what becomes of them when a call fails.

#include "fixtures/storages.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// The module's calls, counted by name; of one name some are made to fail.
std::map<std::string, int> calls;
std::string failing;
int first_failing = 0, last_failing = 0; // counted from 1
int failing_error = 0;

bool fails(const char *name) {
    const int count = ++calls[name];
    if (name != failing || count < first_failing || count > last_failing) return false;
    errno = failing_error;
    return true;
}

} // namespace

// The module is linked so that its calls of these functions come here.
#pragma GCC visibility push(default)
extern "C" {
int __wrap_open64(const char *path, int flags, mode_t mode) {
    return fails("open") ? -1 : open(path, flags, mode);
}
int __wrap_ftruncate64(int descriptor, int64_t length) {
    return fails("ftruncate") ? -1 : ftruncate(descriptor, length);
}
int __wrap_fallocate64(int descriptor, int mode, int64_t start, int64_t length) {
    return fails("fallocate") ? -1 : fallocate(descriptor, mode, start, length);
}
int64_t __wrap_lseek64(int descriptor, int64_t offset, int whence) {
    return fails("lseek") ? 0 : lseek(descriptor, offset, whence);
}
ssize_t __wrap_write(int descriptor, const void *bytes, size_t count) {
    return write(descriptor, bytes, fails("write") ? count / 2 : count);
}
void *__wrap_mmap64(void *address, size_t size, int rights, int flags, int descriptor, int64_t offset) {
    return fails("mmap") ? MAP_FAILED : mmap(address, size, rights, flags, descriptor, offset);
}
int __wrap_munmap(void *address, size_t size) {
    fails("munmap");
    return munmap(address, size);
}
}
#pragma GCC visibility pop

namespace kzb::test {
namespace {

class ScratchFileCalls : public testing::Test {
protected:
    void SetUp() override {
        calls.clear();
        failing.clear();
    }

    static void fail(const char *name, int error, int first = 1, int last = INT32_MAX) {
        calls.clear();
        failing = name;
        failing_error = error;
        first_failing = first;
        last_failing = last;
    }

    static int mappings_of(const std::function<void()> &operation) {
        calls.clear();
        operation();
        return calls["mmap"];
    }
};

Image in_file(const std::string &path, int32_t width, int32_t height, int32_t format) {
    return Image(Object::make("PictureKZB", width, height, format, 0, folder_item(path)));
}

ptrdiff_t open_descriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

TEST_F(ScratchFileCalls, AWalkFromRowToRowMapsEachBlockOnce) {
    for (const auto &[rows, blocks] : {std::pair(8250, 3), {20'000, 5}, {4096, 1}, {4097, 2}, {100, 1}, {1, 1}}) {
        const int32_t height = rows; // clang 14 gives lambdas no structured bindings
        Image image;
        EXPECT_EQ(mappings_of([&] { image = in_file(scratch_path(), 1000, height, 2); }), 1);
        ASSERT_EQ(image.integer("RowSize"), 4096);
        SCOPED_TRACE(height);
        EXPECT_LE(mappings_of([&] { image.call("FillRect", 9); }), blocks);
        EXPECT_LE(mappings_of([&] { image.call("Invert"); }), blocks + 1);
        EXPECT_LE(mappings_of([&] { image.call("DataStringInFormat", 11); }), blocks + 1);
        EXPECT_LE(mappings_of([&] {
                      for (int32_t y = 0; y < height; ++y) image.call("RawRow", y);
                  }),
                  blocks + 1);
        EXPECT_LE(mappings_of([&] {
                      for (int32_t y = 2; y < height; ++y)
                          for (int32_t back : {0, 1, 2}) image.call("RawRow", y - back);
                  }),
                  blocks + 1)
            << "with the two rows before each";
        const Image memory(1000, height, 2);
        EXPECT_LE(mappings_of([&] { memory.call("CopyPixels", image); }), blocks + 1);
        EXPECT_LE(mappings_of([&] { image.call("CopyPixels", memory); }), blocks + 1);
        const Image other = in_file(scratch_path(), 1000, height, 2);
        EXPECT_LE(mappings_of([&] { image.call("CopyPixels", other); }), 2 * (blocks + 1));
    }
}

TEST_F(ScratchFileCalls, AWalkInEitherDirectionMapsAtMostOneBlockMoreThanTheImageHas) {
    // Rows of 1, 3, 4 and 9 pages: whole large pages hold 512, 512, 128 and 512 of them, a block 4096, 1365, 1024 and
    // 455.
    for (const auto &[row_bytes, rows] : {std::pair(4000, 8200), {12'000, 3000}, {16'000, 3000}, {36'000, 1400}}) {
        const int32_t width = row_bytes / 4, height = rows;
        const Image image = in_file(scratch_path(), width, height, 2),
                    other = in_file(scratch_path(), width, height, 2);
        const Image memory = *make_image(Storage::memory, width, height, 2, 5);
        const int64_t rows_per_block = image.integer("MappingBlockSize") / image.integer("RowSize");
        const auto most = static_cast<int>((height + rows_per_block - 1) / rows_per_block + 1);
        SCOPED_TRACE(image.integer("RowSize"));
        EXPECT_LE(mappings_of([&] { image.call("CopyPixels", memory); }), most);
        EXPECT_LE(mappings_of([&] { image.call("Invert"); }), most);
        EXPECT_LE(mappings_of([&] { image.call("ClearRect", 3, 5, width, height - 9); }), most);
        EXPECT_LE(mappings_of([&] { image.call("GammaFilter", memory, 2.0); }), most);
        EXPECT_LE(mappings_of([&] { memory.call("Rotate180", image); }), most) << "upwards";
        EXPECT_LE(mappings_of([&] { image.call("VMirror"); }), most) << "from both ends to the middle";
        const Image view(image.call("ClipImage", 1, 77, width - 2, height - 100));
        EXPECT_LE(mappings_of([&] { view.call("Invert"); }), most + 1);
        EXPECT_LE(mappings_of([&] { view.call("Rotate180", other); }), 2 * most);
    }
}

TEST_F(ScratchFileCalls, ACopyBetweenFarRowsOfOneFileDoesNotMapForEachRow) {
    const Image image = in_file(scratch_path(), 1000, 12'000, 2);
    EXPECT_LE(mappings_of([&] { image.call("CopyPixels", image, 0, 0, 1000, 6000, 0, 6000); }), 12);
    const Image upper(image.call("ClipImage", 0, 0, 1000, 6000)), lower(image.call("ClipImage", 0, 6000, 1000, 6000));
    EXPECT_LE(mappings_of([&] { upper.call("CopyPixels", lower); }), 6);
}

TEST_F(ScratchFileCalls, EachMappingIsGivenBack) {
    calls.clear();
    {
        const Image image = in_file(scratch_path(), 1000, 12'000, 2);
        const Image view(image.call("ClipImage", 1, 1, 900, 11'000));
        view.call("Invert");
        image.call("CopyPixels", image, 0, 0, 1000, 100, 0, 6000);
        image.set("MappingBlockSize", 32 << 20);
    }
    EXPECT_GT(calls["mmap"], 5);
    EXPECT_EQ(calls["mmap"], calls["munmap"]);
}

TEST_F(ScratchFileCalls, AFailureDuringConstructionRemovesTheFile) {
    struct Fault {
        const char *name;
        int error, call;
    };
    for (const Fault &fault : {Fault{"ftruncate", EIO, 1},
                               {"ftruncate", ENOSPC, 2},
                               {"fallocate", ENOSPC, 1},
                               {"fallocate", EDQUOT, 1},
                               {"fallocate", EFBIG, 1},
                               {"lseek", EIO, 1},
                               {"write", ENOSPC, 1},
                               {"mmap", ENOMEM, 1}}) {
        SCOPED_TRACE(std::string(fault.name) + " " + std::to_string(fault.call));
        const std::string path = scratch_path();
        const Value file = folder_item(path);
        const ptrdiff_t descriptors = open_descriptors();
        fail(fault.name, fault.error, fault.call, fault.call);
        const Image image(Object::make("PictureKZB", 40, 30, 2, 0, file));
        EXPECT_GE(calls[fault.name], fault.call) << "not reached";
        EXPECT_FALSE(image.valid());
        EXPECT_EQ(image.width(), 40);
        EXPECT_FALSE(std::filesystem::exists(path));
        EXPECT_EQ(open_descriptors(), descriptors);
        image.call("FillRect", 1);
        image.call("Close");
        failing.clear();
        image.call("Constructor", 40, 30, 2, 0, file);
        EXPECT_TRUE(image.valid()) << "the next one works";
    }
}

TEST_F(ScratchFileCalls, AFileThatCannotBeOpenedIsLeftAsItIs) {
    const std::string path = scratch_path();
    fail("open", EACCES);
    EXPECT_FALSE(in_file(path, 40, 30, 2).valid());
    EXPECT_EQ(calls["ftruncate"], 0);
}

TEST_F(ScratchFileCalls, AFileSystemThatCannotReserveIsUsedAsItIs) {
    fail("fallocate", EOPNOTSUPP);
    const Image image = in_file(scratch_path(), 40, 30, 2);
    EXPECT_TRUE(image.valid());
    image.call("FillRect", 4);
    EXPECT_EQ(image.row(29)[0], 4);
}

TEST_F(ScratchFileCalls, AfterAFailedMappingTheNextCallTriesAgain) {
    const Image image = in_file(scratch_path(), 1000, 9000, 2);
    image.call("FillRect", 4);
    image.row(0);
    fail("mmap", ENOMEM, 1, 2);
    EXPECT_TRUE(image.call("Row", 8000).is_nil());
    // Operations take an image without a mapped block for one that is not usable.
    image.call("FillRect", 5);
    image.call("Invert");
    EXPECT_TRUE(image.valid());
    EXPECT_TRUE(image.call("RawRow", 8000).is_nil());
    EXPECT_EQ(image.row(8000)[0], 4);
    image.call("FillRect", 5);
    EXPECT_EQ(image.row(0)[0], 5);
}

TEST_F(ScratchFileCalls, AnOperationStopsAtARowThatCannotBeMapped) {
    const Image image = in_file(scratch_path(), 1000, 9000, 2);
    const Image memory(1000, 9000, 2);
    memory.call("FillRect", 9);
    const std::pair<const char *, std::function<void()>> operations[] = {
        {"FillRect", [&] { image.call("FillRect", 9); }},
        {"FillRectRGB", [&] { image.call("FillRectRGB", 9, 9, 9); }},
        {"Invert", [&] { image.call("Invert"); }},
        {"CopyPixels", [&] { image.call("CopyPixels", memory); }},
        {"CopyPixels from it", [&] { memory.call("CopyPixels", image); }},
        {"DrawPictureRGB",
         [&] {
             image.call("DrawPictureRGB", Value::adopt(reinterpret_cast<KZBObject>(kzb_picture_new(10, 9000, 32))), 0,
                        0, 1000, 9000);
         }},
    };
    for (const auto &[name, operation] : operations) {
        SCOPED_TRACE(name);
        failing.clear();
        image.row(0);
        image.call("ClearRect");
        image.row(0);
        memory.call("FillRect", 9);
        fail("mmap", ENOMEM);
        operation();
        failing.clear();
        const bool reads = std::string(name) == "CopyPixels from it";
        EXPECT_NE(reads ? memory.row(4095)[0] : image.row(4095)[0], reads ? 9 : 0);
        EXPECT_EQ(reads ? memory.row(4096)[0] : image.row(4096)[0], reads ? 9 : 0);
    }
}

TEST_F(ScratchFileCalls, AViewWhoseBlockCannotBeMappedTriesAgain) {
    const Image image = in_file(scratch_path(), 1000, 100, 2);
    fail("mmap", ENOMEM);
    const Image view(image.call("ClipImage", 3, 3, 30, 30));
    ASSERT_TRUE(view);
    view.call("FillRect", 4);
    failing.clear();
    EXPECT_EQ(view.row(0)[0], 0);
    view.call("FillRect", 4);
    EXPECT_EQ(view.row(0)[0], 4);
}

} // namespace
} // namespace kzb::test
