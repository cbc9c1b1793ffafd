// Pacing of the two scalings, with a clock that stands where the test puts it.

#include "fixtures/storages.h"
#include "geometry/plain_scale.h"

#include <gtest/gtest.h>

#include <functional>

namespace {
uint32_t now = 0;
uint32_t step = 0; // ticks that go by with each reading
} // namespace

// The module's clock.
extern "C" [[gnu::visibility("default")]] uint32_t TickCount() {
    return now += step;
}

namespace kzb::test {
namespace {

constexpr int32_t lanczos3 = 3;

class ScaleYields : public testing::Test {
protected:
    void SetUp() override {
        now = 1000;
        step = 1;
        kzb_on_yield(
            [](void *self) {
                static_cast<ScaleYields *>(self)->yielded();
                return 1;
            },
            this);
    }
    void TearDown() override { kzb_on_yield(nullptr, nullptr); }

    bool scale() { return image.call("Scale", source, temp, lanczos3, 5, 4).boolean(); }
    bool scale_fast() { return image.call("ScaleFast", source, 5, 4).boolean(); }

    int yields = 0;
    std::function<void()> user_code;
    Image source = *make_image(Storage::memory, 7, 9, 2, 1);
    Image image = *make_image(Storage::memory, 6, 6, 2, 2);
    Image temp = *make_image(Storage::memory, 6, 9, scaling_format, 3);

private:
    void yielded() {
        ++yields;
        if (user_code) user_code();
    }
};

TEST_F(ScaleYields, TheSourceYieldsOnce) {
    source.set("YieldTicks", 1);
    EXPECT_TRUE(scale());
    EXPECT_EQ(yields, 1);
    EXPECT_TRUE(scale_fast());
    EXPECT_EQ(yields, 2);
}

TEST_F(ScaleYields, TheIntermediateImageYieldsOnce) {
    temp.set("YieldTicks", 1);
    EXPECT_TRUE(scale());
    EXPECT_EQ(yields, 1);
}

TEST_F(ScaleYields, TheDestinationYieldsAtTheStartAndAfterEachListAndEachRowOfBothPasses) {
    image.set("YieldTicks", 1);
    EXPECT_TRUE(scale());
    EXPECT_EQ(yields, 1 + 5 + 9 + 4 + 4);
}

TEST_F(ScaleYields, TheFastDestinationYieldsAtTheStartAndAfterEachRow) {
    image.set("YieldTicks", 1);
    EXPECT_TRUE(scale_fast());
    EXPECT_EQ(yields, 1 + 4);
}

TEST_F(ScaleYields, SourceThenDestinationThenIntermediateImage) {
    // A clock that stands lets each image yield once, if it is not switched off before.
    step = 0;
    const std::vector<Image> expected = {source, image, temp};
    for (const Image &one : expected) one.set("YieldTicks", 1);
    user_code = [&] { expected[static_cast<size_t>(yields - 1)].set("YieldTicks", 0); };
    EXPECT_TRUE(scale());
    EXPECT_EQ(yields, 3);
}

TEST_F(ScaleYields, AnImageClosedAtAnyYieldEndsTheScaling) {
    for (int which = 0; which < 3; ++which)
        for (int at = 1; at <= 1 + 1 + 1 + 5 + 9 + 4 + 4; ++at) {
            yields = 0;
            source = *make_image(Storage::memory, 7, 9, 2, 1);
            image = *make_image(Storage::memory, 6, 6, 2, 2);
            temp = *make_image(Storage::memory, 6, 9, scaling_format, 3);
            for (const Image &one : {source, image, temp}) one.set("YieldTicks", 1);
            user_code = [&] {
                if (yields == at) (which == 0 ? source : which == 1 ? image : temp).call("Close");
            };
            const Bytes before = storage_of(image);
            EXPECT_FALSE(scale()) << which << ' ' << at;
            if (at > 3) {
                EXPECT_EQ(yields, at) << which << ": nothing is paced after that";
            }
            if (which != 1 && at <= 3 + 5 + 9 + 4) {
                EXPECT_EQ(storage_of(image), before) << which << ' ' << at;
            }
        }
}

TEST_F(ScaleYields, AnImageClosedAtAnyYieldEndsTheFastScaling) {
    for (int which = 0; which < 2; ++which)
        for (int at = 1; at <= 1 + 1 + 4; ++at) {
            yields = 0;
            source = *make_image(Storage::memory, 7, 9, 2, 1);
            image = *make_image(Storage::memory, 6, 6, 2, 2);
            for (const Image &one : {source, image}) one.set("YieldTicks", 1);
            user_code = [&] {
                if (yields == at) (which == 0 ? source : image).call("Close");
            };
            EXPECT_FALSE(scale_fast()) << which << ' ' << at;
            EXPECT_EQ(yields, at) << which;
        }
}

TEST_F(ScaleYields, AnImageBuiltAnewMeanwhileEndsTheScaling) {
    image.set("YieldTicks", 1);
    user_code = [&] {
        if (yields == 9) source.call("Constructor", 1, 1, 2);
        if (yields == 30) image.call("Constructor", 1, 1, 2);
    };
    EXPECT_FALSE(scale());
    EXPECT_EQ(yields, 9);
    source = *make_image(Storage::memory, 7, 9, 2, 1);
    yields = 25;
    EXPECT_FALSE(scale());
    EXPECT_EQ(yields, 30);
}

TEST_F(ScaleYields, UserCodeMayScaleTheSameImages) {
    const Image other(6, 6, 2);
    ASSERT_TRUE(other.call("Scale", source, nullptr, lanczos3, 5, 4).boolean());
    image.call("ClearRect");
    image.set("YieldTicks", 1);
    user_code = [&] {
        if (yields == 12) Image(3, 3, 11).call("Scale", source, nullptr, 1, 3, 3);
        if (yields == 17) source.call("FillRect", 0);
    };
    EXPECT_TRUE(scale());
    EXPECT_EQ(storage_of(image), storage_of(other));
}

TEST_F(ScaleYields, AFilesBlocksMayMoveMeanwhile) {
    const Image tall = make_tall_image(3, 2, 5);
    const Image expected(3, 30, 2), found(3, 30, 2);
    ASSERT_TRUE(expected.call("Scale", tall, nullptr, lanczos3, 3, 30).boolean());
    found.set("YieldTicks", 1);
    user_code = [&] { tall.row(yields * 97 % tall_height); };
    ASSERT_TRUE(found.call("Scale", tall, nullptr, lanczos3, 3, 30).boolean());
    EXPECT_EQ(storage_of(found), storage_of(expected));
}

} // namespace
} // namespace kzb::test
