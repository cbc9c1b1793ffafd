// Rotation by any angle into images that user code supplies.

#include "fixtures/storages.h"
#include "geometry/plain_rotation.h"

#include <gtest/gtest.h>

#include <random>

namespace kzb::test {
namespace {

constexpr Colours background = {200, 100, 50, 77, 30};

struct Asked {
    KZBObject factory;
    int32_t width, height, format;
    bool operator==(const Asked &) const = default;
};

std::vector<Asked> asked;
std::vector<Image> supplied;     // what the handler gives, one after the other, then nil
std::function<void()> user_code; // what else it does

KZBObject handler(KZBObject factory, int32_t width, int32_t height, int32_t format) {
    asked.push_back({factory, width, height, format});
    if (user_code) user_code();
    if (asked.size() > supplied.size()) return nullptr;
    const Image &image = supplied[asked.size() - 1];
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

class RotateFactories : public testing::Test {
protected:
    void SetUp() override { TearDown(); }
    void TearDown() override {
        asked.clear();
        supplied.clear();
        user_code = nullptr;
        call_shared("PictureFactoryKZB", "SetFactory", {nullptr});
    }

    static Value rotate(const Image &image, double angle) {
        return image.call("Rotate", angle, background[0], background[1], background[2], background[4], background[3]);
    }

    // Rotates by an angle from -45 to 45 into the three images, and holds all bytes of all images to the reference.
    static void check(const Image &image, double angle, const std::vector<Image> &images, const std::string &label) {
        SCOPED_TRACE(label + ", " + layout(image.format()).name + " " + std::to_string(image.width()) + " x " +
                     std::to_string(image.height()) + " by " + std::to_string(angle));
        Snapshots snapshots;
        const PlainImage source = snapshots.of(image);
        std::vector<PlainImage> expected;
        for (const Image &one : images) expected.push_back(snapshots.of(one));
        size_t next = 0;
        three_shears(source, within_a_turn(angle), background, [&](int32_t, int32_t) { return expected[next++]; });

        asked.clear();
        supplied = images;
        image.set("Factory", handled_factory());
        const Image result(rotate(image, angle));
        image.set("Factory", nullptr);
        EXPECT_EQ(asked.size(), 3u);
        EXPECT_TRUE(result.same(images[2]));
        EXPECT_EQ(difference(image, source), "") << "in the source";
        for (size_t i = 0; i < 3; ++i) EXPECT_EQ(difference(images[i], expected[i]), "") << "in image " << i;
        supplied.clear();
    }

    // The sizes that a rotation asks for.
    static std::vector<Asked> sizes_of(const Image &image, double angle) {
        asked.clear();
        supplied.clear();
        image.set("Factory", handled_factory());
        rotate(image, angle);
        image.set("Factory", nullptr);
        return asked;
    }
};

TEST_F(RotateFactories, AllThreeImagesAreAskedForWithTheRecordOfTheImageBeingTurned) {
    const Image image = *make_image(Storage::memory, 30, 20, 3, 1);
    const Object own = handled_factory(), common = handled_factory();
    image.set("Factory", own);
    call_shared("PictureFactoryKZB", "SetFactory", {common});
    rotate(image, 20);
    ASSERT_EQ(asked.size(), 6u) << "each time the image's own, then the common one";
    for (size_t i = 0; i < 6; i += 2) {
        EXPECT_EQ(asked[i].factory, own.get());
        EXPECT_EQ(asked[i].format, 3);
        EXPECT_EQ(asked[i + 1].factory, common.get());
    }
    // 30 + 20 tan 10° = 33.5; 30 sin 20° + 20 cos 20° = 29.05; 20 sin 20° + 30 cos 20° = 35.03
    EXPECT_EQ(asked[0], (Asked{own.get(), 33, 20, 3}));
    EXPECT_EQ(asked[2], (Asked{own.get(), 33, 30, 3}));
    EXPECT_EQ(asked[4], (Asked{own.get(), 36, 30, 3}));

    // A quarter turned image has no factory of its own.
    asked.clear();
    rotate(image, 110);
    ASSERT_EQ(asked.size(), 5u);
    EXPECT_EQ(asked[0], (Asked{own.get(), 20, 30, 3}));
    EXPECT_EQ(asked[1].factory, common.get());
    for (size_t i = 2; i < 5; ++i) EXPECT_EQ(asked[i].factory, common.get());
    EXPECT_EQ(asked[2], (Asked{common.get(), 25, 30, 3}));
    image.set("Factory", nullptr);
}

TEST_F(RotateFactories, FileBackedImages) {
    uint32_t seed = 0;
    for (int32_t code : {1, 2, 3, 11, 12, 17})
        for (double angle : {30.0, -30.0, 45.0}) {
            const Image image = *make_image(Storage::memory, 40, 30, code, ++seed);
            std::vector<Image> images;
            for (const Asked &one : sizes_of(image, angle))
                images.push_back(*make_image(Storage::file, one.width, one.height, code, ++seed));
            check(image, angle, images, "files");
        }
}

TEST_F(RotateFactories, FilesOfSeveralBlocks) {
    const Image image = *make_image(Storage::memory, 100, 7000, 11, 1);
    for (double angle : {3.0, -3.0}) {
        std::vector<Image> images;
        for (const Asked &one : sizes_of(image, angle))
            images.push_back(*make_image(Storage::file, one.width, one.height, 11, 5));
        check(image, angle, images, "tall");
    }
}

TEST_F(RotateFactories, AFileWithFewRowsABlock) {
    // Sixteen rows a block, and columns that are shifted by nineteen rows.
    const Image image = *make_image(Storage::memory, 1040000, 3, 11, 1);
    const double angle = 19 / 1040000.0 / 3.141592653589793 * 180;
    for (double turn : {angle, -angle}) {
        std::vector<Image> images;
        for (const Asked &one : sizes_of(image, turn))
            images.push_back(
                *make_image(images.size() == 1 ? Storage::file : Storage::memory, one.width, one.height, 11, 5));
        ASSERT_GT(images[1].height(), 20);
        ASSERT_EQ(images[1].integer("MappingBlockSize") / images[1].integer("RowSize"), 16);
        check(image, turn, images, "wide");
    }
}

TEST_F(RotateFactories, AViewOfAFileWithoutABlockThatHoldsAllRowsOfAStrip) {
    const Image image = *make_image(Storage::memory, 300, 4700, 11, 1);
    std::vector<Image> images;
    for (const Asked &one : sizes_of(image, 20))
        images.push_back(*make_image(Storage::memory, one.width, one.height, 11, 5));
    const Image file = *make_image(Storage::file, images[1].width(), 9300, 11, 6);
    images[1] = Image(file.call("ClipImage", 0, 20, images[1].width(), images[1].height()));
    check(image, 20, images, "view");
}

TEST_F(RotateFactories, ImagesOfAnyOtherSizeLayoutAndStorageAreWrittenInsideTheirStorageOnly) {
    std::mt19937 random(1);
    const auto below = [&](size_t end) { return static_cast<size_t>(random() % end); };
    const int32_t codes[] = {1, 2, 3, 4, 9, 10, 11, 12, 13, 14, 16, 21};
    for (int i = 0; i < 600 && !testing::Test::HasFailure(); ++i) {
        const Image image = *make_image(Storage::memory, static_cast<int32_t>(1 + below(20)),
                                        static_cast<int32_t>(1 + below(20)), codes[below(9)], random());
        const double angle = static_cast<double>(below(9001)) / 100 - 45;
        if (angle == 0) continue;
        std::vector<Image> images;
        for (const Asked &one : sizes_of(image, angle)) {
            const bool fits = below(2) == 0;
            const bool close = below(2) == 0;
            const auto extent = [&](int32_t wish) {
                if (fits) return wish;
                if (!close) return static_cast<int32_t>(1 + below(30));
                return std::max(1, wish - 6 + static_cast<int32_t>(below(12)));
            };
            const Storage storage = std::array{Storage::memory, Storage::block, Storage::block_view, Storage::file,
                                               Storage::file_view}[below(i % 10 == 0 ? 5 : 3)];
            images.push_back(*make_image(storage, extent(one.width), extent(one.height),
                                         fits && below(2) == 0 ? one.format : codes[below(12)], random()));
        }
        check(image, angle, images, "case " + std::to_string(i));
    }
}

TEST_F(RotateFactories, TheImageItselfAndOneImageThriceGoInTheStatedOrder) {
    for (double angle : {25.0, -40.0}) {
        for (int32_t code : {1, 2, 12}) {
            Image image = *make_image(Storage::block, 15, 14, code, 4);
            const Image other = *make_image(Storage::memory, 22, 22, code, 5);
            check(image, angle, {image, other, image}, "itself first and last");
            check(image, angle, {image, image, image}, "itself thrice");
            check(image, angle, {other, other, other}, "one thrice");
            const Image parent = *make_image(Storage::memory, 40, 40, code, 6);
            const auto view = [&](int32_t x, int32_t y, int32_t w, int32_t h) {
                return Image(parent.call("ClipImage", x, y, w, h));
            };
            check(view(3, 4, 15, 14), angle, {view(0, 0, 20, 20), view(7, 9, 20, 24), view(5, 5, 25, 25)}, "views");
        }
    }
}

TEST_F(RotateFactories, OverlappingRowsOfASuppliedImageGoInTheStatedOrder) {
    const Image image = *make_image(Storage::memory, 9, 7, 11, 3);
    const std::vector<Asked> sizes = sizes_of(image, 20);
    for (size_t odd = 0; odd < 3; ++odd) {
        std::vector<Image> images;
        for (const Asked &one : sizes) images.push_back(*make_image(Storage::memory, one.width, one.height, 11, 4));
        // Rows three bytes apart, so that the storage holds the last one's start only.
        const Bytes bytes = random_bytes(256, 8);
        const Value memory = block_of(bytes);
        images[odd] = Image(Object::make("PictureKZB", memory, sizes[odd].width, sizes[odd].height, 11, 3));

        std::vector<PlainImage> expected;
        for (size_t i = 0; i < 3; ++i) {
            Snapshots snapshots;
            expected.push_back(snapshots.of(images[i]));
        }
        *expected[odd].storage = bytes;
        Snapshots snapshots;
        size_t next = 0;
        three_shears(snapshots.of(image), 20, background, [&](int32_t, int32_t) { return expected[next++]; });
        asked.clear();
        supplied = images;
        image.set("Factory", handled_factory());
        EXPECT_TRUE(images[2].same(Object(rotate(image, 20))));
        image.set("Factory", nullptr);
        EXPECT_EQ(memory.bytes(), *expected[odd].storage) << odd;
        if (odd == 2) continue;
        EXPECT_EQ(difference(images[2], expected[2]), "") << odd;
    }
}

TEST_F(RotateFactories, AnImageThatIsShearedIsGivenBackBeforeTheNextButOneIsAskedFor) {
    const Image image = *make_image(Storage::memory, 9, 7, 1, 3);
    std::vector<size_t> alive;
    user_code = [&] { alive.push_back(kzb_live_count("PictureKZB")); };
    image.set("Factory", handled_factory());
    const size_t before = kzb_live_count("PictureKZB");
    EXPECT_FALSE(rotate(image, 20).is_nil());
    image.set("Factory", nullptr);
    EXPECT_EQ(alive, (std::vector<size_t>{before, before + 1, before + 1}));
}

TEST_F(RotateFactories, NoImageIsAskedForWhoseSizeDoesNotFit32Bits) {
    // Its rows lie over each other and are not read.
    const Image vast(Object::make("PictureKZB", block_of(Bytes(64)), INT32_MAX - 100, 2000000, 11, 0));
    ASSERT_TRUE(vast.valid());
    vast.set("Factory", handled_factory());
    for (double angle : {1.0, 45.0, 330.0}) EXPECT_TRUE(rotate(vast, angle).is_nil()) << angle;
    vast.set("Factory", nullptr);
    EXPECT_TRUE(asked.empty());
}

TEST_F(RotateFactories, AnImageThatIsNotUsableEndsTheRotation) {
    const Image image = *make_image(Storage::memory, 9, 7, 1, 3);
    const std::vector<Asked> sizes = sizes_of(image, 20);
    for (size_t bad = 0; bad < 3; ++bad) {
        asked.clear();
        supplied.clear();
        for (const Asked &one : sizes) supplied.emplace_back(one.width, one.height, 1);
        supplied[bad].call("Close");
        image.set("Factory", handled_factory());
        EXPECT_TRUE(rotate(image, 20).is_nil()) << bad;
        EXPECT_EQ(asked.size(), bad + 1);
        image.set("Factory", nullptr);
    }
}

TEST_F(RotateFactories, UserCodeMayCloseAnyImageWhileItSuppliesAnother) {
    for (size_t when = 1; when <= 3; ++when) {
        for (size_t which = 0; which < when; ++which) {
            const Image image = *make_image(Storage::file, 9, 7, 1, 3);
            const std::vector<Asked> sizes = sizes_of(image, 20);
            asked.clear();
            for (const Asked &one : sizes) supplied.push_back(*make_image(Storage::file, one.width, one.height, 1, 3));
            const Image closed = which == 0 ? image : supplied[which - 1];
            user_code = [&] {
                if (asked.size() == when) closed.call("Close");
            };
            image.set("Factory", handled_factory());
            // Only the image that is being sheared is still needed.
            EXPECT_EQ(rotate(image, 20).is_nil(), which + 1 == when) << when << ' ' << which;
            image.set("Factory", nullptr);
            supplied.clear();
            user_code = nullptr;
        }
    }
}

} // namespace
} // namespace kzb::test
