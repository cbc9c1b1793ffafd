#include "picture_fixture.h"

#include <cstring>

using namespace kzb_test;

namespace {

constexpr const char *kDrawPicture = "DrawPicture( p as Picture, x as Integer, y as Integer, dw as Integer, dh as "
                                     "Integer, sx as Integer, sy as Integer, sw as Integer, sh as Integer )";

int disposals = 0;

void count_disposal(GWorld *) {
    ++disposals;
}

// A world over a test's own bytes.
struct OwnWorld {
    std::vector<uint8_t> bytes = std::vector<uint8_t>(64 * 10);
    GWorld world{32, 64, 12, 10, bytes.data(), 0, count_disposal};

    OwnWorld() { disposals = 0; }
};

} // namespace

TEST_F(PictureTest, ANewPictureIsWhiteAndHasNoMask) {
    for (const int32_t depth : {8, 16, 24, 32}) {
        SCOPED_TRACE(depth);
        const PictureOwner picture(HOST(newPicture)(7, 5, depth));
        ASSERT_TRUE(picture);
        EXPECT_STREQ(kzb_class_name(object_of(picture.get())), "Picture");
        const GWorld &world = *kzb_picture_world(picture.get());
        EXPECT_EQ(world.depth, depth);
        EXPECT_EQ(world.width, 7);
        EXPECT_EQ(world.height, 5);
        EXPECT_EQ(world.row_bytes, (7 * depth / 8 + 15) / 16 * 16);
        EXPECT_EQ(pixels_of(world), std::vector<Colour>(35, Colour{255, 255, 255}));
        EXPECT_EQ(kzb_picture_mask(picture.get()), nullptr);
    }
}

TEST_F(PictureTest, TheUnusedByteAndBitOfANewPictureAreZero) {
    const PictureOwner deep = make_picture(3, 1, 32), middle = make_picture(3, 1, 16);
    const auto *bytes = static_cast<const uint8_t *>(kzb_picture_world(deep.get())->base_address);
    for (const int byte : {0, 4, 8}) EXPECT_EQ(bytes[byte], 0);
    uint16_t word;
    std::memcpy(&word, kzb_picture_world(middle.get())->base_address, 2);
    EXPECT_EQ(word, 0x7FFF);
}

TEST_F(PictureTest, ImpossiblePicturesAreRefused) {
    const std::array<int32_t, 3> refused[] = {
        {0, 5, 32},
        {5, 0, 32},
        {-1, 5, 32},
        {5, -1, 32},
        {INT32_MIN, INT32_MIN, 32},
        {5, 5, 0},
        {5, 5, 1},
        {5, 5, 4},
        {5, 5, 15},
        {5, 5, 48},
        {5, 5, -32},
        {5, 5, 64},
        {INT32_MAX, 1, 32},
        {536870912, 1, 32},
        {65536, 32768, 32},
        {INT32_MAX, INT32_MAX, 8},
    };
    for (const auto &[width, height, depth] : refused) {
        EXPECT_EQ(HOST(newPicture)(width, height, depth), nullptr) << width << " x " << height << ", " << depth;
    }
}

TEST_F(PictureTest, WidthHeightAndDepthAreIntegerProperties) {
    const PictureOwner picture = make_picture(30, 20, 16);
    int32_t value = 0;
    EXPECT_TRUE(HOST(REALGetPropValueInt)(object_of(picture.get()), "Width", &value));
    EXPECT_EQ(value, 30);
    EXPECT_TRUE(HOST(REALGetPropValueInt)(object_of(picture.get()), "hEIGHT", &value));
    EXPECT_EQ(value, 20);
    EXPECT_TRUE(HOST(REALGetPropValueInt)(object_of(picture.get()), "Depth", &value));
    EXPECT_EQ(value, 16);
    EXPECT_FALSE(HOST(REALGetPropValueInt)(object_of(picture.get()), "Length", &value));
    EXPECT_FALSE(HOST(REALGetPropValueInt)(nullptr, "Width", &value));
    EXPECT_EQ(value, 16);
}

TEST_F(PictureTest, TheDescriptionLeadsToThePixels) {
    const PictureOwner picture = make_picture(10, 4, 24);
    PictureDescription description{};
    ASSERT_TRUE(HOST(lockPictureDescription)(picture.get(), &description));
    EXPECT_EQ(description.kind, KZB_PICTURE_GWORLD);
    EXPECT_EQ(description.port, kzb_picture_world(picture.get()));
    EXPECT_EQ(description.data_size, 32 * 4);
    EXPECT_EQ(description.width, 10);
    EXPECT_EQ(description.height, 4);
    HOST(unlockPictureDescription)(picture.get(), &description);
}

