// Images in memory and over memory blocks: construction, limits, Memory, TotalSize, Close.

#include "fixtures/storages.h"

#include <gtest/gtest.h>

namespace kzb::test {
namespace {

void *address_of(const Value &block) {
    return kzb_block_bytes(reinterpret_cast<KZBMemoryBlock>(block.object()), nullptr);
}

TEST(InMemory, RowsArePaddedTo64Bytes) {
    EXPECT_EQ(Image(10, 2, 1).integer("RowSize"), 64);
    EXPECT_EQ(Image(21, 2, 1).integer("RowSize"), 64);
    EXPECT_EQ(Image(22, 2, 1).integer("RowSize"), 128);
    EXPECT_EQ(Image(64, 2, 11).integer("RowSize"), 64);
    EXPECT_EQ(Image(65, 2, 11).integer("TotalSize"), 256);
}

TEST(InMemory, IsZeroFilledAndOwnsNothingElse) {
    const Image image(5, 3, 2);
    EXPECT_TRUE(image.valid());
    EXPECT_EQ(storage_of(image), Bytes(192));
    EXPECT_FALSE(image.flag("IsMapping"));
    EXPECT_EQ(image.integer("RowOffset"), 0);
    EXPECT_TRUE(image.get("Parent").is_nil());
    EXPECT_TRUE(image.get("Factory").is_nil());
    EXPECT_TRUE(image.get("Target").is_nil());
    EXPECT_TRUE(image.get("MemoryTarget").is_nil());
}

TEST(InMemory, AWidthOfZeroIsValidWithoutStorage) {
    const Image image(0, 4, 1);
    EXPECT_TRUE(image.valid());
    EXPECT_EQ(image.integer("RowSize"), 0);
    EXPECT_EQ(image.integer("TotalSize"), 0);
    const Image flat(4, 0, 1);
    EXPECT_TRUE(flat.valid());
    EXPECT_EQ(flat.integer("TotalSize"), 0);
}

TEST(InMemory, SizesThatDoNotFitAreRefused) {
    struct {
        int32_t width, height, format;
    } const refused[] = {{32768, 32768, 2},
                         {INT32_MAX, 1, 14},
                         {INT32_MAX, INT32_MAX, 14},
                         {INT32_MAX, INT32_MAX, 1},
                         {INT32_MAX, 0, 2},
                         {-1, 5, 1},
                         {5, -1, 1},
                         {-5, -5, 1},
                         {INT32_MIN, 5, 2},
                         {5, INT32_MIN, 2},
                         {INT32_MIN, INT32_MIN, 14}};
    for (const auto &[width, height, format] : refused) {
        const Image image(width, height, format);
        EXPECT_FALSE(image.valid()) << width << " x " << height;
        EXPECT_EQ(image.width(), width);
        EXPECT_EQ(image.height(), height);
        EXPECT_TRUE(image.call("Row", 0).is_nil());
        EXPECT_TRUE(image.call("SolarizeFilter", nullptr).is_nil());
    }
}

TEST(InMemory, TheLargestImageIsAccepted) {
    const Image image(16384, 32767, 2);
    EXPECT_TRUE(image.valid());
    EXPECT_EQ(image.integer("TotalSize"), 2147418112);
}

TEST(OverABlock, UsesTheBlocksBytesAndHoldsIt) {
    Value block = block_of(random_bytes(40, 1));
    const KZBObject object = block.object();
    const Image image(Object::make("PictureKZB", block, 3, 4, 1, 10));
    EXPECT_TRUE(image.valid());
    EXPECT_EQ(image.integer("RowSize"), 10);
    EXPECT_EQ(image.integer("TotalSize"), 40);
    EXPECT_EQ(image.get("MemoryTarget").object(), object);
    EXPECT_EQ(address_of(image.get("Memory")), address_of(block));
    const Bytes bytes = block.bytes();
    EXPECT_EQ(image.row(2), Bytes(bytes.begin() + 20, bytes.begin() + 30));
    block = Value();
    EXPECT_EQ(image.row(2).size(), 10u) << "the block lives on with the image";
    image.call("Close");
    EXPECT_TRUE(image.get("MemoryTarget").is_nil());
}

TEST(OverABlock, WithoutABlockNothingIsFilledIn) {
    const Image image(Object::make("PictureKZB", nullptr, 3, 4, 1, 10));
    EXPECT_FALSE(image.valid());
    EXPECT_EQ(image.width(), 0);
    EXPECT_EQ(image.height(), 0);
}

TEST(OverABlock, RefusesWhatDoesNotFit) {
    const Value block = block_of(Bytes(64));
    struct {
        int32_t width, height, format, row_size;
    } const refused[] = {{1, 65536, 11, 65536}, {3, 4, 0, 10},         {3, 4, 22, 10},
                         {3, -4, 1, 10},        {-3, 4, 1, 10},        {3, 4, 1, -10},
                         {3, -4, 1, -10},       {INT32_MAX, 1, 2, 64}, {1, INT32_MAX, 11, INT32_MAX}};
    for (const auto &[width, height, format, row_size] : refused) {
        const Image image(Object::make("PictureKZB", block, width, height, format, row_size));
        EXPECT_FALSE(image.valid()) << width << ' ' << height << ' ' << row_size;
        EXPECT_TRUE(image.get("MemoryTarget").is_nil());
    }
    EXPECT_TRUE(Image(Object::make("PictureKZB", block, 1, 65535, 11, 65536)).valid());
}

TEST(Close, LeavesTheDescriptorAndTakesTheStorage) {
    const Image image(5, 3, 2);
    image.call("Close");
    EXPECT_TRUE(image.valid());
    EXPECT_EQ(image.width(), 5);
    EXPECT_EQ(image.integer("RowSize"), 64);
    EXPECT_TRUE(image.call("Row", 0).is_nil());
    EXPECT_TRUE(image.call("SolarizeFilter", nullptr).is_nil());
    EXPECT_TRUE(image.call("CopyPicture").is_nil());
    EXPECT_EQ(address_of(image.get("Memory")), nullptr);
    image.call("Close");
}

TEST(Close, KeepsTheFactory) {
    const Object factory = Object::make("PictureFactoryKZB");
    const Image image(5, 3, 2);
    image.set("Factory", factory);
    image.call("Close");
    EXPECT_EQ(image.get("Factory").object(), factory.get());
}

TEST(Close, OfAnImageThatWasNeverConstructed) {
    const Image image(5, 3, 99);
    image.call("Close");
    EXPECT_FALSE(image.valid());
}

TEST(Constructors, RunTwiceGiveBackWhatTheFirstOneTook) {
    const Value block = block_of(Bytes(64));
    const Image image(5, 3, 2);
    image.call("Constructor", block, 2, 2, 1, 6);
    EXPECT_TRUE(image.valid());
    EXPECT_EQ(image.get("MemoryTarget").object(), block.object());
    image.call("Constructor", block, 2, 3, 1, 6);
    EXPECT_EQ(image.get("MemoryTarget").object(), block.object());
    image.call("Constructor", 4, 4, 11, 0, folder_item(scratch_path()));
    EXPECT_TRUE(image.flag("IsMapping"));
    EXPECT_TRUE(image.get("MemoryTarget").is_nil());
    image.call("Constructor", 4, 4, 11);
    EXPECT_FALSE(image.flag("IsMapping"));
    EXPECT_EQ(storage_of(image), Bytes(256));
    image.call("Constructor", 4, 4, 77);
    EXPECT_FALSE(image.valid());
    EXPECT_TRUE(image.call("Row", 0).is_nil());
}

TEST(Constructors, WorkAgainAfterClose) {
    const Image image(5, 3, 2);
    image.call("Close");
    image.call("Constructor", 2, 2, 1);
    EXPECT_TRUE(image.valid());
    EXPECT_EQ(storage_of(image), Bytes(128));
}

} // namespace
} // namespace kzb::test
