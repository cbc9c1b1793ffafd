// Where filtered scaling takes an intermediate image from that is not passed.

#include "fixtures/storages.h"
#include "geometry/plain_scale.h"

#include <gtest/gtest.h>

#include <functional>

namespace kzb::test {
namespace {

constexpr int32_t box = 2;

struct Asked {
    KZBObject factory;
    int32_t width, height, format;
    bool operator==(const Asked &) const = default;
};

std::vector<Asked> asked;
std::function<Image()> supply;

KZBObject handler(KZBObject factory, int32_t width, int32_t height, int32_t format) {
    asked.push_back({factory, width, height, format});
    const Image image = supply();
    kzb_value reference = image.value().raw();
    kzb_retain(&reference);
    return image.get();
}

class ScaleFactory : public testing::Test {
protected:
    void SetUp() override {
        asked.clear();
        kzb_error error = {};
        ASSERT_TRUE(kzb_handle_event(factory.get(), "NewPictureKZB", reinterpret_cast<KZBFunction>(handler), &error));
        image.set("Factory", factory);
    }
    void TearDown() override { supply = nullptr; }

    bool scale(int32_t mode = box) { return image.call("Scale", source, nullptr, mode, 5, 4).boolean(); }

    const Object factory = Object::make("PictureFactoryKZB");
    const Image source = *make_image(Storage::memory, 7, 9, 2, 1);
    const Image image = *make_image(Storage::memory, 6, 6, 2, 2);
    const Bytes before = storage_of(image);
};

TEST_F(ScaleFactory, TheDestinationsOwnIsAskedForTheOutputsWidthAndTheSourcesHeight) {
    const Image supplied(5, 9, scaling_format);
    supply = [&] { return supplied; };
    EXPECT_TRUE(scale());
    EXPECT_EQ(asked, (std::vector<Asked>{{factory.get(), 5, 9, scaling_format}}));
    EXPECT_NE(storage_of(supplied), Bytes(9 * 128)) << "it was worked in";
    EXPECT_NE(storage_of(image), before);
}

TEST_F(ScaleFactory, TheSourcesIsNotAsked) {
    image.set("Factory", nullptr);
    source.set("Factory", factory);
    EXPECT_TRUE(scale());
    EXPECT_TRUE(asked.empty());
}

TEST_F(ScaleFactory, AnImageOfAnotherLayoutIsRefused) {
    supply = [] { return Image(5, 9, 2); };
    EXPECT_FALSE(scale());
    EXPECT_EQ(storage_of(image), before);
}

TEST_F(ScaleFactory, AnImageThatIsTooSmallIsRefused) {
    for (const Image &small : {Image(4, 9, scaling_format), Image(5, 8, scaling_format)}) {
        supply = [&] { return small; };
        EXPECT_FALSE(scale());
        EXPECT_EQ(storage_of(image), before);
    }
}

TEST_F(ScaleFactory, AnImageThatIsNotValidIsReplacedByOneOfItsOwn) {
    supply = [] { return Image(5, 9, 0); };
    EXPECT_TRUE(scale());
    EXPECT_NE(storage_of(image), before);
}

TEST_F(ScaleFactory, IsAskedBeforeTheModeIsLookedAt) {
    supply = [] { return Image(5, 9, scaling_format); };
    EXPECT_FALSE(scale(8));
    EXPECT_EQ(asked.size(), 1u);
}

TEST_F(ScaleFactory, ThatClosesAnImageEndsTheScaling) {
    for (const Image &closed : {source, image}) {
        supply = [&] {
            closed.call("Close");
            return Image(5, 9, scaling_format);
        };
        EXPECT_FALSE(scale());
    }
}

TEST_F(ScaleFactory, IsNotAskedWhereAnImageIsPassed) {
    EXPECT_TRUE(image.call("Scale", source, Image(5, 9, scaling_format), box, 5, 4).boolean());
    EXPECT_TRUE(asked.empty());
}

} // namespace
} // namespace kzb::test