TEST_F(PictureTest, DescriptionLocksAreCounted) {
    const PictureOwner picture = make_picture(1, 1);
    PictureDescription description;
    ASSERT_TRUE(HOST(lockPictureDescription)(picture.get(), &description));
    ASSERT_TRUE(HOST(lockPictureDescription)(picture.get(), &description));
    HOST(unlockPictureDescription)(picture.get(), &description);
    HOST(unlockPictureDescription)(picture.get(), &description);
    EXPECT_TRUE(taken_misuses().empty());
    HOST(unlockPictureDescription)(picture.get(), &description);
    EXPECT_EQ(taken_misuses().size(), 1u);
}

TEST_F(PictureTest, ReleasingALockedPictureIsMisuse) {
    PictureOwner picture = make_picture(1, 1);
    PictureDescription description;
    ASSERT_TRUE(HOST(lockPictureDescription)(picture.get(), &description));
    picture.reset();
    EXPECT_EQ(taken_misuses(), std::vector<std::string>{"a Picture was released while its description was locked"});
}

TEST_F(PictureTest, APictureDisposesOfTheWorldThatItTookOver) {
    OwnWorld own;
    PictureOwner picture(HOST(REALBuildPictureFromGWorld)(&own.world, 1));
    ASSERT_TRUE(picture);
    EXPECT_EQ(kzb_picture_world(picture.get()), &own.world);
    EXPECT_EQ(disposals, 0);
    picture.reset();
    EXPECT_EQ(disposals, 1);
}

TEST_F(PictureTest, APictureLeavesAWorldAloneThatItDidNotTakeOver) {
    OwnWorld own;
    PictureOwner picture(HOST(REALBuildPictureFromGWorld)(&own.world, 0));
    ASSERT_TRUE(picture);
    picture.reset();
    EXPECT_EQ(disposals, 0);
}

TEST_F(PictureTest, UnusableWorldsMakeNoPictureAndStayTheCallers) {
    OwnWorld own;
    const auto refused = [&](kzb_word GWorld::*field, kzb_word value) {
        GWorld world = own.world;
        world.*field = value;
        EXPECT_EQ(HOST(REALBuildPictureFromGWorld)(&world, 1), nullptr) << value;
    };
    for (const kzb_word depth : {0, 1, 15, 31, 40, -8}) refused(&GWorld::depth, depth);
    for (const kzb_word width : {kzb_word{0}, kzb_word{-1}, kzb_word{17}, INTPTR_MIN, INTPTR_MAX}) {
        refused(&GWorld::width, width);
    }
    for (const kzb_word height : {kzb_word{0}, kzb_word{-1}, INTPTR_MIN, INTPTR_MAX}) refused(&GWorld::height, height);
    for (const kzb_word row_bytes : {kzb_word{0}, kzb_word{47}, kzb_word{-64}, INTPTR_MAX}) {
        refused(&GWorld::row_bytes, row_bytes);
    }
    GWorld without_pixels = own.world;
    without_pixels.base_address = nullptr;
    EXPECT_EQ(HOST(REALBuildPictureFromGWorld)(&without_pixels, 1), nullptr);
    EXPECT_EQ(HOST(REALBuildPictureFromGWorld)(nullptr, 1), nullptr);
    EXPECT_EQ(disposals, 0);
}

TEST_F(PictureTest, AMaskIsMadeOnceWhiteAndAsDeepAsExchangePixels) {
    const PictureOwner picture = make_picture(6, 3, 16);
    EXPECT_EQ(HOST(REALGetPictureMask)(picture.get(), 0), nullptr);
    const PictureOwner mask(HOST(REALGetPictureMask)(picture.get(), 1));
    ASSERT_TRUE(mask);
    const GWorld &world = *kzb_picture_world(mask.get());
    EXPECT_EQ(world.depth, 32);
    EXPECT_EQ(world.width, 6);
    EXPECT_EQ(pixels_of(world), std::vector<Colour>(18, Colour{255, 255, 255}));
    const PictureOwner again(HOST(REALGetPictureMask)(picture.get(), 1)), same(kzb_picture_mask(picture.get()));
    EXPECT_EQ(again.get(), mask.get());
    EXPECT_EQ(same.get(), mask.get());
}

TEST_F(PictureTest, AMaskLivesAsLongAsItsPicture) {
    PictureOwner picture = make_picture(2, 2), mask = make_picture(9, 9, 8);
    kzb_picture_set_mask(picture.get(), mask.get());
    kzb_picture_set_mask(picture.get(), mask.get());
    mask.reset();
    EXPECT_EQ(kzb_live_count("Picture"), 2u);
    kzb_picture_set_mask(picture.get(), nullptr);
    EXPECT_EQ(kzb_live_count("Picture"), 1u);
    EXPECT_EQ(kzb_picture_mask(picture.get()), nullptr);
}

