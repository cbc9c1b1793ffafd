// Channel views, RGBChannels and ClipImage.

#include "fixtures/plain_rectangle.h"
#include "fixtures/storages.h"
#include "geometry/shapes.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kzb::test {
namespace {

constexpr const char *flags[] = {"IsGray", "IsRGB", "HasRed", "HasGreen", "HasBlue", "HasGray", "HasAlpha"};
constexpr const char *offsets[] = {"RedOffset", "GreenOffset", "BlueOffset", "GrayOffset", "AlphaOffset"};
constexpr const char *channel_flags[] = {"HasRed", "HasGreen", "HasBlue", "HasGray", "HasAlpha"};
constexpr const char *channel_views[] = {"RedChannel", "GreenChannel", "BlueChannel", "GrayChannel", "AlphaChannel"};

std::vector<int64_t> values_of(const Image &image, std::initializer_list<const char *> properties) {
    std::vector<int64_t> values;
    for (const char *property : properties) values.push_back(image.integer(property));
    return values;
}

// What every view has from its parent, and what it has not.
void expect_view(const Image &view, const Image &parent) {
    ASSERT_TRUE(view);
    EXPECT_TRUE(view.valid());
    EXPECT_TRUE(Image(view.get("Parent")).same(parent));
    for (const char *property : {"PixelSize", "RowSize", "TotalSize"})
        EXPECT_EQ(view.integer(property), parent.integer(property)) << property;
    EXPECT_EQ(view.flag("IsMapping"), parent.flag("IsMapping"));
    EXPECT_EQ(view.get("Target").object(), parent.get("Target").object());
    EXPECT_TRUE(view.get("MemoryTarget").is_nil());
    EXPECT_TRUE(view.get("Factory").is_nil());
    EXPECT_EQ(view.integer("YieldTicks"), 0);
    EXPECT_FALSE(view.flag("DebugPictureEnabled"));
    if (parent.flag("IsMapping")) {
        EXPECT_EQ(view.integer("MappingBlockSize"), parent.integer("MappingBlockSize"));
    }
}

TEST(ChannelViews, ShowOneByteOfEachPixelAsGray) {
    uint32_t seed = 1;
    for (const Layout &of : layouts()) {
        for (Storage storage : every_storage) {
            const auto image = make_image(storage, 6, 4, of.code, ++seed);
            if (!image) continue;
            image->set("YieldTicks", 0);
            image->set("DebugPictureEnabled", true);
            for (Channel channel : every_channel) {
                const auto i = static_cast<size_t>(channel);
                SCOPED_TRACE(std::string(channel_views[i]) + " of " + of.name + " in " + name_of(storage));
                const Image view(image->call(channel_views[i]));
                ASSERT_EQ(static_cast<bool>(view), of.offset(channel) >= 0);
                if (!view) continue;
                expect_view(view, *image);
                EXPECT_EQ(view.format(), 11);
                for (const char *flag : flags)
                    EXPECT_EQ(view.flag(flag), flag == std::string("IsGray") || flag == std::string("HasGray")) << flag;
                for (const char *offset : offsets)
                    EXPECT_EQ(view.integer(offset),
                              offset == std::string("GrayOffset") ? image->integer(offsets[i]) : 0);
                EXPECT_EQ(values_of(view, {"Width", "Height", "RowOffset"}),
                          values_of(*image, {"Width", "Height", "RowOffset"}));
                Snapshots snapshots;
                const PlainImage plain = snapshots.of(*image);
                const Bytes shown = view.call("RowInFormat", 2, 11).bytes();
                for (int32_t x = 0; x < 6; ++x) EXPECT_EQ(shown[static_cast<size_t>(x)], plain.get(x, 2, channel));
            }
        }
    }
}

TEST(ChannelViews, WritingThemWritesThatChannelOfTheParent) {
    const Image image = *make_image(Storage::block, 6, 4, 7, 1);
    Snapshots snapshots;
    const PlainImage plain = snapshots.of(image);
    Image(image.call("RedChannel")).call("FillRect", 0);
    for (int32_t y = 0; y < 4; ++y)
        for (int32_t x = 0; x < 6; ++x) plain.set(x, y, Channel::red, 0);
    EXPECT_EQ(difference(image, plain), "");
}

TEST(ChannelViews, AMissingChannelGivesNil) {
    EXPECT_TRUE(Image(4, 4, 1).call("GrayChannel").is_nil());
    EXPECT_TRUE(Image(4, 4, 1).call("AlphaChannel").is_nil());
    EXPECT_TRUE(Image(4, 4, 11).call("RedChannel").is_nil());
    for (int32_t format : {0, 14, 99})
        for (const char *view : channel_views) EXPECT_TRUE(Image(4, 4, format).call(view).is_nil());
}

TEST(RGBChannels, IsTheColoursWithoutAlphaAndWithoutTheirFlags) {
    uint32_t seed = 1;
    for (const Layout &of : layouts()) {
        for (Storage storage : every_storage) {
            const auto image = make_image(storage, 6, 4, of.code, ++seed);
            if (!image) continue;
            SCOPED_TRACE(std::string(of.name) + " in " + name_of(storage));
            const Image view(image->call("RGBChannels"));
            ASSERT_EQ(static_cast<bool>(view), of.is_rgb());
            if (!view) continue;
            expect_view(view, *image);
            EXPECT_EQ(view.format(), of.code <= 5 ? 1 : 6);
            for (const char *flag : flags) EXPECT_EQ(view.flag(flag), flag == std::string("IsRGB")) << flag;
            EXPECT_EQ(values_of(view, {"RedOffset", "GreenOffset", "BlueOffset", "Width", "Height", "RowOffset"}),
                      values_of(*image, {"RedOffset", "GreenOffset", "BlueOffset", "Width", "Height", "RowOffset"}));
            EXPECT_EQ(values_of(view, {"GrayOffset", "AlphaOffset"}), (std::vector<int64_t>{0, 0}));
            EXPECT_TRUE(view.call("RedChannel").is_nil());
            EXPECT_EQ(view.call("RowInFormat", 3, 1).bytes(), image->call("RowInFormat", 3, 1).bytes());
            EXPECT_EQ(Image(view.call("RGBChannels")).format(), view.format());
        }
    }
}

TEST(RGBChannels, GivesNilForOtherLayouts) {
    for (int32_t format : {0, 11, 12, 14, 15, 21, 22}) EXPECT_TRUE(Image(4, 4, format).call("RGBChannels").is_nil());
}

TEST(ClipImage, IsARectangleOfTheParent) {
    uint32_t seed = 1;
    for (const Layout &of : layouts()) {
        for (Storage storage : every_storage) {
            const auto image = make_image(storage, 7, 5, of.code, ++seed);
            if (!image) continue;
            Snapshots snapshots;
            const PlainImage plain = snapshots.of(*image);
            for (const PlainRectangle &r : rectangles(7, 5)) {
                SCOPED_TRACE(std::string(of.name) + " in " + name_of(storage) + ": " + std::to_string(r.x) + ", " +
                             std::to_string(r.y) + ", " + std::to_string(r.w) + ", " + std::to_string(r.h));
                const PlainRectangle cut = clipped(plain, r);
                const Image view(image->call("ClipImage", r.x, r.y, r.w, r.h));
                expect_view(view, *image);
                EXPECT_EQ(view.width(), std::max(cut.w, 0));
                EXPECT_EQ(view.height(), std::max(cut.h, 0));
                EXPECT_EQ(view.integer("RowOffset"), plus(plain.row_offset, cut.y));
                EXPECT_EQ(view.format(), of.code);
                for (const char *flag : flags) EXPECT_EQ(view.flag(flag), image->flag(flag)) << flag;
                for (size_t i = 0; i < 5; ++i)
                    EXPECT_EQ(
                        view.integer(offsets[i]),
                        image->flag(channel_flags[i])
                            ? plus(plain.offsets[i], static_cast<int32_t>(static_cast<uint32_t>(cut.x) *
                                                                          static_cast<uint32_t>(plain.pixel_size)))
                            : 0)
                        << offsets[i];
            }
        }
    }
}

TEST(ClipImage, CutsANegativeCorner) {
    const Image image = *make_image(Storage::memory, 20, 20, 11, 1);
    const Image view(image.call("ClipImage", -5, -5, 10, 10));
    EXPECT_EQ(values_of(view, {"Width", "Height", "RowOffset", "GrayOffset"}), (std::vector<int64_t>{5, 5, 0, 0}));
    EXPECT_EQ(view.call("RowInFormat", 4, 11).bytes()[4], image.row(4)[4]);
}

TEST(ClipImage, BeyondTheRightOrLowerEdgeHasNoWidthOrHeight) {
    const Image image(20, 10, 2);
    for (int32_t x : {20, 21, 1000, INT32_MAX}) {
        EXPECT_EQ(Image(image.call("ClipImage", x, 0, 4, 4)).width(), 0);
        EXPECT_EQ(Image(image.call("ClipImage", 0, x, 4, 4)).height(), 0);
    }
    EXPECT_EQ(Image(image.call("ClipImage", 20, 0, 4, 4)).height(), 4);
}

TEST(ClipImage, OfAViewAddsUp) {
    const Image image = *make_image(Storage::memory, 20, 20, 2, 1);
    const Image outer(image.call("ClipImage", 3, 4, 10, 10));
    const Image inner(outer.call("ClipImage", 2, 1, 30, 30));
    EXPECT_EQ(values_of(inner, {"Width", "Height", "RowOffset", "RedOffset", "AlphaOffset"}),
              (std::vector<int64_t>{8, 9, 5, 20, 23}));
    EXPECT_TRUE(Image(inner.get("Parent")).same(outer));
    EXPECT_EQ(inner.call("RowInFormat", 0, 2).bytes()[0], image.row(5)[20]);
}

// Whatever rectangle a view has, operations on it stay inside the storage, which ends before a page that cannot be
// touched, and leave rows outside the view alone.
TEST(ClipImage, NoRectangleLeadsOutsideTheStorage) {
    for (int32_t code : {2, 6, 11, 13, 17}) {
        for (Storage storage : {Storage::block, Storage::file}) {
            const Image image = *make_image(storage, 7, 5, code, 1);
            const Image other = *make_image(Storage::memory, 9, 9, code, 2);
            for (const PlainRectangle &r : rectangles(7, 5)) {
                const Image view(image.call("ClipImage", r.x, r.y, r.w, r.h));
                for (const Image &each : {view, Image(view.call("ClipImage", r.y, r.x, r.h, r.w))}) {
                    each.call("FillRect", 3);
                    each.call("FillRect", -1, -1, 1, 1, 3);
                    each.call("ClearRect");
                    each.call("ClearRect", -3, -3, 2, 2);
                    each.call("Invert");
                    each.call("FillRectRGB", 1, 2, 3, 4);
                    each.call("CopyPixels", other);
                    each.call("CopyPixels", each, 1, 0, 9, 9);
                    Image(9, 9, code).call("CopyPixels", each);
                    other.call("SolarizeFilter", each);
                    each.call("SolarizeFilter", nullptr);
                    each.call("Clone");
                    each.set("MappingBlockSize", 0);
                }
            }
            EXPECT_TRUE(image.valid());
        }
    }
}

TEST(Views, HoldWhatTheyShow) {
    for (Storage storage : every_storage) {
        SCOPED_TRACE(name_of(storage));
        std::vector<Image> views;
        {
            const Image image = *make_image(storage, 8, 6, 4, 1);
            for (const Shape &shape : shapes_of(image))
                if (shape.name != "itself") views.push_back(shape.image);
        }
        for (const Image &view : views) {
            view.call("FillRect", 1, 1, 1, 1, 7);
            EXPECT_FALSE(view.call("Row", 1).is_nil());
        }
    }
}

TEST(Views, HoldTheHostPictureTogetherWithTheirParent) {
    Value picture = Value::adopt(reinterpret_cast<KZBObject>(kzb_picture_new(8, 6, 32)));
    Image image(Object::make("PictureKZB", picture, true));
    const Image view(image.call("ClipImage", 1, 1, 4, 4));
    EXPECT_EQ(view.get("Target").object(), picture.object());
    image.call("Close");
    EXPECT_EQ(view.get("Target").object(), picture.object());
    picture = Value();
    EXPECT_EQ(kzb_live_count("Picture"), 1u);
    view.call("Close");
    EXPECT_EQ(kzb_live_count("Picture"), 0u);
}

TEST(Views, AreNotUsableOnceTheirParentIsClosedOrBuiltAnew) {
    for (Storage storage : every_storage) {
        for (const bool again : {false, true}) {
            SCOPED_TRACE(name_of(storage));
            const Image image = *make_image(storage, 8, 6, 4, 1);
            const Image view(image.call("ClipImage", 1, 1, 5, 4));
            const Image channel(view.call("GreenChannel"));
            image.call("Close");
            if (again) image.call("Constructor", 30, 30, 4);
            for (const Image &each : {view, channel}) {
                each.call("FillRect", 9);
                each.call("ClearRect");
                EXPECT_TRUE(each.call("Row", 0).is_nil());
                EXPECT_TRUE(each.call("Clone").is_nil());
                Image(each.call("ClipImage", 0, 0, 3, 3)).call("FillRect", 9);
            }
            if (again) {
                EXPECT_EQ(storage_of(image), Bytes(storage_of(image).size()));
            }
        }
    }
}

TEST(Views, OfAnImageWithoutStorageAreNotValidAndMayBeConstructed) {
    for (const Image &parent : {Image(Object::make("PictureKZB")), Image(4, 4, 99)}) {
        const Image view(parent.call("ClipImage", 0, 0, 2, 2));
        ASSERT_TRUE(view);
        EXPECT_FALSE(view.valid());
        view.call("Constructor", 5, 5, 11);
        EXPECT_TRUE(view.valid());
        EXPECT_TRUE(view.get("Parent").is_nil());
        view.call("FillRect", 6);
        EXPECT_EQ(view.row(0)[0], 6);
    }
}

TEST(Views, OfAFileLeaveItToTheirParent) {
    const std::string path = scratch_path();
    const Image image(Object::make("PictureKZB", 8, 6, 2, 0, folder_item(path)));
    const Image view(image.call("ClipImage", 1, 1, 4, 4));
    view.call("FillRectRGB", 1, 2, 3, 4);
    EXPECT_EQ(image.row(1)[4], 1) << "both map the same file";
    view.call("Close");
    EXPECT_TRUE(std::filesystem::exists(path));
    image.call("FillRect", 8);
    EXPECT_EQ(image.row(5)[0], 8);
    image.call("Close");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(Views, ALongChainOfThemIsReleased) {
    Image view(4, 4, 1);
    for (int i = 0; i < 100'000; ++i) view = Image(view.call("ClipImage", 0, 0, 4, 4));
    view.call("FillRect", 3);
    EXPECT_EQ(view.row(3)[0], 3);
    view = Image();
    EXPECT_EQ(kzb_live_count("PictureKZB"), 0u);
}

} // namespace
} // namespace kzb::test
