// The frame of the blurs, of unsharp masking and of the stamp: yields, and where their images come from.

#include "fixtures/storages.h"

#include <gtest/gtest.h>

#include <functional>

namespace {
uint32_t now = 0;
}

// The module's clock: a tick goes by with each reading.
extern "C" [[gnu::visibility("default")]] uint32_t TickCount() {
    return ++now;
}

namespace kzb::test {
namespace {

std::function<Image()> supply; // what the factories' handler gives
std::vector<KZBObject> asked;  // the factories, in the order in which they were asked

KZBObject handler(KZBObject factory, int32_t, int32_t, int32_t) {
    asked.push_back(factory);
    const Image image = supply ? supply() : Image();
    kzb_value reference = image.value().raw();
    if (image) kzb_retain(&reference);
    return image.get();
}

Object handled_factory() {
    const Object factory = Object::make("PictureFactoryKZB");
    kzb_error error = {};
    EXPECT_TRUE(kzb_handle_event(factory.get(), "NewPictureKZB", reinterpret_cast<KZBFunction>(handler), &error));
    return factory;
}

void set_factory(const Value &factory) {
    call_shared("PictureFactoryKZB", "SetFactory", {factory});
}

class BlurFrame : public testing::Test {
protected:
    void SetUp() override {
        now = 1000;
        asked.clear();
        kzb_on_yield(
            [](void *self) {
                auto &test = *static_cast<BlurFrame *>(self);
                ++test.yields;
                if (test.user_code) test.user_code();
                return 1;
            },
            this);
    }
    void TearDown() override {
        kzb_on_yield(nullptr, nullptr);
        set_factory(nullptr);
        supply = nullptr;
    }

    static Image paced(int32_t width, int32_t height, int32_t format, uint32_t seed = 1) {
        const Image image = *make_image(Storage::memory, width, height, format, seed);
        image.set("YieldTicks", 1);
        return image;
    }

