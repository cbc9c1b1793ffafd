#include "host.h"
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>

using namespace kzb_test;

namespace {

using MemoryBlock = SamplerTest;
using Array = SamplerTest;

template <class Function> Function *entry(const char *name) {
    return reinterpret_cast<Function *>(kzb_host_entry(name));
}

TEST_F(MemoryBlock, IsZeroFilledOrACopy) {
    KZBMemoryBlock zeros = kzb_block_new(nullptr, 100);
    size_t count = 0;
    auto bytes = static_cast<unsigned char *>(kzb_block_bytes(zeros, &count));
    EXPECT_EQ(count, 100U);
    for (size_t i = 0; i < count; ++i) EXPECT_EQ(bytes[i], 0);
    Value first = object(zeros), second = block("copy");
    EXPECT_EQ(std::memcmp(kzb_block_bytes(reinterpret_cast<KZBMemoryBlock>(second->object), nullptr), "copy", 4), 0);
    EXPECT_STREQ(kzb_class_name(second->object), "MemoryBlock");
    EXPECT_EQ(kzb_live_count("memoryblock"), 2U);
}

TEST_F(MemoryBlock, IsMadeByModules) {
    auto make_block = entry<newMemoryBlockFunction>("newMemoryBlock");
    auto address = entry<memoryBlockGetPtrFunction>("memoryBlockGetPtr");
    EXPECT_EQ(make_block(-1), nullptr);
    Value empty = object(make_block(0)), some = object(make_block(33));
    EXPECT_NE(address(reinterpret_cast<KZBMemoryBlock>(empty->object)), nullptr);
    auto bytes = static_cast<unsigned char *>(address(reinterpret_cast<KZBMemoryBlock>(some->object)));
    for (int i = 0; i < 33; ++i) EXPECT_EQ(bytes[i], 0);
    EXPECT_EQ(address(nullptr), nullptr);
}

TEST_F(MemoryBlock, MayReferToBytesThatAreNotItsOwn) {
    Value own = block("bytes");
    Value wrapped = call("Wrapped", own);
    EXPECT_NE(wrapped->object, own->object);
    size_t count = 77;
    EXPECT_EQ(kzb_block_bytes(reinterpret_cast<KZBMemoryBlock>(wrapped->object), &count),
              kzb_block_bytes(reinterpret_cast<KZBMemoryBlock>(own->object), nullptr));
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(entry<PtrToMemoryBlockFunction>("PtrToMemoryBlock")(nullptr), nullptr);
}

TEST_F(MemoryBlock, ThatDoesNotFitIsNil) {
    EXPECT_EQ(kzb_block_new(nullptr, SIZE_MAX), nullptr);
    // Half of a small address space may be had once, but not twice.
    const KZBMemoryBlock half = kzb_block_new(nullptr, SIZE_MAX / 2 - 8);
    EXPECT_EQ(kzb_block_new(nullptr, SIZE_MAX / 2 - 8), nullptr);
    kzb_value held = {};
    held.kind = KZB_OBJECT;
    held.object = reinterpret_cast<KZBObject>(half);
    kzb_release(&held);
    size_t count = 77;
    EXPECT_EQ(kzb_block_bytes(nullptr, &count), nullptr);
    EXPECT_EQ(count, 0U);
}

TEST_F(Array, IsReadByModules) {
    EXPECT_EQ(call("Total", array({1, -2, INT_MAX}))->integer, INT_MAX - 1);
    EXPECT_EQ(call("Total", array({}))->integer, 0);
    EXPECT_EQ(call("Total", nil())->integer, 0);
    EXPECT_EQ(call("Element", array({5, 6, 7}), integer(2))->integer, 7);
    EXPECT_EQ(kzb_array_new(nullptr, 1), nullptr);
    EXPECT_EQ(kzb_live_count("Array"), 0U);
}

TEST_F(Array, ReadsBeyondItAreAMisuse) {
    EXPECT_EQ(call("Element", array({5, 6, 7}), integer(3))->integer, -77);
    EXPECT_EQ(call("Element", array({}), integer(-1))->integer, -77);
    expected_misuses = {"RuntimeDirectReadIntArray was asked for element 3 of 3",
                        "RuntimeDirectReadIntArray was asked for element -1 of 0"};
}

class FolderItem : public SamplerTest {
protected:
    void SetUp() override {
        SamplerTest::SetUp();
        folder = std::filesystem::canonical(testing::TempDir()) / "kzb folder item";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "there") << "x";
    }
    void TearDown() override {
        std::filesystem::remove_all(folder);
        SamplerTest::TearDown();
    }
    enum Kind { itself, older, parent_and_name };
    std::string path_of(const std::string &path, Kind kind) {
        Value item = object(kzb_folder_item_new(path.c_str()));
        Value result = call("PathOf", item, integer(kind));
        return result->string ? result.text() : "nil";
    }
    std::filesystem::path folder;
};

