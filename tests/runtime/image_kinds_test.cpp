// Every kind of image file, row by row: what is written comes back, and what is damaged is told.

#include "image_samples.h"
#include "picture_fixture.h"

#include <algorithm>
#include <numeric>
#include <tiffio.h>
#include <unistd.h>

using namespace kzb_test;

namespace {

struct Rows {
    int32_t width = 0, height = 0, channels = 0, orientation = 1;
    std::vector<uint8_t> bytes, profile;
    std::string format;
};

class ImageKindsTest : public PictureTest {
protected:
    Rows random_rows(int32_t width, int32_t height, int32_t channels) {
        Rows rows{width, height, channels, 1, {}, {}, ""};
        rows.bytes.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * static_cast<size_t>(channels));
        for (uint8_t &byte : rows.bytes) byte = static_cast<uint8_t>(random());
        return rows;
    }

    // Empty when the file was written, else why not.
    std::string write(const Rows &rows, const std::string &name, const kzb_write_options *options = nullptr) {
        const kzb_image_info info = {
            rows.width,          rows.height, rows.channels, 1, rows.profile.empty() ? nullptr : rows.profile.data(),
            rows.profile.size(), nullptr};
        error = {};
        kzb_image_writer *writer = kzb_image_create(path(name).c_str(), &info, options, &error);
        if (!writer) return error.message;
        const size_t row_bytes = rows.bytes.size() / static_cast<size_t>(rows.height);
        for (int32_t y = 0; y < rows.height; ++y) {
            if (kzb_image_write_row(writer, rows.bytes.data() + static_cast<size_t>(y) * row_bytes, &error)) continue;
            kzb_image_discard(writer);
            return error.message;
        }
        return kzb_image_finish(writer, &error) ? "" : error.message;
    }

    // Empty when the file was read, else why not.
    std::string read(const std::string &name, Rows &rows, const kzb_read_options *options = nullptr) {
        kzb_image_info info = {};
        error = {};
        kzb_image_reader *reader = kzb_image_open(name.c_str(), options, &info, &error);
        if (!reader) return error.message;
        rows = {info.width, info.height, info.channels, info.orientation, {}, {}, info.format};
        const auto *profile = static_cast<const uint8_t *>(info.profile);
        if (profile) rows.profile.assign(profile, profile + info.profile_size);
        const size_t row_bytes = static_cast<size_t>(info.width) * static_cast<size_t>(info.channels);
        rows.bytes.resize(row_bytes * static_cast<size_t>(info.height));
        for (int32_t y = 0; y < info.height; ++y) {
            if (kzb_image_read_row(reader, rows.bytes.data() + static_cast<size_t>(y) * row_bytes, &error)) continue;
            kzb_image_close(reader);
            return error.message;
        }
        kzb_image_close(reader);
        return "";
    }

    Rows read_well(const std::string &name, const kzb_read_options *options = nullptr) {
        Rows rows;
        EXPECT_EQ(read(path(name), rows, options), "");
        return rows;
    }
    Rows read_text(const std::string &text) {
        write_bytes(path("text"), {text.begin(), text.end()});
        return read_well("text");
    }

    std::mt19937 random{1};
};

// Gray rows as they come back: red, green and blue.
Rows coloured(const Rows &rows) {
    if (rows.channels > 2) return rows;
    Rows result{rows.width, rows.height, rows.channels + 2, 1, {}, {}, ""};
    const auto step = static_cast<size_t>(rows.channels);
    for (size_t i = 0; i < rows.bytes.size(); i += step) {
        for (int c = 0; c < 3; ++c) result.bytes.push_back(rows.bytes[i]);
        if (step == 2) result.bytes.push_back(rows.bytes[i + 1]);
    }
    return result;
}

