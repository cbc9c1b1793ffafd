// From a folder item to a path with the system's own functions: the three ways, normal form D, each call failing, and
// every object released once.

#include "platform/simulated_host.h"

#include "host/folder_item.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace kzb::test::simulated {
namespace {

constexpr const char *none = "(none)";
const std::u16string folder = u"/Disk/F\u00FCr";
// What they are in normal form D.
const std::string folder_path = "/Disk/Fu\xCC\x88r";
const std::string new_file_path = folder_path + "/ne\xCC\x81w";

class FolderItemPath : public testing::Test {
protected:
    void SetUp() override { start(); }
    // However it went: nothing is left and nothing was released twice.
    void TearDown() override { EXPECT_EQ(left(), Left()); }

    static void item_exists() {
        item.exists = true;
        item.reference = reference_to(folder + u"/old");
    }
    static void item_is_new() {
        item.has_parent = true;
        item.parent = reference_to(folder);
        item.name = name_of(u"n\u00E9w");
    }
    static void item_has_older_reference() {
        item.has_older_reference = true;
        item.older_reference = older_reference_of(u"/Disk/older");
    }
    static std::string path() {
        const auto found = folder_item_path(the_item());
        return found ? found.get() : none;
    }
};

TEST_F(FolderItemPath, NilHasNone) {
    item_exists();
    EXPECT_FALSE(folder_item_path(nullptr));
    EXPECT_TRUE(calls().empty());
}

TEST_F(FolderItemPath, OfAnExistingItemComesFromItsReference) {
    item_exists();
    item_is_new();
    item_has_older_reference();
    EXPECT_EQ(path(), folder_path + "/old");
}

TEST_F(FolderItemPath, OfANewItemIsItsFolderAndItsName) {
    item_is_new();
    item_has_older_reference();
    EXPECT_EQ(path(), new_file_path);
}

TEST_F(FolderItemPath, IsTheSpecificationsWhenNothingElseIsThere) {
    item_has_older_reference();
    EXPECT_EQ(path(), "/Disk/older");
}

TEST_F(FolderItemPath, OfAnItemThatTheHostKnowsNothingOfIsNone) {
    EXPECT_EQ(path(), none);
}

TEST_F(FolderItemPath, OfAReferenceWithoutURLComesFromTheNextWay) {
    item_exists();
    item_is_new();
    item_has_older_reference();
    fail("CFURLCreateFromFSRef");
    EXPECT_EQ(path(), new_file_path);
}

TEST_F(FolderItemPath, OfAFolderWithoutURLComesFromTheSpecification) {
    item_is_new();
    item_has_older_reference();
    fail("CFURLCreateFromFSRef");
    EXPECT_EQ(path(), "/Disk/older");
}

TEST_F(FolderItemPath, OfANameThatCannotBeAppendedComesFromTheSpecification) {
    item_is_new();
    item_has_older_reference();
    fail("CFURLCreateCopyAppendingPathComponent");
    EXPECT_EQ(path(), "/Disk/older");
}

TEST_F(FolderItemPath, OfANameThatIsNoTextIsTheFolders) {
    item_is_new();
    fail("CFStringCreateWithCharacters");
    EXPECT_EQ(path(), folder_path);
}

TEST_F(FolderItemPath, ANameLongerThanItsRecordIsNoText) {
    item_is_new();
    item.name.length = 256;
    EXPECT_EQ(path(), folder_path);
    EXPECT_EQ(std::ranges::count(calls(), "CFStringCreateWithCharacters"), 0);
}

TEST_F(FolderItemPath, TakesNamesOfFullLength) {
    item_is_new();
    item.name = name_of(std::u16string(255, u'\u30A2'));
    EXPECT_EQ(path().size(), folder_path.size() + 1 + 3 * 255);
}

TEST_F(FolderItemPath, AppendsTheNameInNormalFormD) {
    item_is_new();
    // The path cannot be normalised, the name was.
    fail("CFStringCreateMutableCopy", 2);
    EXPECT_EQ(path(), "/Disk/F\xC3\xBCr/ne\xCC\x81w");
}

TEST_F(FolderItemPath, IsUsedAsItIsWhenItCannotBeCopied) {
    item_exists();
    fail("CFStringCreateMutableCopy");
    EXPECT_EQ(path(), "/Disk/F\xC3\xBCr/old");
}

TEST_F(FolderItemPath, IsNoneWithoutOneCharacter) {
    item.exists = true;
    item.reference = reference_to(u"");
    EXPECT_EQ(path(), none);
    EXPECT_EQ(std::ranges::count(calls(), "CFStringGetCString"), 0);
}

TEST_F(FolderItemPath, OfOneCharacterOfThreeBytesFits) {
    item.exists = true;
    item.reference = reference_to(u"\u30A2");
    EXPECT_EQ(path(), "\xE3\x82\xA2");
}

TEST_F(FolderItemPath, IsNoneWhenTheURLHasNoPathOrThePathNoUTF8) {
    for (const char *function : {"CFURLCopyFileSystemPath", "CFStringGetCString"}) {
        start();
        item_exists();
        item_has_older_reference();
        fail(function);
        EXPECT_EQ(path(), none) << function;
        EXPECT_EQ(left(), Left()) << function;
    }
}

TEST_F(FolderItemPath, IsNoneWhenTheSpecificationHasNoReference) {
    item_has_older_reference();
    fail("FSpMakeFSRef");
    EXPECT_EQ(path(), none);
    EXPECT_EQ(std::ranges::count(calls(), "CFURLCreateFromFSRef"), 0);
}

// Each call that each way makes, made to fail in its turn.
TEST_F(FolderItemPath, LeavesNothingBehindWhicheverCallFails) {
    void (*const ways[])() = {item_exists, item_is_new, item_has_older_reference};
    for (void (*way)() : ways) {
        start();
        way();
        path();
        const std::vector<std::string> made = calls();
        ASSERT_GE(made.size(), 5u);
        for (const std::string &function : std::set<std::string>(made.begin(), made.end()))
            for (int nth = 1; nth <= std::ranges::count(made, function); ++nth) {
                start();
                way();
                fail(function, nth);
                const std::string found = path();
                EXPECT_EQ(left(), Left()) << function << ' ' << nth;
                EXPECT_TRUE(found == none || found.starts_with("/Disk/")) << function << ' ' << nth << ": " << found;
            }
    }
}

TEST_F(FolderItemPath, ReleasesEachObjectExactlyOnce) {
    item_is_new();
    path();
    // The folder's URL, the name and its copy, the file's URL, the path and its copy.
    EXPECT_EQ(std::ranges::count(calls(), "CFRelease"), 6);
    EXPECT_EQ(std::ranges::count(calls(), "CFRetain"), 0);
}

} // namespace
} // namespace kzb::test::simulated
