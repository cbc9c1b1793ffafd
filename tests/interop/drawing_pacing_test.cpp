// When the drawing of host pictures yields, and what a yield may change.

#include "fixtures/yielding.h"

namespace kzb::test {
namespace {

using DrawPicturePacing = YieldingAtEveryPace;

Value white_picture(int32_t width, int32_t height, int32_t depth = 32) {
    return Value::adopt(reinterpret_cast<KZBObject>(kzb_picture_new(width, height, depth)));
}

TEST_F(DrawPicturePacing, ColoursYieldAtBothEndsBeforeTheFirstRowAndAfterEach) {
    const Image image(5, 9, 1);
    pacing(image);
    const Value picture = white_picture(5, 9);
    EXPECT_EQ(yields_of([&] { image.call("DrawPictureRGB", picture, 0, 0, 5, 9); }), 1 + 1 + 9 + 1);
    EXPECT_EQ(yields_of([&] { image.call("DrawPictureRGB", picture, 0, 7, 5, 9); }), 1 + 1 + 2 + 1);
    EXPECT_EQ(yields_of([&] { image.call("DrawPictureRGB", picture, 9, 9, 5, 9); }), 2) << "an empty rectangle";
    EXPECT_EQ(yields_of([&] { image.call("DrawPictureRGB", nullptr, 0, 0, 5, 9); }), 2) << "no picture";
}

TEST_F(DrawPicturePacing, GrayYieldsOnlyAtTheStart) {
    const Image image(5, 9, 12);
    pacing(image);
    const Value picture = white_picture(5, 9);
    for (const char *method :
         {"DrawPictureRedToGrayChannel", "DrawPictureGreenToGrayChannel", "DrawPictureBlueToGrayChannel"}) {
        EXPECT_EQ(yields_of([&] { image.call(method, picture, 0, 0, 5, 9); }), 1);
        EXPECT_EQ(yields_of([&] { image.call(method, nullptr, 0, 0, 5, 9); }), 1);
    }
}

TEST_F(DrawPicturePacing, WithoutTheChannelsThereIsNone) {
    const Image gray(5, 9, 11), colours(5, 9, 1);
    pacing(gray);
    pacing(colours);
    const Value picture = white_picture(5, 9);
    EXPECT_EQ(yields_of([&] { gray.call("DrawPictureRGB", picture, 0, 0, 5, 9); }), 0);
    EXPECT_EQ(yields_of([&] { colours.call("DrawPictureRedToGrayChannel", picture, 0, 0, 5, 9); }), 0);
}

TEST_F(DrawPicturePacing, AnImageThatIsClosedOrBuiltAnewMeanwhileIsNotDrawnOn) {
    for (const bool again : {false, true})
        for (int at = 1; at <= 5; ++at) {
            const Image image(5, 4, 1);
            pacing(image);
            const Value picture = white_picture(5, 4, at % 2 == 0 ? 24 : 32);
            user_code = [&] {
                if (yields != at) return;
                image.call("Close");
                if (again) image.call("Constructor", 2, 2, 1);
            };
            EXPECT_EQ(yields_of([&] { image.call("DrawPictureRGB", picture, 0, 0, 5, 4); }), at);
            if (again) {
                EXPECT_EQ(image.row(0), Bytes(64));
            }
            EXPECT_EQ(kzb_picture_world(reinterpret_cast<KZBPicture>(picture.object()))->lock_count, 0);
            user_code = nullptr;
        }
}

} // namespace
} // namespace kzb::test