// A colour profile whose header makes sense; `space` is "RGB " or "GRAY".
std::vector<uint8_t> profile_of(const char *space, size_t size) {
    std::vector<uint8_t> profile(size);
    for (size_t i = 132; i < size; ++i) profile[i] = static_cast<uint8_t>(i * 7);
    const auto put = [&](size_t at, const std::string &bytes) { std::copy(bytes.begin(), bytes.end(), &profile[at]); };
    for (size_t i = 0; i < 4; ++i) profile[i] = static_cast<uint8_t>(size >> (24 - 8 * i));
    profile[8] = 4;
    put(12, "mntr");
    put(16, space);
    put(20, "XYZ ");
    put(36, "acsp");
    put(68, std::string("\x00\x00\xF6\xD6\x00\x01\x00\x00\x00\x00\xD3\x2D", 12));
    return profile; // no tags
}

} // namespace

TEST_F(ImageKindsTest, EveryKindGivesBackWhatWasWritten) {
    const kzb_write_options exact{0, 1};
    for (const char *name : {"a.png", "a.tif", "a.TIFF", "a.webp", "a.pnm", "a.pam"}) {
        for (int32_t channels = 1; channels <= 4; ++channels) {
            for (const auto &[width, height] : {std::pair{1, 1}, {7, 5}, {300, 211}}) {
                SCOPED_TRACE(testing::Message() << name << ", " << channels << ", " << width << " x " << height);
                Rows rows = random_rows(width, height, channels);
                // A WebP file without a transparent pixel says that it has no alpha.
                if (channels % 2 == 0) rows.bytes[static_cast<size_t>(channels) - 1] = 9;
                ASSERT_EQ(write(rows, name, &exact), "");
                const Rows again = read_well(name), expected = coloured(rows);
                EXPECT_EQ(again.width, width);
                EXPECT_EQ(again.height, height);
                EXPECT_EQ(again.channels, expected.channels);
                EXPECT_EQ(again.orientation, 1);
                EXPECT_TRUE(again.bytes == expected.bytes);
            }
        }
    }
}

TEST_F(ImageKindsTest, LossyKindsComeNearAndNearerWithQuality) {
    Rows rows = random_rows(64, 48, 3);
    for (size_t i = 0; i < rows.bytes.size(); ++i) rows.bytes[i] = static_cast<uint8_t>(i / 64 + i % 3 * 40);
    const auto far = [&](const char *name, int quality) {
        const kzb_write_options options{quality, 0};
        EXPECT_EQ(write(rows, name, &options), "");
        const Rows again = read_well(name);
        return std::transform_reduce(again.bytes.begin(), again.bytes.end(), rows.bytes.begin(), 0, std::plus<>(),
                                     [](int a, int b) { return std::abs(a - b); });
    };
    for (const char *name : {"a.jpg", "a.webp"}) {
        const int poor = far(name, 5), good = far(name, 95), usual = far(name, 0);
        EXPECT_LT(good, poor);
        EXPECT_EQ(usual, far(name, 90));
        EXPECT_LT(static_cast<size_t>(good), rows.bytes.size() * 3);
    }
}

TEST_F(ImageKindsTest, KindsWithoutAlphaSaySo) {
    for (const char *name : {"a.jpg", "a.jpeg", "a.ppm", "jpg:-", "ppm:-"}) {
        kzb_image_kind kind = {};
        ASSERT_TRUE(kzb_image_kind_of(name, &kind, nullptr));
        EXPECT_FALSE(kind.holds_alpha) << name;
    }
    for (const char *name : {"a.png", "a.webp", "a.tif", "a.tiff", "a.pnm", "a.pam", "-", "png:-", "TIFF:-"}) {
        kzb_image_kind kind = {};
        ASSERT_TRUE(kzb_image_kind_of(name, &kind, nullptr));
        EXPECT_TRUE(kind.holds_alpha) << name;
    }
    EXPECT_EQ(write(random_rows(3, 3, 4), "a.jpg"), path("a.jpg") + ": a JPEG file holds no alpha");
    for (const char *name : {"gif:-", ":-", "a.gif", "", "a.d/png", "a.png/b"}) {
        error = {};
        EXPECT_FALSE(kzb_image_kind_of(name, nullptr, &error)) << name;
        EXPECT_EQ(error.status, KZB_ERROR_USAGE);
    }
    EXPECT_FALSE(std::filesystem::exists(path("a.jpg")));
}

