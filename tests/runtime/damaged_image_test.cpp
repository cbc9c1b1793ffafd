// Files that are no pictures, or no longer.

#include "image_samples.h"
#include "picture_fixture.h"

#include <algorithm>
#include <cstring>

using namespace kzb_test;

namespace {

class DamagedImageTest : public PictureTest {
protected:
    void SetUp() override {
        PictureTest::SetUp();
        testing::internal::CaptureStderr();
    }

    void TearDown() override {
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        PictureTest::TearDown();
    }

    // Why the file cannot be read; empty when it can. Every failure is one line that begins with the file's name.
    std::string failure(const std::vector<uint8_t> &bytes, kzb_status status = KZB_ERROR_INPUT) {
        write_bytes(path("picture"), bytes);
        return failure_of(path("picture"), status);
    }

    std::string failure_of(const std::string &name, kzb_status status = KZB_ERROR_INPUT) {
        error = {};
        const PictureOwner picture(kzb_picture_read(name.c_str(), nullptr, &error));
        if (picture) return "";
        EXPECT_EQ(error.status, status);
        const std::string line = error.message;
        EXPECT_EQ(line.rfind(name + ": ", 0), 0u) << line;
        EXPECT_EQ(line.find('\n'), line.npos) << line;
        return line.substr(std::min(line.size(), name.size() + 2));
    }

    std::mt19937 random{1};
};

bool holds(const std::string &text, const char *part) {
    return text.find(part) != text.npos;
}

} // namespace

TEST_F(DamagedImageTest, WhatIsNoPictureFileIsTold) {
    EXPECT_EQ(failure_of(path("missing")), "cannot be opened: No such file or directory");
    EXPECT_EQ(failure_of(path("")), "is a folder, not a picture file");
    EXPECT_EQ(failure({}), "the file is empty");
    const std::string other = "is no PNG, JPEG, WebP, TIFF or PNM file; convert it to one of these first";
    EXPECT_EQ(failure({'G', 'I', 'F', '8', '9', 'a', 1, 0, 1, 0, 0}), other);
    EXPECT_EQ(failure({'x'}), other);
    EXPECT_EQ(failure({0x89, 'P', 'N', 'G', '\n', '\n', 0x1A, '\n', 0}), other);
    error = {};
    EXPECT_EQ(kzb_picture_read(nullptr, nullptr, &error), nullptr);
    EXPECT_EQ(error.status, KZB_ERROR_USAGE);
    EXPECT_EQ(kzb_picture_read(path("missing").c_str(), nullptr, nullptr), nullptr);
}

TEST_F(DamagedImageTest, APngCutAnywhereEndsTooEarly) {
    for (const bool interlaced : {false, true}) {
        const auto whole = png_bytes(random_png(19, 11, PNG_COLOR_TYPE_RGBA, 8, interlaced, false, random));
        ASSERT_EQ(failure(whole), "");
        for (size_t count = 1; count < whole.size(); ++count) {
            const std::string reason = failure({whole.begin(), whole.begin() + static_cast<ptrdiff_t>(count)});
            ASSERT_EQ(reason, "the PNG file ends too early, a part of it is missing; copy it again") << count;
        }
    }
}

TEST_F(DamagedImageTest, AJpegCutAnywhereEndsTooEarly) {
    for (const bool progressive : {false, true}) {
        JpegSample sample = smooth_jpeg(33, 27, JCS_RGB, JCS_YCbCr);
        sample.progressive = progressive;
        const auto whole = jpeg_bytes(sample);
        ASSERT_EQ(failure(whole), "");
        for (size_t count = 1; count < whole.size(); ++count) {
            const std::string reason = failure({whole.begin(), whole.begin() + static_cast<ptrdiff_t>(count)});
            ASSERT_EQ(reason, "the JPEG file ends too early, a part of it is missing; copy it again") << count;
        }
    }
}

TEST_F(DamagedImageTest, EveryFlippedBitOfAPngIsFound) {
    const auto whole = png_bytes(random_png(9, 7, PNG_COLOR_TYPE_PALETTE, 4, false, true, random));
    for (size_t bit = 0; bit < whole.size() * 8; ++bit) {
        auto bytes = whole;
        bytes[bit / 8] ^= static_cast<uint8_t>(1 << bit % 8);
        ASSERT_NE(failure(bytes), "") << bit;
    }
}

TEST_F(DamagedImageTest, FlippedBitsOfAJpegDoNoHarm) {
    JpegSample sample = smooth_jpeg(64, 48, JCS_RGB, JCS_YCbCr);
    int found = 0;
    for (const bool progressive : {false, true}) {
        sample.progressive = progressive;
        sample.restart_rows = progressive ? 0 : 1;
        const auto whole = jpeg_bytes(sample);
        for (int round = 0; round < 1000; ++round) {
            auto bytes = whole;
            const size_t bit = random() % (whole.size() * 8);
            bytes[bit / 8] ^= static_cast<uint8_t>(1 << bit % 8);
            write_bytes(path("picture"), bytes);
            const kzb_read_options limit{1000000, nullptr}; // a flipped size may be large
            error = {};
            const PictureOwner picture(kzb_picture_read(path("picture").c_str(), &limit, &error));
            if (picture) continue;
            ++found;
            ASSERT_TRUE(error.status == KZB_ERROR_INPUT) << error.message;
            ASSERT_FALSE(holds(error.message, "\n"));
        }
    }
    EXPECT_GT(found, 400);
}

