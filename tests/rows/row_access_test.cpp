// Single rows as memory blocks: RawRow, Row and its setter.

#include "fixtures/storages.h"

#include <gtest/gtest.h>

#include <cstring>

namespace kzb::test {
namespace {

constexpr const char *out_of_bounds = "OutOfBoundsException";
constexpr const char *nil_object = "NilObjectException";

TEST(Row, IsACopyOfRowSizeBytesWhateverTheLayout) {
    const Image image = *make_image(Storage::memory, 10, 3, 1, 1);
    const Bytes row = image.row(1);
    EXPECT_EQ(row.size(), 64u);
    const Bytes storage = storage_of(image);
    EXPECT_TRUE(std::equal(row.begin(), row.end(), storage.begin() + 64));
    image.assign("Row", block_of(Bytes(64, 9)), 1);
    EXPECT_NE(row, image.row(1));
}

TEST(Row, SetsWhatItGetsInEveryStorage) {
    for (const Layout &of : layouts()) {
        for (Storage storage : every_storage) {
            const auto image = make_image(storage, 6, 4, of.code, 3);
            if (!image) continue;
            SCOPED_TRACE(std::string(of.name) + " in " + name_of(storage));
            const auto row_size = static_cast<size_t>(image->integer("RowSize"));
            for (int32_t y = 0; y < 4; ++y) {
                Snapshots snapshots;
                const PlainImage expected = snapshots.of(*image);
                const Bytes bytes = random_bytes(row_size, static_cast<uint32_t>(y));
                std::memcpy(expected.storage->data() + expected.position(y, 0), bytes.data(), row_size);
                image->assign("Row", block_of(bytes), y);
                EXPECT_EQ(image->row(y), bytes);
                EXPECT_EQ(difference(*image, expected), "");
            }
        }
    }
}

TEST(Row, OfAnImageOverABlockHasTheCallersRowSize) {
    const Image image = *make_image(Storage::block, 7, 2, 12, 1);
    EXPECT_EQ(image.row(0).size(), 7u * 2 + 5);
}

TEST(RawRow, AliasesTheRow) {
    for (Storage storage : every_storage) {
        const Image image = *make_image(storage, 6, 4, 4, 3);
        SCOPED_TRACE(name_of(storage));
        const Value raw = image.call("RawRow", 2);
        auto *bytes = static_cast<uint8_t *>(kzb_block_bytes(reinterpret_cast<KZBMemoryBlock>(raw.object()), nullptr));
        ASSERT_NE(bytes, nullptr);
        bytes[3] = 77;
        EXPECT_EQ(image.row(2)[3], 77);
        image.assign("Row", block_of(Bytes(static_cast<size_t>(image.integer("RowSize")), 5)), 2);
        EXPECT_EQ(bytes[3], 5);
    }
}

TEST(Rows, AnIndexOutsideTheImageRaises) {
    const Image image(4, 5, 1);
    EXPECT_NO_THROW(image.call("Row", 4));
    EXPECT_NO_THROW(image.call("RawRow", 4));
    const Value block = block_of(Bytes(64));
    for (int32_t index : {5, -1, INT32_MAX, INT32_MIN}) {
        for (const Failure &failure : {image.failure("Row", index), image.failure("RawRow", index),
                                       image.assign_failure("Row", block, index)}) {
            EXPECT_EQ(failure.exception, out_of_bounds);
            EXPECT_EQ(failure.message, "Index is out of bounds.");
        }
    }
}

TEST(Rows, AnInvalidImageGivesNilForEveryIndex) {
    const Image image(4, 5, 99);
    for (int32_t index : {0, 5, -1}) {
        EXPECT_TRUE(image.call("Row", index).is_nil());
        EXPECT_TRUE(image.call("RawRow", index).is_nil());
    }
}

TEST(Rows, TheSetterDoesNotLookAtValid) {
    const Image image(4, 5, 99);
    EXPECT_EQ(image.assign_failure("Row", block_of(Bytes(64)), 5).exception, out_of_bounds);
    EXPECT_EQ(image.assign_failure("Row", nullptr, 2).exception, nil_object);
    EXPECT_NO_THROW(image.assign("Row", block_of(Bytes(64)), 2));
}

TEST(Rows, ANilBlockRaisesAfterTheIndexIsTested) {
    const Image image(4, 5, 1);
    const Failure nil = image.assign_failure("Row", nullptr, 0);
    EXPECT_EQ(nil.exception, nil_object);
    EXPECT_EQ(nil.message, "Memoryblock is nil");
    EXPECT_EQ(image.assign_failure("Row", nullptr, 5).exception, out_of_bounds);
}

TEST(Rows, AClosedImageHasNone) {
    const Image image(4, 5, 1);
    image.call("Close");
    EXPECT_TRUE(image.call("Row", 0).is_nil());
    EXPECT_TRUE(image.call("RawRow", 0).is_nil());
    EXPECT_NO_THROW(image.assign("Row", block_of(Bytes(64)), 0));
}

TEST(Rows, AViewHasNoneOnceItsParentIsClosed) {
    for (Storage storage : {Storage::memory, Storage::file}) {
        const Image parent = *make_image(storage, 4, 5, 1, 1);
        const Image view(parent.call("ClipImage", 1, 1, 2, 2));
        EXPECT_FALSE(view.call("Row", 0).is_nil());
        parent.call("Close");
        EXPECT_TRUE(view.call("Row", 0).is_nil());
        EXPECT_TRUE(view.call("RawRow", 0).is_nil());
        EXPECT_NO_THROW(view.assign("Row", block_of(Bytes(4096)), 0));
    }
}

} // namespace
} // namespace kzb::test