    int yields = 0;
    std::function<void()> user_code;
};

TEST_F(BlurFrame, SourceAndDestinationYieldOnceAndThePassesDoNot) {
    const Image source = paced(5, 20, 2), destination = paced(5, 20, 2), calm(5, 20, 2);
    source.call("BoxBlurFilter", destination, 2.0);
    EXPECT_EQ(yields, 2);
    source.call("BoxBlurFractionalFilter", destination, 0.5);
    EXPECT_EQ(yields, 4);
    source.call("BoxBlurFilter", nullptr, 2.0);
    EXPECT_EQ(yields, 5) << "a new image has no YieldTicks";
    source.call("BoxBlurFilter", destination, 2.0, 3);
    EXPECT_EQ(yields, 8) << "the second pass reads the destination, the third an image without YieldTicks";
    calm.call("BoxBlurFilter", Image(5, 20, 2), 2.0);
    EXPECT_EQ(yields, 8);
}

TEST_F(BlurFrame, UnsharpYieldsOnceForTheImageAndOnceForItsReference) {
    const Image image = paced(5, 20, 2), reference = paced(5, 20, 2);
    image.call("UnsharpFilter", reference, 0.5, 0);
    EXPECT_EQ(yields, 2);
    image.call("UnsharpFilter", image, 0.5, 0);
    EXPECT_EQ(yields, 4);
    image.call("UnsharpFilter", Image(5, 19, 2), 0.5, 0);
    EXPECT_EQ(yields, 4) << "images that do not match are told before anything else";
}

TEST_F(BlurFrame, UnsharpYieldsForTheImageBeforeTheReferenceIsFoundUnusable) {
    const Image image = paced(5, 20, 2), closed(5, 20, 2);
    closed.call("Close");
    EXPECT_FALSE(image.call("UnsharpFilter", closed, 0.5, 0).boolean());
    EXPECT_EQ(yields, 1);
}

TEST_F(BlurFrame, AnImageClosedInAYieldEndsTheFilter) {
    for (const char *method : {"BoxBlurFilter", "BoxBlurFractionalFilter"}) {
        const Image source = paced(5, 6, 2), destination = paced(5, 6, 2);
        user_code = [&] { source.call("Close"); };
        EXPECT_TRUE(source.call(method, destination, 1.5).is_nil());
        const Image other = *make_image(Storage::memory, 5, 6, 2, 1);
        user_code = [&] { destination.call("Close"); };
        EXPECT_TRUE(other.call(method, destination, 1.5).is_nil());
        const Image again = paced(5, 6, 2);
        user_code = [&] { other.call("Close"); };
        EXPECT_TRUE(other.call(method, again, 1.5).is_nil());
    }
}

TEST_F(BlurFrame, AnImageClosedOrBuiltAnewInAYieldEndsUnsharp) {
    for (int step = 0; step < 4; ++step) {
        const Image image = *make_image(Storage::memory, 5, 6, 2, 1),
                    reference = *make_image(Storage::memory, 5, 6, 2, 2);
        const Bytes before = storage_of(image);
        // The image's own yield, or the reference's.
        (step < 2 ? image : reference).set("YieldTicks", 1);
        if (step % 2 == 0)
            user_code = [&] { reference.call("Close"); };
        else
            user_code = [&] { reference.call("Constructor", 2, 2, 2); };
        EXPECT_FALSE(image.call("UnsharpFilter", reference, 0.5, 0).boolean());
        EXPECT_EQ(storage_of(image), before);
    }
    const Image image = paced(5, 6, 2), reference = paced(5, 6, 2);
    user_code = [&] { image.call("Close"); };
    EXPECT_FALSE(image.call("UnsharpFilter", reference, 0.5, 0).boolean());
    const Image late = *make_image(Storage::memory, 5, 6, 2, 1);
    user_code = [&] { late.call("Close"); };
    EXPECT_FALSE(late.call("UnsharpFilter", reference, 0.5, 0).boolean()) << "closed in the reference's yield";
}

TEST_F(BlurFrame, APassThatGivesNilEndsTheRepeatedBlur) {
    const Image source = *make_image(Storage::memory, 5, 6, 2, 1), destination(5, 6, 2);
    set_factory(handled_factory());
    // An image without rows is no destination.
    supply = [] { return asked.size() < 3 ? Image(5, 6, 2) : Image(5, 0, 2); };
    EXPECT_TRUE(source.call("BoxBlurFilter", destination, 1.0, 10).is_nil());
    EXPECT_EQ(asked.size(), 3u) << "no pass follows";
    asked.clear();
    EXPECT_TRUE(source.call("StampFilter", nullptr, 3.0, 0.5, 0.1, Colour{0}, Colour{0xffffff}).is_nil());
    EXPECT_EQ(asked.size(), 3u);
}

TEST_F(BlurFrame, AStampWithoutAnImageToStampIntoGivesNil) {
    const Image source = *make_image(Storage::memory, 5, 6, 2, 1);
    set_factory(handled_factory());
    supply = [] { return asked.size() < 4 ? Image(5, 6, 2) : Image(5, 0, 2); };
    EXPECT_TRUE(source.call("StampFilter", nullptr, 3.0, 0.5, 0.1, Colour{0}, Colour{0xffffff}).is_nil());
    EXPECT_EQ(asked.size(), 4u);
}

TEST_F(BlurFrame, LaterPassesAskTheFactoryOfTheImageTheyRead) {
    const Image source = *make_image(Storage::memory, 5, 6, 2, 1);
    const Object of_source = handled_factory(), of_first = handled_factory();
    source.set("Factory", of_source);
    Image first;
    supply = [&] {
        Image image(5, 6, 2);
        if (asked.size() == 1) {
            first = image;
            image.set("Factory", of_first);
        }
        return image;
    };
    const Image result(source.call("BoxBlurFilter", nullptr, 1.0, 4));
    // The second image has no factory of its own.
    EXPECT_EQ(asked, (std::vector<KZBObject>{of_source.get(), of_first.get()}));
    EXPECT_FALSE(result.same(first));
    supply = nullptr;
    first.set("Factory", nullptr);
    source.set("Factory", nullptr);
}

TEST_F(BlurFrame, TheStampAsksTheFactoryOfTheBlurredImage) {
    const Image source = *make_image(Storage::memory, 5, 6, 2, 1);
    const Object of_source = handled_factory(), of_blurred = handled_factory();
    source.set("Factory", of_source);
    Image stamped;
    supply = [&] {
        Image image(5, 6, 2);
        // Each image but the stamped one hands on a factory.
        if (asked.size() <= 3) image.set("Factory", asked.size() < 3 ? of_source : of_blurred);
        if (asked.size() == 4) stamped = image;
        return image;
    };
    const Image result(source.call("StampFilter", nullptr, 3.0, 0.5, 0.1, Colour{0}, Colour{0xffffff}));
    EXPECT_EQ(asked, (std::vector<KZBObject>{of_source.get(), of_source.get(), of_source.get(), of_blurred.get()}));
    EXPECT_TRUE(result.same(stamped));
    source.set("Factory", nullptr);
}

TEST_F(BlurFrame, AFactorysImageOfAnotherSizeAndLayoutIsWrittenAsItIs) {
    const Image source = *make_image(Storage::memory, 30, 6, 2, 1);
    set_factory(handled_factory());
    supply = [] { return Image(4, 3, 6); };
    for (const char *method : {"BoxBlurFilter", "BoxBlurFractionalFilter"}) {
        const Image result(source.call(method, nullptr, 1.5));
        EXPECT_EQ(result.width(), 4);
        EXPECT_NE(storage_of(result), Bytes(64 * 3));
    }
}

TEST_F(BlurFrame, IntermediateImagesAreFreed) {
    const Image source = *make_image(Storage::memory, 5, 6, 2, 1);
    const size_t before = kzb_live_count("PictureKZB");
    const Image blurred(source.call("BoxBlurFilter", nullptr, 1.0, 5));
    EXPECT_EQ(kzb_live_count("PictureKZB"), before + 1);
    const Image stamped(source.call("StampFilter", nullptr, 3.0, 0.5, 0.1, Colour{0}, Colour{0xffffff}));
    EXPECT_EQ(kzb_live_count("PictureKZB"), before + 2);
}

} // namespace
} // namespace kzb::test
