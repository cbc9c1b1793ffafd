// Pacing, with a clock that stands where the test puts it.

#include "fixtures/storages.h"

#include <gtest/gtest.h>

#include <functional>

namespace {
uint32_t now = 0;
uint32_t step = 0; // ticks that go by with each reading
}

// The module's clock.
extern "C" [[gnu::visibility("default")]] uint32_t TickCount() { return now += step; }

namespace kzb::test {
namespace {

class Yielding : public testing::Test {
protected:
    void SetUp() override {
        now = 1000;
        step = 0;
        kzb_on_yield(
            [](void *self) {
                static_cast<Yielding *>(self)->yielded();
                return 1;
            },
            this);
    }
    void TearDown() override { kzb_on_yield(nullptr, nullptr); }

    // One operation that paces its source once.
    static void operate(const Image &image) { image.call("SolarizeFilter", nullptr); }

    int yields = 0;
    std::function<void()> user_code;

private:
    void yielded() {
        ++yields;
        if (user_code) user_code();
    }
};

TEST_F(Yielding, IsOffForTicksThatAreNotPositive) {
    const Image image(2, 2, 1);
    for (int ticks : {0, -1, INT32_MIN}) {
        image.set("YieldTicks", ticks);
        operate(image);
        image.call("AutoLevel");
    }
    EXPECT_EQ(yields, 0);
}

TEST_F(Yielding, TheFirstPaceYieldsAtOnceAndThenOnceAnInterval) {
    const Image image(2, 2, 1);
    image.set("YieldTicks", 5);
    operate(image);
    EXPECT_EQ(yields, 1);
    now += 4;
    operate(image);
    EXPECT_EQ(yields, 1);
    now += 1;
    operate(image);
    EXPECT_EQ(yields, 2);
}

TEST_F(Yielding, AtMostOncePerTickWithATickOfOne) {
    const Image image(2, 50, 1);
    image.set("YieldTicks", 1);
    image.call("AutoLevel");
    EXPECT_EQ(yields, 1);
    image.call("AutoLevel");
    EXPECT_EQ(yields, 1);
    ++now;
    image.call("AutoLevel");
    EXPECT_EQ(yields, 2);
}

TEST_F(Yielding, TimeInsideTheHostDoesNotCount) {
    const Image image(2, 2, 1);
    image.set("YieldTicks", 10);
    user_code = [] { now += 100; };
    operate(image);
    EXPECT_EQ(yields, 1);
    now += 9;
    operate(image);
    EXPECT_EQ(yields, 1);
    now += 1;
    operate(image);
    EXPECT_EQ(yields, 2);
}

TEST_F(Yielding, SurvivesTheClocksWrapAround) {
    const Image image(2, 2, 1);
    image.set("YieldTicks", 10);
    now = UINT32_MAX - 2;
    operate(image);
    EXPECT_EQ(yields, 1);
    now = 3;
    operate(image);
    EXPECT_EQ(yields, 1) << "six ticks later";
    now = 7;
    operate(image);
    EXPECT_EQ(yields, 2) << "ten ticks later";
    now = 2;
    operate(image);
    EXPECT_EQ(yields, 3) << "a clock that went back is far ahead";
}

TEST_F(Yielding, EachImageHasItsOwnRhythm) {
    const Image a(2, 2, 1), b(2, 2, 1);
    a.set("YieldTicks", 5);
    b.set("YieldTicks", 5);
    operate(a);
    operate(b);
    EXPECT_EQ(yields, 2);
    now += 5;
    a.call("SolarizeFilter", b);
    EXPECT_EQ(yields, 4) << "source and destination";
}

TEST_F(Yielding, AutoLevelPacesAfterEveryRow) {
    const Image image(2, 7, 1);
    image.set("YieldTicks", 1);
    step = 1;
    image.call("AutoLevel");
    EXPECT_EQ(yields, 7);
}

TEST_F(Yielding, CopyingAPicturePacesTwiceAndAfterEveryRow) {
    const Image image(2, 7, 1);
    image.set("YieldTicks", 1);
    step = 1;
    image.call("CopyPicture", 0, 1, 2, 4);
    EXPECT_EQ(yields, 2 + 4);
}

TEST_F(Yielding, TheToneFiltersPaceSourceAndDestinationOnce) {
    const Image image(2, 7, 1), dest(2, 7, 1);
    image.set("YieldTicks", 1);
    dest.set("YieldTicks", 1);
    step = 1;
    image.call("GammaFilter", dest, 2.0);
    EXPECT_EQ(yields, 2);
}

TEST_F(Yielding, AnImageClosedMeanwhileEndsTheOperation) {
    const Image image(3, 3, 1);
    image.set("YieldTicks", 1);
    user_code = [&] { image.call("Close"); };
    EXPECT_TRUE(image.call("SolarizeFilter", nullptr).is_nil());
    const Image other = *make_image(Storage::memory, 3, 3, 1, 1);
    other.set("YieldTicks", 1);
    user_code = [&] { other.call("Close"); };
    EXPECT_FALSE(other.call("AutoLevel").boolean());
}

TEST_F(Yielding, ADestinationClosedMeanwhileEndsTheOperation) {
    const Image image(3, 3, 1), dest(3, 3, 1);
    dest.set("YieldTicks", 1);
    user_code = [&] { dest.call("Close"); };
    EXPECT_TRUE(image.call("SolarizeFilter", dest).is_nil());
    EXPECT_EQ(yields, 1);
}

TEST_F(Yielding, AnImageBuiltAnewMeanwhileEndsTheOperation) {
    const Image image(3, 3, 1);
    image.set("YieldTicks", 1);
    user_code = [&] { image.call("Constructor", 30000, 1, 2); };
    EXPECT_TRUE(image.call("SolarizeFilter", nullptr).is_nil());
    EXPECT_EQ(image.width(), 30000);
}

TEST_F(Yielding, UserCodeMayUseTheSameImage) {
    const Image image = *make_image(Storage::memory, 5, 5, 2, 3);
    const Bytes expected = storage_of(Image(image.call("SolarizeFilter", nullptr)));
    image.set("YieldTicks", 1);
    user_code = [&] {
        user_code = nullptr;
        image.call("GainFilter", nullptr, 0.5, 0.5);
        image.set("YieldTicks", 0);
    };
    EXPECT_EQ(storage_of(Image(image.call("SolarizeFilter", nullptr))), expected);
}

} // namespace
} // namespace kzb::test
