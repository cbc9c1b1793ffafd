// Filtered scaling over layouts, storages, sizes and shared bytes.

#include "geometry/scale_check.h"

#include <gtest/gtest.h>

namespace kzb::test {
namespace {

using namespace scale_mode;

// One layout of each kind: colour or gray, with or without alpha, packed or padded.
constexpr int32_t some_layouts[] = {1, 2, 10, 11, 13, 16};

TEST(Scale, EveryKernelOverEveryPairOfLayouts) {
    for (int32_t mode = 1; mode <= 7; ++mode) {
        for (const Layout &from : layouts()) {
            const Image source = random_image({6, 5}, from.code);
            for (const Layout &to : layouts()) {
                if (HasFailure()) return;
                // Larger than the result: the rest is left alone.
                check_scale(random_image({10, 5}, to.code), source, Object(), mode, {9, 4}, "wider and lower");
            }
        }
    }
}

TEST(Scale, EveryKernelUpDownAndAlongOneSide) {
    const struct {
        Size from, to;
    } cases[] = {
        {{1, 1}, {1, 1}},   {{1, 1}, {4, 3}},   {{5, 4}, {1, 1}},   {{7, 5}, {7, 5}},  {{7, 5}, {7, 3}},
        {{7, 5}, {7, 11}},  {{7, 5}, {3, 5}},   {{7, 5}, {16, 5}},  {{5, 7}, {9, 13}}, {{21, 18}, {5, 4}},
        {{4, 30}, {11, 7}}, {{3, 2}, {70, 33}}, {{40, 3}, {39, 2}}, {{2, 9}, {3, 10}}, {{70, 1}, {1, 20}},
    };
    for (int32_t mode = 1; mode <= 7; ++mode)
        for (const auto &[from, to] : cases)
            for (int32_t source_format : some_layouts)
                for (int32_t format : {2, 6, 12, 19}) {
                    if (HasFailure()) return;
                    check_scale(random_image(to, format), random_image(from, source_format),
                                random_image({to.width, from.height}, scaling_format), mode, to, "memory");
                }
}

TEST(Scale, EveryStorage) {
    for (Storage storage : every_storage) {
        for (int32_t format : {1, 4, 5, 11, 12}) {
            if (HasFailure()) return;
            const auto source = make_image(storage, 8, 7, format, 1);
            const auto image = make_image(storage, 7, 10, format, 2);
            const std::string name = name_of(storage);
            const Size size = {5, 9};
            if (source) check_scale(random_image({7, 10}, 2), *source, Object(), lanczos3, size, "source in " + name);
            if (image) check_scale(*image, random_image({8, 7}, 9), Object(), lanczos3, size, "into " + name);
            const auto temp = make_image(storage, 6, 8, scaling_format, 3);
            if (!temp) continue;
            check_scale(random_image({7, 10}, format), random_image({8, 7}, format), *temp, lanczos3, size,
                        "through " + name);
            if (source && image) check_scale(*image, *source, *temp, lanczos8, size, "all in " + name);
        }
    }
}

TEST(Scale, RowsOfSeveralStrips) {
    for (int32_t format : some_layouts)
        check_scale(random_image({2600, 3}, format), random_image({1300, 4}, format), Object(), lanczos3, {2579, 3},
                    "wide");
}

TEST(Scale, RowsAndColumnsOfSeveralGroups) {
    const struct {
        Size from, to;
    } cases[] = {{{203, 71}, {67, 29}}, {{91, 45}, {137, 83}}, {{130, 67}, {129, 66}}, {{700, 9}, {9, 100}}};
    for (int32_t mode = 1; mode <= 7; ++mode)
        for (const auto &[from, to] : cases)
            for (int32_t source_format : some_layouts)
                for (int32_t format : {2, 9, 12, 13}) {
                    if (HasFailure()) return;
                    const Image source = random_image(from, source_format);
                    check_scale(random_image(to, format), source, Object(), mode, to, "alone");
                    check_scale(random_image(to, format), source, random_image({to.width, from.height}, scaling_format),
                                mode, to, "with an intermediate image");
                }
}

// What is written later to a shared byte stays there.
TEST(Scale, IntoRowsThatLieOverEachOther) {
    constexpr int32_t row_size = 7, rows = 24;
    for (int32_t mode = 1; mode <= 7; ++mode)
        for (int32_t source_format : some_layouts)
            for (int32_t format : some_layouts) {
                Bytes memory = random_bytes(size_t{row_size} * rows, 3);
                const Image block(Object::make("PictureKZB", block_at(memory.data()), 11, rows, format, row_size));
                const Image target(block.call("ClipImage", 0, 0, 11, 16));
                check_scale(target, random_image({7, 9}, source_format), Object(), mode, {11, 16}, "overlapping");
            }
}

// Lists of one, two, four and eight equal pixels, and of other numbers.
TEST(Scale, BoxesOfWholeNumbers) {
    const struct {
        Size from, to;
    } cases[] = {{{160, 48}, {40, 12}},  {{160, 48}, {20, 6}}, {{161, 47}, {80, 23}},  {{160, 48}, {240, 72}},
                 {{96, 31}, {288, 124}}, {{90, 33}, {30, 11}}, {{160, 48}, {159, 47}}, {{600, 64}, {75, 2}},
                 {{33, 9}, {33, 9}},     {{128, 16}, {8, 1}},  {{64, 128}, {8, 2}},    {{3, 64}, {200, 8}}};
    for (const auto &[from, to] : cases)
        for (int32_t source_format : some_layouts)
            for (int32_t format : {2, 6, 9, 11, 12, 13}) {
                if (HasFailure()) return;
                const Image source = random_image(from, source_format);
                check_scale(random_image(to, format), source, Object(), box, to, "alone");
                check_scale(random_image(to, format), source, random_image({to.width, from.height}, scaling_format),
                            box, to, "with an intermediate image");
            }
}

TEST(Scale, BoxesThroughAnIntermediateImageThatNoCacheHolds) {
    check_scale(random_image({520, 260}, 2), random_image({1040, 520}, 2), random_image({520, 520}, scaling_format),
                box, {520, 260}, "a half");
}

// Where means are whole numbers, the last bit of a quotient would show.
TEST(Scale, FlatImages) {
    for (int32_t mode = 1; mode <= 7; ++mode)
        for (int32_t value : {1, 100, 254, 255})
            for (Size size : {Size{31, 23}, Size{120, 90}, Size{79, 59}}) {
                const Image source(80, 60, 2);
                source.call("FillRect", value);
                check_scale(random_image(size, 2), source, Object(), mode, size, "flat " + std::to_string(value));
            }
}

TEST(Scale, FilesOfSeveralBlocks) {
    const Image tall_source = make_tall_image(5, 2, 1);
    const Image tall_temp = make_tall_image(4, scaling_format, 2);
    const Image tall = make_tall_image(5, 7, 3);
    check_scale(random_image({4, 90}, 2), tall_source, tall_temp, lanczos3, {4, 90}, "shrunk");
    // Each list of rows is longer than a block.
    check_scale(random_image({3, 3}, 12), tall_source, tall_temp, lanczos8, {3, 3}, "shrunk to three rows");
    check_scale(tall, random_image({3, 50}, 4), Object(), lanczos8, {5, tall_height}, "enlarged");
    check_scale(tall, tall_source, tall_temp, poly3, {4, tall_height - 1}, "all in files");
}

TEST(Scale, IntoItselfReadsTheWholeSourceFirst) {
    for (Storage storage : {Storage::memory, Storage::block, Storage::file, Storage::block_view, Storage::file_view})
        for (int32_t format : some_layouts)
            for (Size size : {Size{9, 8}, Size{4, 3}, Size{9, 2}}) {
                const Image image = random_image(storage, {9, 8}, format);
                check_scale(image, image, Object(), lanczos3, size, std::string("itself, in ") + name_of(storage));
            }
}

TEST(Scale, OverlappingViews) {
    for (Storage storage : {Storage::memory, Storage::file})
        for (int32_t format : some_layouts) {
            const Image parent = random_image(storage, {20, 16}, format);
            const Image low(parent.call("ClipImage", 5, 4, 9, 8)), high(parent.call("ClipImage", 3, 2, 9, 8));
            check_scale(high, low, Object(), lanczos3, {9, 7}, "up and left");
            check_scale(low, high, Object(), lanczos3, {8, 8}, "down and right");
        }
}

TEST(Scale, ChannelViews) {
    const Image parent = random_image({9, 8}, 7);
    check_scale(Image(parent.call("BlueChannel")), Image(parent.call("RedChannel")), Object(), triangle, {5, 8},
                "red into blue");
    check_scale(Image(parent.call("RGBChannels")), Image(parent.call("AlphaChannel")), Object(), triangle, {9, 3},
                "alpha into colour");
    check_scale(random_image({9, 8}, 2), Image(parent.call("RGBChannels")), Object(), box, {9, 4}, "without alpha");
    // A clipped view of such a view has all its colours at the same byte.
    const Image same_byte(Image(parent.call("RGBChannels")).call("ClipImage", 2, 1, 5, 5));
    check_scale(same_byte, random_image({7, 7}, 1), Object(), lanczos3, {5, 4}, "one byte for three");
}

// Images of any layout over the same bytes.
class SharedBytes : public testing::Test {
protected:
    static constexpr int32_t row_size = 160, rows = 24;