TEST_F(ImageKindsTest, AColourProfileTravels) {
    for (const char *name : {"a.png", "a.jpg", "a.webp", "a.tif"}) {
        for (const size_t size : {700, 70004}) {
            SCOPED_TRACE(testing::Message() << name << ", " << size);
            Rows rows = random_rows(9, 7, 3);
            rows.profile = profile_of("RGB ", size);
            ASSERT_EQ(write(rows, name), "");
            EXPECT_TRUE(read_well(name).profile == rows.profile);
            rows.profile.clear();
            ASSERT_EQ(write(rows, name), "");
            EXPECT_TRUE(read_well(name).profile.empty());
        }
    }
    Rows gray = random_rows(9, 7, 1);
    gray.profile = profile_of("GRAY", 700);
    for (const char *name : {"a.png", "a.jpg", "a.tif"}) {
        ASSERT_EQ(write(gray, name), "");
        EXPECT_TRUE(read_well(name).profile == gray.profile) << name;
    }
}

TEST_F(ImageKindsTest, AJpegsOrientationIsTold) {
    const auto plain = jpeg_bytes(smooth_jpeg(16, 8, JCS_RGB, JCS_YCbCr));
    for (int orientation = 0; orientation <= 9; ++orientation) {
        for (const bool big : {false, true}) {
            std::string exif("Exif\0\0", 6);
            exif += big ? std::string("MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0", 19)
                        : std::string("II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0", 18);
            exif.push_back(static_cast<char>(orientation));
            exif.append(big ? 6 : 7, '\0');
            std::vector<uint8_t> marker = {0xFF, 0xE1, 0, static_cast<uint8_t>(exif.size() + 2)};
            marker.insert(marker.end(), exif.begin(), exif.end());
            auto bytes = plain;
            bytes.insert(bytes.begin() + 2, marker.begin(), marker.end());
            write_bytes(path("a.jpg"), bytes);
            const int expected = orientation >= 1 && orientation <= 8 ? orientation : 1;
            EXPECT_EQ(read_well("a.jpg").orientation, expected) << orientation << big;
        }
    }
}

TEST_F(ImageKindsTest, APictureIsReadUpright) {
    // Pixel (x, y) of the picture that stands upright.
    const auto level = [](int x, int y) { return static_cast<uint8_t>(20 * x + 3 * y); };
    const int width = 6, height = 4;
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const bool side = orientation > 4;
        const int stored_width = side ? height : width, stored_height = side ? width : height;
        TIFF *file = TIFFOpen(path("a.tif").c_str(), "w");
        ASSERT_NE(file, nullptr);
        TIFFSetField(file, TIFFTAG_IMAGEWIDTH, stored_width);
        TIFFSetField(file, TIFFTAG_IMAGELENGTH, stored_height);
        TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(file, TIFFTAG_ORIENTATION, orientation);
        for (int row = 0; row < stored_height; ++row) {
            uint8_t bytes[16];
            for (int column = 0; column < stored_width; ++column) {
                // What the stored row 0 and column 0 are: top, bottom, left or right.
                const bool from_right =
                    side ? orientation == 6 || orientation == 7 : orientation == 2 || orientation == 3;
                const bool from_bottom =
                    side ? orientation == 7 || orientation == 8 : orientation == 3 || orientation == 4;
                const int x = side ? row : column, y = side ? column : row;
                bytes[column] = level(from_right ? width - 1 - x : x, from_bottom ? height - 1 - y : y);
            }
            TIFFWriteScanline(file, bytes, static_cast<uint32_t>(row), 0);
        }
        TIFFClose(file);
        const PictureOwner picture(kzb_picture_read(path("a.tif").c_str(), nullptr, &error));
        ASSERT_TRUE(picture) << error.message;
        const GWorld &world = *kzb_picture_world(picture.get());
        ASSERT_EQ(world.width, width) << orientation;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(pixel_at(world, x, y)[0], level(x, y)) << orientation << ": " << x << ", " << y;
    }
}

