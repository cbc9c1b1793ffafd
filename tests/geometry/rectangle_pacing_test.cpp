// When fills and copies yield, and what a yield may change.

#include "fixtures/storages.h"
#include "fixtures/yielding.h"

namespace kzb::test {
namespace {

class RectanglePacing : public YieldingAtEveryPace {
protected:
    // Every operation of `image` on rows 2 to 4 of a rectangle, and their yields when all goes well.
    struct Operation {
        const char *name;
        std::function<void(const Image &image)> call;
        int yields;
    };
    std::vector<Operation> operations() const {
        return {
            {"FillRect", [](const Image &i) { i.call("FillRect", 1, 2, 2, 3, 9); }, 4},
            {"FillRectRGB", [](const Image &i) { i.call("FillRectRGB", 1, 2, 2, 3, 9, 9, 9); }, 4},
            {"FillRectRGB with alpha", [](const Image &i) { i.call("FillRectRGB", 1, 2, 2, 3, 9, 9, 9, 9); }, 4},
            {"ClearRect", [](const Image &i) { i.call("ClearRect", 1, 2, 2, 3); }, 4},
            {"ClearRect of all", [](const Image &i) { i.call("ClearRect"); }, 8},
            {"Invert", [](const Image &i) { i.call("Invert", 1, 2, 2, 3); }, 4},
            {"CopyPixels", [this](const Image &i) { i.call("CopyPixels", source, 1, 2, 2, 3); }, 4},
        };
    }
    Image source{7, 7, 9};
    void TearDown() override {
        source = Image();
        YieldingAtEveryPace::TearDown();
    }
};

TEST_F(RectanglePacing, OnceBeforeTheFirstRowAndOnceAfterEach) {
    for (const Operation &operation : operations()) {
        for (int32_t format : {2, 4, 1}) {
            const Image image(7, 7, format);
            EXPECT_EQ(yields_of([&] { operation.call(image); }), 0) << operation.name;
            pacing(image);
            EXPECT_EQ(yields_of([&] { operation.call(image); }), operation.yields) << operation.name;
        }
    }
}

TEST_F(RectanglePacing, ACopyPacesItsSourceOnceAndEvenWithNothingToCopy) {
    const Image image(7, 7, 1);
    pacing(source);
    EXPECT_EQ(yields_of([&] { image.call("CopyPixels", source); }), 1);
    pacing(image);
    EXPECT_EQ(yields_of([&] { image.call("CopyPixels", source); }), 2 + 7);
    EXPECT_EQ(yields_of([&] { image.call("CopyPixels", source, 9, 9, 1, 1); }), 2);
    EXPECT_EQ(yields_of([&] { image.call("CopyPixels", image, 0, 0, 3, 3); }), 2 + 3) << "the image onto itself";
    const Image closed(7, 7, 1);
    closed.call("Close");
    EXPECT_EQ(yields_of([&] { image.call("CopyPixels", closed); }), 1) << "the image is paced before the source's test";
    EXPECT_EQ(yields_of([&] { image.call("CopyPixels", Image(7, 7, 0)); }), 0) << "unless the source is not Valid";
}

TEST_F(RectanglePacing, NothingIsTouchedOnceAYieldClosedTheImageOrBuiltItAnew) {
    for (const Operation &operation : operations())
        for (Storage storage : {Storage::memory, Storage::file})
            for (const bool again : {false, true})
                for (int at = 1; at <= 4; ++at) {
                    SCOPED_TRACE(std::string(operation.name) + " in " + name_of(storage) + " at " + std::to_string(at));
                    const Image image = *make_image(storage, 7, 7, 2, 5);
                    pacing(image);
                    user_code = [&] {
                        if (yields != at) return;
                        image.call("Close");
                        if (again) image.call("Constructor", 2, 5, 2);
                    };
                    EXPECT_EQ(yields_of([&] { operation.call(image); }), at);
                    if (again) {
                        EXPECT_EQ(storage_of(image), Bytes(5 * 64));
                    }
                    user_code = nullptr;
                }
}

TEST_F(RectanglePacing, ACopyStopsOnceAYieldClosedItsSource) {
    for (Storage storage : {Storage::memory, Storage::file})
        for (int at = 1; at <= 4; ++at) {
            source = *make_image(storage, 7, 7, 2, 4);
            const Image image = *make_image(storage, 7, 7, 2, 5);
            const PlainImage before = Snapshots().of(image);
            pacing(image);
            user_code = [&] {
                if (yields == at) source.call("Close");
            };
            EXPECT_EQ(yields_of([&] { image.call("CopyPixels", source); }), at);
            user_code = nullptr;
            // One row was copied for each yield after the first.
            const PlainImage after = Snapshots().of(image);
            for (int32_t y = 0; y < 7; ++y)
                EXPECT_EQ(after.get(0, y, Channel::green) != before.get(0, y, Channel::green), y < at - 1) << y;
        }
}

TEST_F(RectanglePacing, AViewIsLeftAloneOnceAYieldClosedItsParent) {
    for (Storage storage : {Storage::memory, Storage::file}) {
        const Image parent = *make_image(storage, 9, 9, 2, 5);
        const Image view(parent.call("ClipImage", 1, 1, 7, 7));
        pacing(view);
        user_code = [&] {
            if (yields == 3) parent.call("Close");
        };
        EXPECT_EQ(yields_of([&] { view.call("Invert"); }), 3);
        user_code = nullptr;
    }
}

TEST_F(RectanglePacing, AnotherBlockSizeIsNoHindrance) {
    const Image tall = make_tall_image(5, 2, 6);
    const Image expected(5, tall_height, 2);
    expected.call("CopyPixels", tall);
    expected.call("CopyPixels", expected, 0, 0, 5, 3000, 1, 5000);
    pacing(tall);
    user_code = [&] { tall.set("MappingBlockSize", yields % 2 == 0 ? 0 : 32 << 20); };
    tall.call("CopyPixels", tall, 0, 0, 5, 3000, 1, 5000);
    user_code = nullptr;
    EXPECT_EQ(tall.call("DataStringInFormat", 2).bytes(), expected.call("DataStringInFormat", 2).bytes());
}

} // namespace
} // namespace kzb::test