    Image over(int32_t width, int32_t format) {
        return Image(Object::make("PictureKZB", block_at(bytes.data()), width, rows, format, row_size));
    }
    void SetUp() override { bytes = random_bytes(row_size * rows, 1); }
    Bytes bytes;
};

TEST_F(SharedBytes, AnIntermediateImageOverTheSource) {
    for (int32_t mode = 1; mode <= 7; ++mode)
        for (int32_t format : some_layouts)
            for (int32_t shift : {0, 1, 5}) {
                SetUp();
                const Image source(over(11, format).call("ClipImage", 1, 5, 10, 8));
                const Image temp(over(9, scaling_format).call("ClipImage", 0, shift, 9, 9));
                check_scale(random_image({9, 5}, format), source, temp, mode, {8, 5},
                            "shifted " + std::to_string(shift));
                if (HasFailure()) return;
            }
}

TEST_F(SharedBytes, AnIntermediateImageOverTheDestination) {
    for (int32_t mode = 1; mode <= 7; ++mode)
        for (int32_t format : some_layouts)
            for (int32_t shift : {0, 1, 5}) {
                SetUp();
                const Image image(over(11, format).call("ClipImage", 1, 5, 10, 8));
                const Image temp(over(9, scaling_format).call("ClipImage", 0, shift, 9, 9));
                check_scale(image, random_image({5, 9}, 2), temp, mode, {8, 7}, "shifted " + std::to_string(shift));
                if (HasFailure()) return;
            }
}

TEST_F(SharedBytes, PixelsThatWeighNothingAmongOthers) {
    for (int32_t format : some_layouts) {
        SetUp();
        const Image source(over(11, format).call("ClipImage", 1, 5, 9, 9));
        const Image temp(over(9, scaling_format).call("ClipImage", 0, 1, 9, 9));
        check_scale(random_image({9, 5}, format), source, temp, poly3, {3, 3}, "temporary over source");
        SetUp();
        check_scale(source, random_image({9, 9}, 2), temp, poly3, {3, 3}, "temporary over destination");
    }
}

TEST_F(SharedBytes, AllThreeImages) {
    for (int32_t format : some_layouts)
        for (int32_t to : some_layouts) {
            SetUp();
            check_scale(over(11, to), over(11, format), over(9, scaling_format), lanczos3, {8, 20}, "all three");
            if (HasFailure()) return;
        }
}

TEST_F(SharedBytes, RowsOfTheIntermediateImageThatOverlap) {
    for (int32_t format : some_layouts) {
        const Image temp(
            Object::make("PictureKZB", block_at(bytes.data()), 9, 24, scaling_format, static_cast<int32_t>(100)));
        check_scale(random_image({9, 12}, format), random_image({7, 20}, format), temp, lanczos3, {9, 12},
                    "rows overlap");
    }
}

TEST(Scale, AnIntermediateImageAtAnyAddress) {
    for (int32_t shift = 0; shift < 4; ++shift) {
        Bytes bytes = random_bytes(4000, 1);
        const Image temp(
            Object::make("PictureKZB", block_at(bytes.data() + shift), 9, 20, scaling_format, 9 * 16 + shift));
        for (int32_t format : {1, 11, 12})
            check_scale(random_image({9, 12}, format), random_image({13, 20}, format), temp, lanczos3, {9, 12},
                        "unaligned");
    }
}

} // namespace
} // namespace kzb::test
