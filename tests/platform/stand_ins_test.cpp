// The platform layer without the Mac: files as paths, graphics worlds as records, and memory.

#include "platform/buffer.h"
#include "platform/file_references.h"
#include "platform/graphics_worlds.h"
#include "platform/ticks.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <string>

namespace kzb {
namespace {

FSRef folder_at(const std::string &path) {
    FSRef reference = {};
    path.copy(reference.path, sizeof reference.path);
    return reference;
}

// The path of a file named `name` in `folder`; empty when there is none.
std::string path_in(const std::string &folder, const std::u16string &name) {
    HFSUniStr255 record = {};
    record.length = static_cast<uint16_t>(name.size());
    for (size_t i = 0; i < name.size() && i < 255; ++i) record.unicode[i] = name[i];
    const auto path = path_of(location_in(folder_at(folder), record));
    return path ? path.get() : "";
}

// Sixtieths of a second since the system started, as the system's clock has them.
uint32_t sixtieths() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint32_t>(int64_t{now.tv_sec} * 60 + int64_t{now.tv_nsec} * 60 / 1000000000);
}

TEST(Ticks, AreSixtiethsOfASecondAllThroughASecond) {
    const uint32_t start = sixtieths();
    while (sixtieths() - start <= 60) {
        const uint32_t before = sixtieths(), ticks = TickCount(), after = sixtieths();
        ASSERT_LE(ticks - before, after - before);
    }
}

TEST(FileLocations, AreTheFolderASlashAndTheName) {
    EXPECT_EQ(path_in("/a/b", u"c"), "/a/b/c");
    EXPECT_EQ(path_in("/a/b/", u"c"), "/a/b/c");
    EXPECT_EQ(path_in("/", u"c"), "/c");
    EXPECT_EQ(path_in("/a/b", u""), "/a/b");
    EXPECT_EQ(path_in("", u"c"), "");
}

TEST(FileLocations, OfAReferenceAreItsPath) {
    EXPECT_STREQ(path_of(location_of(folder_at("/a/b"))).get(), "/a/b");
    EXPECT_FALSE(path_of(location_of(folder_at(""))));
    FSSpec older = {};
    std::strcpy(older.path, "/c");
    EXPECT_STREQ(path_of(location_of(older)).get(), "/c");
    EXPECT_FALSE(path_of(location_of(FSSpec{})));
}

TEST(FileLocations, APathThatFillsItsRecordNeedsNoEnd) {
    const std::string longest = "/" + std::string(4095, 'x');
    EXPECT_STREQ(path_of(location_of(folder_at(longest))).get(), longest.c_str());
    EXPECT_EQ(path_in(longest, u"y"), longest + "/y");
}

TEST(FileLocations, NamesBecomeUtf8) {
    EXPECT_EQ(path_in("/", u"\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF"),
              "/\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF");
    EXPECT_EQ(path_in("/", u"\U00010000a\U0010FFFF"), "/\xF0\x90\x80\x80"
                                                      "a\xF4\x8F\xBF\xBF");
    EXPECT_EQ(path_in("/", std::u16string(255, u'\uFFFF')).size(), 1 + 3 * 255u);
}

TEST(FileLocations, ANameThatIsNoTextStandsForTheFolder) {
    const std::u16string high = u"\xD800", low = u"\xDC00";
    EXPECT_EQ(path_in("/f", high), "/f") << "half a pair at the end";
    EXPECT_EQ(path_in("/f", high + u"a"), "/f");
    EXPECT_EQ(path_in("/f", high + u"\uE000"), "/f");
    EXPECT_EQ(path_in("/f", high + high), "/f");
    EXPECT_EQ(path_in("/f", low), "/f");
    EXPECT_EQ(path_in("/f", low + low), "/f");
    EXPECT_EQ(path_in("/f", std::u16string(256, u'a')), "/f") << "longer than its record";
    EXPECT_EQ(path_in("/f", std::u16string(255, u'a')).size(), 3 + 255u);
}

// The error of making a world, 0 for none; the world is disposed of again.
int32_t made(int32_t width, int32_t height, int16_t depth) {
    const Rect bounds = {-1, 5, height - 1, width + 5};
    GWorld other = {};
    GWorldPtr world = &other;
    const int32_t error = NewGWorld(&world, depth, &bounds, nullptr, nullptr, 0);
    EXPECT_EQ(world == nullptr, error != 0) << width << " x " << height << " x " << depth;
    DisposeGWorld(world);
    return error;
}

TEST(GraphicsWorlds, HaveASizeAndADepth) {
    constexpr int32_t parameter_error = -50, memory_full_error = -108;
    for (int16_t depth : {8, 16, 24, 32}) EXPECT_EQ(made(1, 1, depth), 0);
    for (int16_t depth : {0, 1, 7, 9, 15, 17, 31, 33, 64, -32}) EXPECT_EQ(made(1, 1, depth), parameter_error);
    for (int32_t none : {0, -1}) {
        EXPECT_EQ(made(none, 1, 32), parameter_error);
        EXPECT_EQ(made(1, none, 32), parameter_error);
    }
    EXPECT_EQ(made(0x20000000, 1, 32), memory_full_error) << "a row of 2^31 bytes";
    EXPECT_EQ(made(0x1000, 0x20000, 32), memory_full_error) << "2^31 bytes";
}

TEST(GraphicsWorlds, AreZeroWithRowsOf16Bytes) {
    for (const auto &[width, depth, row_bytes] : {std::tuple{4, 32, 16},
                                                  {5, 32, 32},
                                                  {5, 24, 16},
                                                  {6, 24, 32},
                                                  {16, 8, 16},
                                                  {17, 8, 32},
                                                  {8, 16, 16},
                                                  {9, 16, 32}}) {
        const Rect bounds = {0, 0, 3, width};
        GWorldPtr world = nullptr;
        ASSERT_EQ(NewGWorld(&world, static_cast<int16_t>(depth), &bounds, nullptr, nullptr, 0), 0);
        PixMapHandle map = GetGWorldPixMap(world);
        EXPECT_EQ(GetPixRowBytes(map), row_bytes) << width << ", depth " << depth;
        EXPECT_EQ(GetPixDepth(map), depth);
        EXPECT_EQ(world->width, width);
        EXPECT_EQ(world->height, 3);
        EXPECT_EQ(std::string(GetPixBaseAddr(map), 3 * static_cast<size_t>(row_bytes)),
                  std::string(3 * static_cast<size_t>(row_bytes), '\0'));
        DisposeGWorld(world);
    }
}

TEST(GraphicsWorlds, CountTheirLocks) {
    GWorld world = {};
    EXPECT_FALSE(LockPixels(&world)) << "it has no pixels";
    char pixel = 0;
    world.base_address = &pixel;
    EXPECT_TRUE(LockPixels(&world));
    EXPECT_TRUE(LockPixels(&world));
    EXPECT_EQ(world.lock_count, 2);
    UnlockPixels(&world);
    EXPECT_EQ(world.lock_count, 1);
    EXPECT_EQ(GetPortPixMap(&world), &world);
}

TEST(GraphicsWorlds, OfNilAreNothing) {
    EXPECT_FALSE(LockPixels(nullptr));
    UnlockPixels(nullptr);
    EXPECT_EQ(GetPixBaseAddr(nullptr), nullptr);
    EXPECT_EQ(GetPixRowBytes(nullptr), 0);
    EXPECT_EQ(GetPixDepth(nullptr), 0);
    DisposeGWorld(nullptr);
    GWorld not_disposable = {};
    DisposeGWorld(&not_disposable);
}

TEST(Buffers, AreZero) {
    const Buffer<uint64_t> buffer(1000);
    ASSERT_TRUE(buffer);
    for (size_t i = 0; i < 1000; ++i) ASSERT_EQ(buffer[i], 0u);
    EXPECT_TRUE(Buffer<uint64_t>(0)) << "no element is no failure";
}

TEST(Buffers, OfSizesThatCannotBeAreEmpty) {
    EXPECT_FALSE(Buffer<uint8_t>(-1));
    EXPECT_FALSE(Buffer<uint64_t>(INT64_MIN));
    EXPECT_FALSE(Buffer<uint64_t>(INT64_MAX)) << "more bytes than 64 bits count";
    EXPECT_FALSE(Buffer<uint64_t>((int64_t{1} << 61) + 1)) << "8 bytes, were they counted in 64 bits";
}

TEST(Buffers, AreMovedAndHandedOn) {
    Buffer<int> first(1);
    int *place = first.get();
    first[0] = 7;
    Buffer<int> second(std::move(first));
    EXPECT_FALSE(first);
    EXPECT_EQ(second.get(), place);
    first = std::move(second);
    EXPECT_EQ(first.get(), place);
    int *handed = first.release();
    EXPECT_EQ(handed, place);
    EXPECT_FALSE(first);
    EXPECT_EQ(*handed, 7);
    std::free(handed);
}

} // namespace
} // namespace kzb
