// Where new images come from.

#include "fixtures/storages.h"

#include <gtest/gtest.h>

#include <functional>

namespace kzb::test {
namespace {

struct Asked {
    KZBObject factory;
    int32_t width, height, format;
    bool operator==(const Asked &) const = default;
};

std::vector<Asked> asked;
std::function<Image()> supply; // what the handler gives; nothing: nil

KZBObject handler(KZBObject factory, int32_t width, int32_t height, int32_t format) {
    asked.push_back({factory, width, height, format});
    if (!supply) return nullptr;
    const Image image = supply();
    kzb_value reference = image.value().raw();
    if (image) kzb_retain(&reference);
    return image.get();
}

Object handled_factory() {
    const Object factory = Object::make("PictureFactoryKZB");
    kzb_error error = {};
    EXPECT_TRUE(kzb_handle_event(factory.get(), "NewPictureKZB", reinterpret_cast<KZBFunction>(handler), &error))
        << error.message;
    return factory;
}

void set_factory(const Value &factory) {
    call_shared("PictureFactoryKZB", "SetFactory", {factory});
}

class Factories : public testing::Test {
protected:
    void SetUp() override {
        asked.clear();
        supply = nullptr;
    }
    void TearDown() override {
        set_factory(nullptr);
        supply = nullptr;
    }
    const Image image{7, 4, 2};
};

TEST_F(Factories, WithoutOneAnImageInMemoryIsMade) {
    const Image made(image.call("CreatePictureKZB", 3, 2, 11));
    EXPECT_EQ(made.width(), 3);
    EXPECT_EQ(made.format(), 11);
    EXPECT_EQ(storage_of(made), Bytes(128));
    EXPECT_EQ(Image(call_shared("PictureKZB", "CreatePictureKZB", {3, 2, 11})).height(), 2);
}

TEST_F(Factories, AnInvalidFormatGivesNil) {
    EXPECT_TRUE(image.call("CreatePictureKZB", 3, 2, 0).is_nil());
    EXPECT_TRUE(call_shared("PictureKZB", "CreatePictureKZB", {3, 2, 99}).is_nil());
    EXPECT_TRUE(image.call("CreatePictureKZB", -3, 2, 1).is_nil());
}

TEST_F(Factories, TheImagesOwnIsAskedFirst) {
    const Object own = handled_factory(), common = handled_factory();
    image.set("Factory", own);
    set_factory(common);
    const Image supplied(9, 9, 1);
    supply = [&] { return supplied; };
    EXPECT_TRUE(supplied.same(Object(image.call("CreatePictureKZB", 3, 2, 11))));
    EXPECT_EQ(asked, (std::vector<Asked>{{own.get(), 3, 2, 11}}));
    asked.clear();
    EXPECT_TRUE(supplied.same(Object(call_shared("PictureKZB", "CreatePictureKZB", {3, 2, 11}))));
    EXPECT_EQ(asked, (std::vector<Asked>{{common.get(), 3, 2, 11}}));
}

TEST_F(Factories, OperationsAskForTheirDestination) {
    set_factory(handled_factory());
    image.call("SolarizeFilter", nullptr);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].width, 7);
    EXPECT_EQ(asked[0].height, 4);
    EXPECT_EQ(asked[0].format, 2);
    image.call("SolarizeFilter", Image(7, 4, 2));
    EXPECT_EQ(asked.size(), 1u) << "a passed destination needs none";
}

TEST_F(Factories, ANilResultAsksTheNextAndThenMakesOne) {
    image.set("Factory", handled_factory());
    set_factory(handled_factory());
    EXPECT_EQ(Image(image.call("CreatePictureKZB", 3, 2, 11)).width(), 3);
    EXPECT_EQ(asked.size(), 2u);
}

TEST_F(Factories, AnImageThatIsNotValidIsReleasedAndTheNextSourceTried) {
    set_factory(handled_factory());
    supply = [] { return Image(3, 2, 0); };
    const Image made(image.call("CreatePictureKZB", 3, 2, 11));
    EXPECT_TRUE(made.valid());
    EXPECT_EQ(asked.size(), 1u);
}

TEST_F(Factories, OneWithoutAHandlerIsPassedOver) {
    image.set("Factory", Object::make("PictureFactoryKZB"));
    EXPECT_EQ(Image(image.call("CreatePictureKZB", 3, 2, 11)).width(), 3);
}

TEST_F(Factories, AnImageOfAnotherSizeAndLayoutIsTrusted) {
    set_factory(handled_factory());
    supply = [] { return Image(2, 2, 9); };
    const Image result(image.call("SolarizeFilter", nullptr));
    EXPECT_EQ(result.width(), 2);
    EXPECT_EQ(result.format(), 9);
}

TEST_F(Factories, AClosedImageIsNoDestination) {
    set_factory(handled_factory());
    supply = [] {
        const Image closed(7, 4, 2);
        closed.call("Close");
        return closed;
    };
    EXPECT_TRUE(image.call("SolarizeFilter", nullptr).is_nil());
}

TEST_F(Factories, TheSourceItselfMayBeSupplied) {
    set_factory(handled_factory());
    supply = [&] { return image; };
    EXPECT_TRUE(image.same(Object(image.call("SolarizeFilter", nullptr))));
    EXPECT_EQ(image.row(0)[0], 255);
}

TEST_F(Factories, TheHandlerMayReplaceTheFactoryAndCloseTheSource) {
    set_factory(handled_factory());
    supply = [&] {
        set_factory(nullptr);
        image.set("Factory", nullptr);
        image.call("Close");
        return Image(7, 4, 2);
    };
    EXPECT_TRUE(image.call("SolarizeFilter", nullptr).is_nil());
}

TEST_F(Factories, SettingNilWithoutOneDoesNothing) {
    set_factory(nullptr);
    set_factory(nullptr);
    EXPECT_EQ(Image(image.call("CreatePictureKZB", 3, 2, 11)).width(), 3);
}

TEST_F(Factories, TheCurrentOneMayBeSetAgain) {
    const Object factory = handled_factory();
    set_factory(factory);
    set_factory(factory);
    image.call("CreatePictureKZB", 3, 2, 11);
    EXPECT_EQ(asked.size(), 1u);
}

TEST_F(Factories, OneIsHeldWhileItIsSet) {
    const size_t before = kzb_live_count("PictureFactoryKZB");
    set_factory(handled_factory());
    EXPECT_EQ(kzb_live_count("PictureFactoryKZB"), before + 1);
    image.call("CreatePictureKZB", 3, 2, 11);
    EXPECT_EQ(asked.size(), 1u);
    set_factory(nullptr);
    EXPECT_EQ(kzb_live_count("PictureFactoryKZB"), before);
}

TEST_F(Factories, AnImageDropsItsFactoryWhenItGoes) {
    const size_t before = kzb_live_count("PictureFactoryKZB");
    {
        const Image held(1, 1, 1);
        held.set("Factory", handled_factory());
        EXPECT_EQ(kzb_live_count("PictureFactoryKZB"), before + 1);
    }
    EXPECT_EQ(kzb_live_count("PictureFactoryKZB"), before);
}

} // namespace
} // namespace kzb::test