TEST_F(ImageKindsTest, AnymapsPlainAndRawAreRead) {
    EXPECT_EQ(read_text("P1\n# bits\n3 2\n101\n0 1 0\n").bytes,
              (std::vector<uint8_t>{0, 0, 0, 255, 255, 255, 0, 0, 0, 255, 255, 255, 0, 0, 0, 255, 255, 255}));
    EXPECT_EQ(read_text("P2 2 1 15 15 6").bytes, (std::vector<uint8_t>{255, 255, 255, 102, 102, 102}));
    EXPECT_EQ(read_text("P3 1 1 255 1 2 3").bytes, (std::vector<uint8_t>{1, 2, 3}));
    EXPECT_EQ(read_text(std::string("P4\n9 1\n\x80\x80", 9)).bytes[0], 0);
    EXPECT_EQ(read_text(std::string("P4\n9 1\n\x80\x80", 9)).bytes[24], 0);
    EXPECT_EQ(read_text(std::string("P4\n9 1\n\x80\x80", 9)).bytes[3], 255);
    EXPECT_EQ(read_text(std::string("P5 2 1 255 \x07\xFF", 13)).bytes, (std::vector<uint8_t>{7, 7, 7, 255, 255, 255}));
    EXPECT_EQ(read_text(std::string("P5\n#a\n1 #b\n1\n65535\n\x80\x00", 21)).bytes,
              (std::vector<uint8_t>{128, 128, 128}));
    EXPECT_EQ(read_text("P6\n1 1\n255\nabc").bytes, (std::vector<uint8_t>{'a', 'b', 'c'}));
    const Rows pam = read_text("P7\n# a\nWIDTH 1\nHEIGHT 1\nDEPTH 2\nMAXVAL 255\nTUPLTYPE GRAYSCALE_ALPHA\nENDHDR\nab");
    EXPECT_EQ(pam.channels, 4);
    EXPECT_EQ(pam.bytes, (std::vector<uint8_t>{'a', 'a', 'a', 'b'}));
}

TEST_F(ImageKindsTest, DamagedAnymapsAreTold) {
    const auto reason = [&](const std::string &text) {
        write_bytes(path("text"), {text.begin(), text.end()});
        Rows rows;
        return read(path("text"), rows);
    };
    for (const char *text :
         {"P2 2 1 15 15 16 ", "P1 2 1 1 2     ", "P5 2 x 255     ", "P6 1 1 0 abcd", "P6 1 1 70000 abc",
          "P7\nWIDTH 1\nHIGHT 1\nENDHDR\nabc", "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 5\nMAXVAL 9\nENDHDR\na"})
        EXPECT_NE(reason(text).find("the PNM file is damaged"), std::string::npos) << text << reason(text);
    EXPECT_NE(reason("P5 2 2 255 abc").find("ends too early"), std::string::npos) << reason("P5 2 2 255 abc");
    EXPECT_NE(reason("P3 1 1 255 1 2     ").find("ends too early"), std::string::npos);
    EXPECT_NE(reason("P6 99999 99999 255 ").find("too large"), std::string::npos);
    EXPECT_NE(reason("P6 9999 9999 255 ").find("too short for the size that it states"), std::string::npos);
    EXPECT_NE(reason("P6 0 1 255 abc").find("too large for this program"), std::string::npos)
        << reason("P6 0 1 255 abc");
}

TEST_F(ImageKindsTest, FilesCutAnywhereAreNotRead) {
    const kzb_write_options exact{0, 1};
    for (const char *name : {"a.tif", "a.webp", "a.pam"}) {
        ASSERT_EQ(write(random_rows(19, 11, 4), name, &exact), "");
        const auto whole = file_bytes(path(name));
        for (size_t count = 0; count < whole.size(); ++count) {
            write_bytes(path("cut"), {whole.begin(), whole.begin() + static_cast<ptrdiff_t>(count)});
            Rows rows;
            const std::string reason = read(path("cut"), rows);
            ASSERT_TRUE(reason.starts_with(path("cut") + ": ")) << name << count << reason;
        }
    }
}

