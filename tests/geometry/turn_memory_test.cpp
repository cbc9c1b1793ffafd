// Mirrors and rotations when memory is short: the module asks this program for it.

#include "fixtures/scarce_memory.h"
#include "fixtures/storages.h"

#include <gtest/gtest.h>

#include <set>

namespace kzb::test {
namespace {

class TurnsShortOfMemory : public testing::Test {
protected:
    void TearDown() override { denied = 0; }

    // Calls a method with one request denied.
    template <class... Arguments>
    static Value call(int denied_request, const Image &image, const char *method, const Arguments &...arguments) {
        requests = 0;
        denied = denied_request;
        Value result = image.call(method, arguments...);
        denied = 0;
        return result;
    }
};

TEST_F(TurnsShortOfMemory, AMirrorOfRowsThatLieOverEachOtherWithoutMemoryForBothChangesNothing) {
    for (const char *method : {"VMirror", "Rotate180"}) {
        const Value memory = block_of(random_bytes(64, 1));
        const Image image(Object::make("PictureKZB", memory, 4, 6, 1, 5));
        const Bytes before = memory.bytes();
        for (int request : {1, 2}) {
            call(request, image, method);
            EXPECT_EQ(memory.bytes(), before) << method;
        }
        call(0, image, method);
        EXPECT_EQ(requests, 2);
        EXPECT_NE(memory.bytes(), before);
    }
}

TEST_F(TurnsShortOfMemory, OtherMirrorsNeedNone) {
    const Image image = *make_image(Storage::memory, 5, 4, 2, 1);
    for (const char *method : {"HMirror", "VMirror"}) {
        const Bytes before = storage_of(image);
        call(1, image, method);
        EXPECT_EQ(requests, 0) << method;
        EXPECT_NE(storage_of(image), before) << method;
    }
}

TEST_F(TurnsShortOfMemory, ARotationImageByImageWithoutMemoryForOneOrItsShiftsGivesNilAndForRowsTheSameBytes) {
    const Image image = *make_image(Storage::memory, 40, 30, 3, 1);
    // A factory that supplies nothing: it might.
    image.set("Factory", Object::make("PictureFactoryKZB"));
    const Bytes expected = storage_of(Image(call(0, image, "Rotate", 20.0, 1, 2, 3, 4, 5)));
    const int all = requests;
    std::set<int> nil;
    for (int request = 1; request <= all; ++request) {
        const Image result(call(request, image, "Rotate", 20.0, 1, 2, 3, 4, 5));
        if (result)
            EXPECT_EQ(storage_of(result), expected) << request;
        else
            nil.insert(request);
    }
    // Each image, then its shifts, before what the shear works with: four rows, a strip, four rows.
    EXPECT_EQ(nil, (std::set<int>{1, 2, 7, 8, 10, 11}));
    EXPECT_EQ(all, 15);
    image.set("Factory", nullptr);
}

TEST_F(TurnsShortOfMemory, ARotationWithoutMemoryToBeMadeAtOnceIsMadeImageByImage) {
    for (int32_t format : {1, 2, 3}) {
        const Image image = *make_image(Storage::memory, 40, 30, format, 1);
        const Bytes expected = storage_of(Image(call(0, image, "Rotate", 20.0, 1, 2, 3, 4, 5)));
        const int all = requests;
        EXPECT_GT(all, 10);
        for (int request = 1; request <= all; ++request) {
            const Image result(call(request, image, "Rotate", 20.0, 1, 2, 3, 4, 5));
            ASSERT_TRUE(result) << request;
            EXPECT_EQ(storage_of(result), expected) << request;
        }
    }
}

} // namespace
} // namespace kzb::test