TEST_F(PictureTest, MasksInACircleAreMisuse) {
    const PictureOwner a = make_picture(1, 1), b = make_picture(1, 1), c = make_picture(1, 1);
    kzb_picture_set_mask(a.get(), b.get());
    kzb_picture_set_mask(b.get(), c.get());
    EXPECT_TRUE(taken_misuses().empty());
    for (KZBPicture mask : {a.get(), b.get(), c.get()}) kzb_picture_set_mask(c.get(), mask);
    EXPECT_EQ(taken_misuses().size(), 3u);
    EXPECT_EQ(kzb_picture_mask(c.get()), nullptr);
}

TEST_F(PictureTest, AGraphicsObjectKeepsItsPictureAlive) {
    PictureOwner picture = make_picture(1, 1);
    ObjectOwner graphics(HOST(pluginPictureGraphicsGetter)(picture.get()));
    ASSERT_TRUE(graphics);
    EXPECT_STREQ(kzb_class_name(graphics.get()), "Graphics");
    picture.reset();
    EXPECT_EQ(kzb_live_count("Picture"), 1u);
    graphics.reset();
    EXPECT_EQ(kzb_live_count("Picture"), 0u);
}

TEST_F(PictureTest, TheDrawingMethodIsFoundByItsDeclaration) {
    const PictureOwner picture = make_picture(1, 1);
    const ObjectOwner graphics(HOST(pluginPictureGraphicsGetter)(picture.get()));
    const KZBFunction method = HOST(REALLoadObjectMethod)(graphics.get(), kDrawPicture);
    EXPECT_TRUE(method);
    EXPECT_EQ(HOST(REALLoadObjectMethod)(graphics.get(),
                                         "drawpicture(P As PICTURE,x as integer,y as integer,dw as integer,dh as "
                                         "integer,sx as integer,sy as integer,sw as integer,sh as integer)"),
              method);
    EXPECT_EQ(HOST(REALLoadObjectMethod)(graphics.get(), "DrawPicture( p as Picture, x as Integer, y as Integer )"),
              nullptr);
    EXPECT_EQ(HOST(REALLoadObjectMethod)(object_of(picture.get()), kDrawPicture), nullptr);
    EXPECT_EQ(HOST(REALLoadObjectMethod)(nullptr, kDrawPicture), nullptr);
}

TEST_F(PictureTest, NilPicturesDoNothing) {
    PictureDescription description{};
    EXPECT_FALSE(HOST(lockPictureDescription)(nullptr, &description));
    HOST(unlockPictureDescription)(nullptr, &description);
    EXPECT_EQ(HOST(pluginPictureGraphicsGetter)(nullptr), nullptr);
    EXPECT_EQ(HOST(REALGetPictureMask)(nullptr, 1), nullptr);
    EXPECT_EQ(kzb_picture_world(nullptr), nullptr);
    EXPECT_EQ(kzb_picture_mask(nullptr), nullptr);
    kzb_picture_set_mask(nullptr, nullptr);
    const PictureOwner picture = make_picture(2, 2);
    draw(picture.get(), nullptr, {0, 0, 2, 2}, {0, 0, 2, 2});
    EXPECT_EQ(pixels_of(*kzb_picture_world(picture.get())), std::vector<Colour>(4, Colour{255, 255, 255}));
}

TEST_F(PictureTest, AnotherObjectInAPicturesPlaceIsMisuse) {
    const PictureOwner picture = make_picture(2, 2);
    const ObjectOwner graphics(HOST(pluginPictureGraphicsGetter)(picture.get()));
    const auto wrong = reinterpret_cast<KZBPicture>(graphics.get());
    PictureDescription description{};
    EXPECT_FALSE(HOST(lockPictureDescription)(wrong, &description));
    EXPECT_EQ(HOST(pluginPictureGraphicsGetter)(wrong), nullptr);
    EXPECT_EQ(HOST(REALGetPictureMask)(wrong, 1), nullptr);
    kzb_picture_set_mask(picture.get(), wrong);
    draw(picture.get(), wrong, {0, 0, 2, 2}, {0, 0, 2, 2});
    EXPECT_EQ(taken_misuses().size(), 5u);
}

TEST_F(PictureTest, AReleasedPictureIsMisuse) {
    PictureOwner picture = make_picture(2, 2);
    KZBPicture gone = picture.get();
    picture.reset();
    PictureDescription description{};
    EXPECT_FALSE(HOST(lockPictureDescription)(gone, &description));
    EXPECT_EQ(taken_misuses().size(), 1u);
}
