// When mirrors, turns and rotations yield, and what a yield may change.

#include "fixtures/storages.h"
#include "fixtures/yielding.h"

namespace kzb::test {
namespace {

const char *const in_place[] = {"HMirror", "VMirror", "Rotate180"};
const char *const turns[] = {"Rotate180", "Rotate90slow", "Rotate270slow", "Rotate90", "Rotate270"};

KZBObject supply_pacing_image(KZBObject, int32_t width, int32_t height, int32_t format) {
    Image image(width, height, format);
    image.set("YieldTicks", 1);
    kzb_value reference = image.value().raw();
    kzb_retain(&reference);
    return image.get();
}

Bytes first_bytes(const Bytes &bytes, ptrdiff_t count) {
    return Bytes(bytes.begin(), bytes.begin() + count);
}

class TurnYields : public YieldingAtEveryPace {
protected:
    static Value rotate(const Image &image, double angle) { return image.call("Rotate", angle, 1, 2, 3, 4, 5); }

    // An image whose new images yield.
    static Image with_pacing_factory() {
        const Image image = *make_image(Storage::memory, 7, 6, 2, 1);
        const Object factory = Object::make("PictureFactoryKZB");
        kzb_error error = {};
        kzb_handle_event(factory.get(), "NewPictureKZB", reinterpret_cast<KZBFunction>(supply_pacing_image), &error);
        image.set("Factory", factory);
        return image;
    }
};

TEST_F(TurnYields, MirrorsYieldOnceAndThenAfterEachRowOrPairOfRows) {
    for (Storage storage : {Storage::memory, Storage::file}) {
        for (const char *method : in_place) {
            const Image image = *make_image(storage, 5, 7, 2, 1);
            EXPECT_EQ(yields_of([&] { image.call(method); }), 0) << method;
            pacing(image);
            EXPECT_EQ(yields_of([&] { image.call(method); }), 1 + (method == in_place[0] ? 7 : 3)) << method;
        }
    }
}

TEST_F(TurnYields, MirrorsOfASingleRowOrColumnHaveNoPairs) {
    const Image row = *make_image(Storage::memory, 5, 1, 2, 1);
    pacing(row);
    EXPECT_EQ(yields_of([&] { row.call("VMirror"); }), 1);
    EXPECT_EQ(yields_of([&] { row.call("Rotate180"); }), 1);
}

TEST_F(TurnYields, APairOfRowsIsDoneBeforeTheYieldAndTheNextIsNot) {
    for (Storage storage : {Storage::memory, Storage::file}) {
        const Image image = *make_image(storage, 5, 6, 11, 1);
        std::vector<Bytes> before;
        const auto row = [&](int32_t y) { return first_bytes(image.row(y), 5); };
        for (int32_t y = 0; y < 6; ++y) before.push_back(row(y));
        pacing(image);
        user_code = [&] {
            for (int32_t y = 0; y < 3; ++y) {
                const bool done = y + 1 < yields;
                EXPECT_EQ(row(y), before[static_cast<size_t>(done ? 5 - y : y)]) << y << " at " << yields;
                EXPECT_EQ(row(5 - y), before[static_cast<size_t>(done ? y : 5 - y)]) << y << " at " << yields;
            }
        };
        EXPECT_EQ(yields_of([&] { image.call("VMirror"); }), 4);
    }
}

TEST_F(TurnYields, TurnsPaceTheSourceAndTheDestinationOnceAndNothingInBetween) {
    for (const char *method : turns) {
        const Image source = *make_image(Storage::memory, 6, 6, 2, 1), dest = *make_image(Storage::memory, 6, 6, 2, 2);
        pacing(source);
        EXPECT_EQ(yields_of([&] { source.call(method, nullptr); }), 1) << method;
        EXPECT_EQ(yields_of([&] { source.call(method, dest); }), 1) << method;
        pacing(dest);
        EXPECT_EQ(yields_of([&] { source.call(method, dest); }), 2) << method;
        EXPECT_EQ(yields_of([&] { source.call(method, source); }), 2) << method;
    }
}

TEST_F(TurnYields, RotationPacesTheTurnedImageAndEachNewOneOnce) {
    const Image image = with_pacing_factory();
    EXPECT_EQ(yields_of([&] { rotate(image, 20); }), 3);
    pacing(image);
    EXPECT_EQ(yields_of([&] { rotate(image, 20); }), 4);
    EXPECT_EQ(yields_of([&] { rotate(image, 90); }), 2) << "as the quarter turn does";
    EXPECT_EQ(yields_of([&] { rotate(image, 110); }), 3)
        << "the image and its turned copy for the turn, then the copy for the shears";
    EXPECT_EQ(yields_of([&] { rotate(image, 0); }), 0);
    image.set("Factory", nullptr);
}

TEST_F(TurnYields, NothingIsTouchedOnceAYieldClosedTheImageOrBuiltItAnew) {
    for (const bool again : {false, true}) {
        for (Storage storage : {Storage::memory, Storage::file}) {
            for (const char *method : in_place) {
                for (int at = 1; at <= 4; ++at) {
                    SCOPED_TRACE(std::string(method) + " in " + name_of(storage) + " at " + std::to_string(at));
                    const Image image = *make_image(storage, 5, 7, 2, 5);
                    pacing(image);
                    user_code = [&] {
                        if (yields != at) return;
                        if (again)
                            image.call("Constructor", 5, 7, 2);
                        else
                            image.call("Close");
                    };
                    EXPECT_EQ(yields_of([&] { image.call(method); }), at);
                    if (!again) continue;
                    EXPECT_EQ(storage_of(image), Bytes(7 * 64));
                }
            }
        }
    }
}

TEST_F(TurnYields, ATurnWhoseImagesAYieldClosedGivesNil) {
    for (const char *method : turns) {
        for (const bool close_source : {false, true}) {
            for (int at : {1, 2}) {
                const Image source = *make_image(Storage::file, 6, 6, 2, 1);
                const Image dest = *make_image(Storage::file, 6, 6, 2, 2);
                pacing(source);
                pacing(dest);
                user_code = [&] {
                    if (yields == at) (close_source ? source : dest).call("Close");
                };
                Value result;
                yields_of([&] { result = source.call(method, dest); });
                EXPECT_TRUE(result.is_nil()) << method << ' ' << close_source << ' ' << at;
            }
        }
    }
}

TEST_F(TurnYields, ARotationWhoseImageAYieldClosedGivesNil) {
    for (int at : {1, 2}) {
        const Image image = with_pacing_factory();
        pacing(image);
        user_code = [&] {
            if (yields == at) image.call("Close");
        };
        Value result;
        yields_of([&] { result = rotate(image, 20); });
        EXPECT_TRUE(result.is_nil()) << at;
        image.set("Factory", nullptr);
    }
    // The first shear is done: the image is needed no longer.
    const Image image = with_pacing_factory();
    pacing(image);
    user_code = [&] {
        if (yields == 3) image.call("Close");
    };
    Value result;
    yields_of([&] { result = rotate(image, 20); });
    EXPECT_FALSE(result.is_nil());
    image.set("Factory", nullptr);
}

} // namespace
} // namespace kzb::test