TEST_F(ImageKindsTest, FlippedBitsDoNoHarm) {
    const kzb_write_options exact{0, 1};
    for (const char *name : {"a.tif", "a.webp", "a.pam", "b.webp"}) {
        ASSERT_EQ(write(random_rows(23, 17, 4), name, name[0] == 'a' ? &exact : nullptr), "");
        const auto whole = file_bytes(path(name));
        for (int round = 0; round < 600; ++round) {
            auto bytes = whole;
            const size_t bit = random() % (std::min<size_t>(whole.size(), round % 2 ? 400 : whole.size()) * 8);
            bytes[bit / 8] ^= static_cast<uint8_t>(1 << bit % 8);
            write_bytes(path("flipped"), bytes);
            const kzb_read_options limit{100000, nullptr};
            Rows rows;
            const std::string reason = read(path("flipped"), rows, &limit);
            ASSERT_EQ(reason.find('\n'), reason.npos);
        }
    }
}

TEST_F(ImageKindsTest, RowsAreCountedAndNothingIsLeftOfAFileGivenUp) {
    const Rows rows = random_rows(4, 3, 3);
    ASSERT_EQ(write(rows, "a.png"), "");
    kzb_image_info info = {};
    kzb_image_reader *reader = kzb_image_open(path("a.png").c_str(), nullptr, &info, &error);
    std::vector<uint8_t> row(12);
    for (int y = 0; y < 3; ++y) EXPECT_TRUE(kzb_image_read_row(reader, row.data(), &error));
    EXPECT_FALSE(kzb_image_read_row(reader, row.data(), &error));
    EXPECT_EQ(error.status, KZB_ERROR_USAGE);
    kzb_image_close(reader);

    info = {4, 3, 3, 1, nullptr, 0, nullptr};
    kzb_image_writer *writer = kzb_image_create(path("b.png").c_str(), &info, nullptr, &error);
    EXPECT_TRUE(kzb_image_write_row(writer, row.data(), &error));
    EXPECT_FALSE(kzb_image_finish(writer, &error));
    EXPECT_EQ(std::string(error.message), "2 rows have not been written");
    writer = kzb_image_create(path("b.png").c_str(), &info, nullptr, &error);
    kzb_image_discard(writer);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
}

TEST_F(ImageKindsTest, UnfinishedFilesCanBeRemovedAtOnce) {
    const kzb_image_info info = {4, 3, 3, 1, nullptr, 0, nullptr};
    kzb_image_writer *a = kzb_image_create(path("a.png").c_str(), &info, nullptr, &error);
    kzb_image_writer *b = kzb_image_create(path("b.tif").c_str(), &info, nullptr, &error);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 2);
    kzb_remove_unfinished_files();
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 0);
    kzb_image_discard(a);
    kzb_image_discard(b);
}

TEST_F(ImageKindsTest, WhatIsReachedThroughALinkIsReplacedNotTheLink) {
    std::filesystem::create_directory(folder / "far");
    write_bytes(path("far/a.png"), {1, 2, 3});
    std::filesystem::create_symlink("far/a.png", folder / "link.png");
    ASSERT_EQ(write(random_rows(4, 3, 3), "link.png"), "");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.png"));
    EXPECT_EQ(file_bytes(path("far/a.png"))[1], 'P');
}

TEST_F(ImageKindsTest, HeldPixelsMayLieInAFolder) {
    const auto bytes = png_bytes(random_png(40, 30, PNG_COLOR_TYPE_RGB, 8, true, false, random));
    write_bytes(path("a.png"), bytes);
    const Rows rows = random_rows(40, 30, 4);
    const kzb_write_options exact{0, 1};
    ASSERT_EQ(write(rows, "a.webp", &exact), "");
    std::filesystem::create_directory(folder / "scratch");
    const std::string scratch = path("scratch"), missing = path("missing");
    const kzb_read_options there{0, scratch.c_str()}, nowhere{0, missing.c_str()};
    for (const char *name : {"a.png", "a.webp"}) {
        EXPECT_TRUE(read_well(name, &there).bytes == read_well(name).bytes);
        Rows ignored;
        EXPECT_NE(read(path(name), ignored, &nowhere).find(missing), std::string::npos);
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder / "scratch"));
}
