// Pictures written to PNG and JPEG files, and what becomes of the file when that fails.

#include "picture_fixture.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace kzb_test;

namespace {

class ImageWritingTest : public PictureTest {
protected:
    std::string failure(const PictureOwner &picture, const std::string &name, kzb_status status,
                        const kzb_write_options *options = nullptr) {
        error = {};
        if (kzb_picture_write(picture.get(), name.c_str(), options, &error)) return "";
        EXPECT_EQ(error.status, status);
        return error.message;
    }

    void write(const PictureOwner &picture, const std::string &name, const kzb_write_options *options = nullptr) {
        EXPECT_EQ(failure(picture, path(name), KZB_OK, options), "");
    }

    PictureOwner read(const std::string &name) {
        error = {};
        PictureOwner picture(kzb_picture_read(path(name).c_str(), nullptr, &error));
        EXPECT_TRUE(picture) << error.message;
        return picture;
    }

    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto &entry : std::filesystem::directory_iterator(folder)) found.push_back(entry.path().filename());
        std::sort(found.begin(), found.end());
        return found;
    }

    PictureOwner random_picture(int32_t width, int32_t height, int32_t depth = 32) {
        PictureOwner picture = make_picture(width, height, depth);
        fill_randomly(*kzb_picture_world(picture.get()), random);
        return picture;
    }

    std::mt19937 random{1};
};

} // namespace

TEST_F(ImageWritingTest, APngHoldsThePixelsOfEveryDepthExactly) {
    for (const int32_t depth : {8, 16, 24, 32}) {
        SCOPED_TRACE(depth);
        const PictureOwner picture = random_picture(23, 9, depth);
        write(picture, "a.png");
        const PictureOwner again = read("a.png");
        EXPECT_EQ(pixels_of(*kzb_picture_world(again.get())), pixels_of(*kzb_picture_world(picture.get())));
        EXPECT_EQ(kzb_picture_mask(again.get()), nullptr);
    }
}

TEST_F(ImageWritingTest, APngHoldsTheMaskAsAlpha) {
    for (const int32_t depth : {8, 16, 24, 32}) {
        for (const auto &[width, height] : {std::pair{23, 9}, {5, 30}, {30, 5}, {1, 1}}) {
            SCOPED_TRACE(testing::Message() << depth << ", " << width << " x " << height);
            const PictureOwner picture = random_picture(23, 9), mask = random_picture(width, height, depth);
            kzb_picture_set_mask(picture.get(), mask.get());
            write(picture, "a.png");
            const PictureOwner again = read("a.png"), alpha(kzb_picture_mask(again.get()));
            ASSERT_TRUE(alpha);
            EXPECT_EQ(pixels_of(*kzb_picture_world(again.get())), pixels_of(*kzb_picture_world(picture.get())));
            for (int y = 0; y < 9; ++y) {
                for (int x = 0; x < 23; ++x) {
                    const bool inside = x < width && y < height;
                    const uint8_t level = inside ? gray_of(pixel_at(*kzb_picture_world(mask.get()), x, y)) : 255;
                    ASSERT_EQ(pixel_at(*kzb_picture_world(alpha.get()), x, y), (Colour{level, level, level}));
                }
            }
        }
    }
}

TEST_F(ImageWritingTest, AJpegLeavesTheMaskOut) {
    const PictureOwner picture = make_picture(64, 48), mask = make_picture(64, 48, 8);
    GWorld &world = *kzb_picture_world(picture.get());
    const auto colour_at = [](int x, int y) {
        return Colour{static_cast<uint8_t>(3 * x), static_cast<uint8_t>(4 * y), static_cast<uint8_t>(255 - 2 * x - y)};
    };
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) set_pixel(world, x, y, colour_at(x, y));
    }
    kzb_picture_set_mask(picture.get(), mask.get());
    const kzb_write_options best{100, 0};
    write(picture, "a.jpg", &best);
    const PictureOwner again = read("a.jpg");
    EXPECT_EQ(kzb_picture_mask(again.get()), nullptr);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) {
            const Colour pixel = pixel_at(*kzb_picture_world(again.get()), x, y);
            for (size_t c = 0; c < 3; ++c) ASSERT_NEAR(pixel[c], colour_at(x, y)[c], 8) << x << ", " << y;
        }
    }
}

TEST_F(ImageWritingTest, AJpegsQualityIs90UnlessGiven) {
    const PictureOwner picture = random_picture(64, 64);
    const auto size = [&](int quality) {
        const kzb_write_options options{quality, 0};
        write(picture, "a.jpg", &options);
        return file_bytes(path("a.jpg")).size();
    };
    EXPECT_LT(size(1), size(50));
    EXPECT_LT(size(50), size(90));
    EXPECT_LT(size(90), size(100));
    EXPECT_EQ(size(0), size(90));
    write(picture, "b.jpg");
    EXPECT_EQ(file_bytes(path("b.jpg")).size(), size(90));
    for (const int quality : {-1, 101}) {
        const kzb_write_options options{quality, 0};
        EXPECT_EQ(failure(picture, path("a.jpg"), KZB_ERROR_USAGE, &options),
                  "a file's quality is 1 to 100, not " + std::to_string(quality));
    }
}

