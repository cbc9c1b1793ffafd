// What no host can ask of the module's pieces, but the pieces promise to each other.

#include "host/classes.h"
#include "host/reference.h"
#include "image/channels.h"
#include "image/format.h"
#include "image/lifecycle.h"
#include "image/row_ring.h"
#include "image/storage.h"
#include "rows/conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace kzb {
namespace {

// An image's record without a host's object around it.
struct Holder {
    Holder() { picture_class.instance_data_offset = 0; }
    ~Holder() { close_record(record); }
    ImageObject object() { return reinterpret_cast<ImageObject>(&record); }
    std::vector<uint8_t> pixels() { return {record.pixel_buffer, record.pixel_buffer + record.TotalSize}; }
    ImageRecord record = {};
};

TEST(Records, NilHasNone) {
    EXPECT_EQ(record_of(nullptr), nullptr);
    EXPECT_FALSE(fill_format_descriptor(nullptr, 1, 1, ImageFormatRGB));
}

TEST(Buffers, OfANegativeNumberOrBeyondTheAddressesAreNone) {
    EXPECT_FALSE(Buffer<uint8_t>(-1));
    EXPECT_FALSE(Buffer<double>(INT64_MAX));
    EXPECT_TRUE(Buffer<double>(0));
}

TEST(RowRings, HoldUpToAGigabyte) {
    ImageRecord image = {};
    ASSERT_TRUE(fill_format_descriptor(&image, 1 << 20, 2048, ImageFormatG));
    image.Width = 1 << 20;
    image.Height = 2048;
    const Channels channels = {Channel::gray};
    EXPECT_FALSE(RowRing(image, channels, 1024)) << "its rows' addresses count too";
    EXPECT_TRUE(RowRing(image, channels, 2));
}

TEST(ChannelAddresses, LeadAnywhereIntoTheStorageAndNowhereElse) {
    Holder image;
    construct_in_memory(image.object(), 5, 3, ImageFormatBGR);
    ASSERT_TRUE(image.record.Valid);
    uint8_t *const first = image.record.pixel_buffer;
    const int64_t row_size = image.record.RowSize, total = image.record.TotalSize;
    for (int64_t y = -4; y < 7; ++y)
        for (int64_t x = -30; x < 60; ++x) {
            const int64_t at = y * row_size + x * 3 + 2;
            EXPECT_EQ(channel_at(image.record, x, y, 2), at >= 0 && at < total ? first + at : nullptr)
                << x << ", " << y;
        }
}

TEST(StringsWithoutText, AreNotAssigned) {
    Holder image;
    construct_in_memory(image.object(), 5, 3, ImageFormatRGB);
    ASSERT_TRUE(image.record.Valid);
    std::fill_n(image.record.pixel_buffer, image.record.TotalSize, uint8_t{7});
    const auto before = image.pixels();
    KZBStringRecord text = {1, nullptr, 0, 0};
    set_row_string_in_format(image.object(), 0, ImageFormatRGB, &text);
    set_data_string_in_format(image.object(), ImageFormatRGB, &text);
    EXPECT_EQ(image.pixels(), before);
}

int locks, unlocks;
void lock(KZBObject) {
    ++locks;
}
void unlock(KZBObject) {
    ++unlocks;
}
void *counting_host(const char *name) {
    const std::string_view asked = name;
    if (asked == "REALLockObject") return reinterpret_cast<void *>(lock);
    if (asked == "REALUnlockObject") return reinterpret_cast<void *>(unlock);
    return nullptr;
}

TEST(References, MovedOntoThemselvesAreKept) {
    set_resolver(counting_host);
    locks = unlocks = 0;
    Holder image;
    {
        auto held = ImageReference::share(image.object());
        ImageReference &same = held;
        held = std::move(same);
        EXPECT_EQ(held.get(), image.object());
        EXPECT_EQ(unlocks, 0);
        ImageReference other;
        other = std::move(held);
        EXPECT_EQ(other.get(), image.object());
        EXPECT_FALSE(held);
        EXPECT_EQ(unlocks, 0);
    }
    EXPECT_EQ(locks, 1);
    EXPECT_EQ(unlocks, 1);
}

} // namespace
} // namespace kzb