TEST_F(DamagedImageTest, AStretchMissingFromAJpegIsFound) {
    JpegSample sample = smooth_jpeg(200, 150, JCS_RGB, JCS_YCbCr);
    for (const int restart_rows : {0, 1}) {
        sample.restart_rows = restart_rows;
        auto bytes = jpeg_bytes(sample);
        const auto quarter = static_cast<ptrdiff_t>(bytes.size() / 4);
        bytes.erase(bytes.begin() + quarter, bytes.begin() + 2 * quarter);
        EXPECT_TRUE(holds(failure(bytes), "the JPEG file is damaged")) << restart_rows;
    }
}

TEST_F(DamagedImageTest, PaddingBeforeTheEndOfAJpegIsNoDamage) {
    const auto whole = jpeg_bytes(smooth_jpeg(40, 30, JCS_RGB, JCS_YCbCr));
    const auto padded = [&](size_t count) {
        auto bytes = whole;
        bytes.insert(bytes.end() - 2, count, uint8_t{0});
        return failure(bytes);
    };
    EXPECT_EQ(padded(24), "");
    EXPECT_TRUE(holds(padded(1000), "the JPEG file is damaged"));
}

TEST_F(DamagedImageTest, StrayBytesBeforeARestartOfAJpegAreFound) {
    JpegSample sample = smooth_jpeg(40, 30, JCS_RGB, JCS_YCbCr);
    sample.restart_rows = 1;
    auto bytes = jpeg_bytes(sample);
    const uint8_t restart[] = {0xFF, 0xD0};
    bytes.insert(std::search(bytes.begin(), bytes.end(), restart, restart + 2), 10, uint8_t{0});
    EXPECT_TRUE(holds(failure(bytes), "the JPEG file is damaged"));
}

TEST_F(DamagedImageTest, HugeSizesInAPngHeaderAreRefused) {
    auto bytes = png_bytes(random_png(4, 4, PNG_COLOR_TYPE_RGB, 8, false, false, random));
    const auto reason = [&](uint32_t width, uint32_t height) {
        set_png_size(bytes, width, height);
        return failure(bytes);
    };
    EXPECT_EQ(reason(4, 4), "");
    EXPECT_EQ(reason(100000, 100000),
              "the picture is too large for this program: 100000 x 100000 pixels; make it smaller");
    for (const auto &[width, height] : {std::pair{0x7FFFFFFFu, 0x7FFFFFFFu}, {0x7FFFFFFFu, 1u}, {0x20000000u, 1u}}) {
        EXPECT_TRUE(holds(reason(width, height), "too large for this program")) << width;
    }
    EXPECT_EQ(reason(20000, 20000),
              "the PNG file is damaged: too short for the size that it states, 20000 x 20000 pixels");
    EXPECT_TRUE(holds(reason(0, 4), "the PNG file is damaged"));
    EXPECT_TRUE(holds(reason(4, 0x80000000), "the PNG file is damaged"));
}

TEST_F(DamagedImageTest, HugeSizesInAJpegHeaderAreRefused) {
    auto bytes = jpeg_bytes(smooth_jpeg(16, 16, JCS_RGB, JCS_YCbCr));
    set_jpeg_size(bytes, 65500, 65500);
    EXPECT_EQ(failure(bytes), "the picture is too large for this program: 65500 x 65500 pixels; make it smaller");
    set_jpeg_size(bytes, 65535, 1);
    EXPECT_TRUE(holds(failure(bytes), "the JPEG file is damaged or of a kind that cannot be read"));
    set_jpeg_size(bytes, 2000, 2000);
    EXPECT_NE(failure(bytes), "");
    set_jpeg_size(bytes, 0, 16);
    EXPECT_NE(failure(bytes), "");
}

TEST_F(DamagedImageTest, AJpegOfCountlessScansIsRefused) {
    // Sound as such: each coefficient by itself, bit after bit.
    const auto with_coefficients = [](int count) {
        JpegSample sample = smooth_jpeg(16, 16, JCS_GRAYSCALE, JCS_GRAYSCALE);
        sample.scans.push_back({1, {0}, 0, 0, 0, 0});
        for (int k = 1; k <= count; ++k) {
            sample.scans.push_back({1, {0}, k, k, 0, 10});
            for (int bit = 9; bit >= 0; --bit) sample.scans.push_back({1, {0}, k, k, bit + 1, bit});
        }
        return jpeg_bytes(sample);
    };
    EXPECT_EQ(failure(with_coefficients(45)), "");
    EXPECT_TRUE(holds(failure(with_coefficients(46)), "the JPEG file is damaged"));
}

TEST_F(DamagedImageTest, NamesWithControlCharactersStayOnOneLine) {
    error = {};
    EXPECT_EQ(kzb_picture_read(path("a\nb\x1b").c_str(), nullptr, &error), nullptr);
    EXPECT_EQ(std::string(error.message), path("a b ") + ": cannot be opened: No such file or directory");
}