TEST_F(ImageWritingTest, TheEndingTellsTheFormat) {
    const PictureOwner picture = random_picture(8, 8);
    for (const char *name : {"a.png", "b.PNG", "c.x.pNg"}) {
        write(picture, name);
        EXPECT_EQ(file_bytes(path(name))[1], 'P');
    }
    for (const char *name : {"d.jpg", "e.JPG", "f.jpeg", "g.JpEg"}) {
        write(picture, name);
        EXPECT_EQ(file_bytes(path(name))[1], 0xD8);
    }
    EXPECT_EQ(names().size(), 7u);
}

TEST_F(ImageWritingTest, OtherEndingsAreTheCallersMistake) {
    const PictureOwner picture = random_picture(8, 8);
    for (const char *name : {"a", "a.gif", "a.png.txt", "png", "a.", "a.jpe"}) {
        EXPECT_EQ(failure(picture, path(name), KZB_ERROR_USAGE),
                  path(name) +
                      ": the name must end in .png, .jpg, .webp, .tif, .pnm or .ppm, which tells the kind of file to "
                      "write");
    }
    EXPECT_TRUE(names().empty());
}

TEST_F(ImageWritingTest, APictureAndAPathAreNeeded) {
    error = {};
    EXPECT_FALSE(kzb_picture_write(nullptr, path("a.png").c_str(), nullptr, &error));
    EXPECT_EQ(error.status, KZB_ERROR_USAGE);
    const PictureOwner picture = random_picture(8, 8);
    EXPECT_FALSE(kzb_picture_write(picture.get(), nullptr, nullptr, &error));
    EXPECT_EQ(error.status, KZB_ERROR_USAGE);
    EXPECT_FALSE(kzb_picture_write(picture.get(), path("a").c_str(), nullptr, nullptr));
    EXPECT_TRUE(names().empty());
}

TEST_F(ImageWritingTest, AFileIsReplacedAndHasTheUsualMode) {
    const PictureOwner picture = random_picture(8, 8);
    write_bytes(path("a.png"), {1, 2, 3});
    const mode_t before = umask(027);
    write(picture, "a.png");
    umask(before);
    EXPECT_EQ(file_bytes(path("a.png"))[1], 'P');
    EXPECT_EQ(names(), std::vector<std::string>{"a.png"});
    struct stat status;
    ASSERT_EQ(stat(path("a.png").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST_F(ImageWritingTest, TheLongestNameIsWritten) {
    const std::string name = std::string(251, 'n') + ".png";
    write(random_picture(8, 8), name);
    EXPECT_EQ(names(), std::vector<std::string>{name});
}

TEST_F(ImageWritingTest, ARelativeNameIsWrittenToTheCurrentFolder) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    EXPECT_EQ(failure(random_picture(8, 8), "a.png", KZB_OK), "");
    std::filesystem::current_path(before);
    EXPECT_EQ(names(), std::vector<std::string>{"a.png"});
}

TEST_F(ImageWritingTest, AMissingFolderIsTold) {
    EXPECT_EQ(failure(random_picture(8, 8), path("no/a.png"), KZB_ERROR_OUTPUT),
              path("no/a.png") + ": cannot be written: its folder does not exist; make the folder first");
}

TEST_F(ImageWritingTest, AFolderIsNotReplaced) {
    std::filesystem::create_directory(folder / "a.png");
    EXPECT_EQ(failure(random_picture(8, 8), path("a.png"), KZB_ERROR_OUTPUT),
              path("a.png") + ": cannot be written: it is a folder; name a file in it");
    EXPECT_EQ(names(), std::vector<std::string>{"a.png"});
}

TEST_F(ImageWritingTest, AFullDiskLeavesTheOldFileAndNothingElse) {
    const PictureOwner pictures[] = {random_picture(300, 300), random_picture(8, 8)};
    rlimit limit;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const auto expect_failure = [&](const char *name, const PictureOwner &picture, rlim_t most_bytes) {
        write_bytes(path(name), {1, 2, 3});
        const rlimit small{most_bytes, limit.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        const std::string line = failure(picture, path(name), KZB_ERROR_OUTPUT);
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        EXPECT_EQ(line, path(name) + ": cannot be written: File too large") << most_bytes;
        EXPECT_EQ(file_bytes(path(name)), (std::vector<uint8_t>{1, 2, 3}));
    };
    for (const char *name : {"a.png", "a.jpg"}) {
        for (const PictureOwner &picture : pictures) {
            for (const rlim_t most_bytes : {0, 10}) expect_failure(name, picture, most_bytes);
        }
        expect_failure(name, pictures[0], 20000);
    }
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(names(), (std::vector<std::string>{"a.jpg", "a.png"}));
}

TEST_F(ImageWritingTest, APictureTooWideForJpegIsWrittenAsPng) {
    const PictureOwner picture = random_picture(65501, 2);
    EXPECT_EQ(failure(picture, path("a.jpg"), KZB_ERROR_OUTPUT),
              path("a.jpg") + ": a JPEG file holds at most 65500 pixels each way; write a PNG file instead");
    EXPECT_TRUE(names().empty());
    write(picture, "a.png");
    const PictureOwner again = read("a.png");
    EXPECT_EQ(pixels_of(*kzb_picture_world(again.get())), pixels_of(*kzb_picture_world(picture.get())));
}

TEST_F(ImageWritingTest, VeryWidePicturesAreWrittenAsPng) {
    const PictureOwner picture = random_picture(1000001, 1, 8);
    write(picture, "a.png");
    const PictureOwner again = read("a.png");
    EXPECT_EQ(pixels_of(*kzb_picture_world(again.get())), pixels_of(*kzb_picture_world(picture.get())));
}