TEST_F(FolderItem, ItselfMustExist) {
    EXPECT_EQ(path_of(folder / "there", itself), folder / "there");
    EXPECT_EQ(path_of(folder / "absent", itself), "nil");
    EXPECT_EQ(path_of("/", itself), "/");
}

TEST_F(FolderItem, ParentAndNameNeedTheParent) {
    EXPECT_EQ(path_of(folder / "absent", parent_and_name), folder.string() + "|absent");
    EXPECT_EQ(path_of(folder / "there", parent_and_name), folder.string() + "|there");
    EXPECT_EQ(path_of(folder / "naïve €𝄞.raw", parent_and_name), folder.string() + "|naïve €𝄞.raw");
    EXPECT_EQ(path_of(folder / "no folder" / "absent", parent_and_name), "nil");
    EXPECT_EQ(path_of(folder / "there" / "absent", parent_and_name), "nil"); // a file is no folder
    EXPECT_EQ(path_of("/absent", parent_and_name), "/|absent");
    EXPECT_EQ(path_of("/", parent_and_name), "nil");
    EXPECT_EQ(path_of(folder / "not \xFF utf-8", parent_and_name), "nil");
}

TEST_F(FolderItem, NamesHaveAtMost255Units) {
    std::string longest(255, 'n'), longer(256, 'n'), pairs;
    for (int i = 0; i < 128; ++i) pairs += "𝄞";
    EXPECT_EQ(path_of(folder / longest, parent_and_name), folder.string() + "|" + longest);
    EXPECT_EQ(path_of(folder / longer, parent_and_name), "nil");
    EXPECT_EQ(path_of(folder / pairs, parent_and_name), "nil");
}

TEST_F(FolderItem, TheOlderReferenceNeedNotExist) {
    EXPECT_EQ(path_of("/no/such/folder/absent", older), "/no/such/folder/absent");
}

TEST_F(FolderItem, PathsAreAbsoluteAndTidy) {
    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    EXPECT_EQ(path_of("there", older), folder / "there");
    EXPECT_EQ(path_of("./there/", older), folder / "there");
    std::filesystem::current_path(before);
    EXPECT_EQ(path_of("//tmp/./a//b/", older), "/tmp/a/b");
    EXPECT_EQ(path_of("/tmp/../tmp/a", older), "/tmp/../tmp/a");
}

TEST_F(FolderItem, LongPathsHaveNoReference) {
    std::string longest = "/" + std::string(4094, 'p'), longer = "/" + std::string(4095, 'p');
    EXPECT_EQ(path_of(longest, older), longest);
    EXPECT_EQ(path_of(longer, older), "nil");
    EXPECT_EQ(path_of(longer, itself), "nil");
}

TEST_F(FolderItem, NeedsAPath) {
    EXPECT_EQ(kzb_folder_item_new(nullptr), nullptr);
    EXPECT_EQ(kzb_folder_item_new(""), nullptr);
    EXPECT_EQ(call("PathOf", nil(), integer(itself))->string, nullptr);
}

} // namespace
