// The ways in which TIFF files store pixels.

#include "picture_fixture.h"

#include <array>
#include <functional>
#include <tiffio.h>
#include <unistd.h>

using namespace kzb_test;

namespace {

using Pixel = std::array<uint8_t, 4>;
constexpr uint32_t width = 37, height = 29;

// Colours that come out of every way exactly: red, green, blue, alpha.
Pixel colour_at(uint32_t x, uint32_t y) {
    return {static_cast<uint8_t>(6 * x), static_cast<uint8_t>(8 * y), static_cast<uint8_t>(x + y),
            static_cast<uint8_t>(255 - 3 * x)};
}
uint8_t gray_at(uint32_t x, uint32_t y) {
    return static_cast<uint8_t>(5 * x + 2 * y);
}

class TiffKindsTest : public PictureTest {
protected:
    struct Kind {
        uint16_t bits, samples, photometric, planes = PLANARCONFIG_CONTIG, extra = 0xFFFF;
        bool tiled = false;
        uint16_t compression = COMPRESSION_ADOBE_DEFLATE;
        const char *mode = "w";
    };

    // Writes a file whose sample `s` of pixel (x, y) is what `sample` gives.
    void write(const Kind &kind, const std::function<unsigned(uint32_t x, uint32_t y, unsigned s)> &sample) {
        TIFF *file = TIFFOpen(path("a.tif").c_str(), kind.mode);
        ASSERT_NE(file, nullptr);
        TIFFSetField(file, TIFFTAG_IMAGEWIDTH, width);
        TIFFSetField(file, TIFFTAG_IMAGELENGTH, height);
        TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, kind.bits);
        TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, kind.samples);
        TIFFSetField(file, TIFFTAG_PHOTOMETRIC, kind.photometric);
        TIFFSetField(file, TIFFTAG_PLANARCONFIG, kind.planes);
        TIFFSetField(file, TIFFTAG_COMPRESSION, kind.compression);
        if (kind.extra != 0xFFFF) TIFFSetField(file, TIFFTAG_EXTRASAMPLES, 1, &kind.extra);
        if (kind.photometric == PHOTOMETRIC_PALETTE) {
            std::vector<uint16_t> map(3 * 256);
            for (size_t i = 0; i < 256; ++i) {
                map[i] = static_cast<uint16_t>(i * 257);
                map[256 + i] = static_cast<uint16_t>((255 - i) * 257);
            }
            TIFFSetField(file, TIFFTAG_COLORMAP, &map[0], &map[256], &map[512]);
        }
        const bool separate = kind.planes == PLANARCONFIG_SEPARATE;
        const unsigned planes = separate ? kind.samples : 1, together = separate ? 1 : kind.samples;
        const uint32_t block = kind.tiled ? 16 : 5;
        if (kind.tiled) {
            TIFFSetField(file, TIFFTAG_TILEWIDTH, block);
            TIFFSetField(file, TIFFTAG_TILELENGTH, block);
        } else {
            TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, block);
        }
        for (unsigned plane = 0; plane < planes; ++plane) {
            for (uint32_t y = 0; y < height; y += kind.tiled ? block : 1) {
                for (uint32_t x = 0; x < width; x += kind.tiled ? block : width) {
                    std::vector<uint8_t> bytes;
                    const uint32_t columns = kind.tiled ? block : width, rows = kind.tiled ? block : 1;
                    for (uint32_t v = 0; v < rows; ++v)
                        for (uint32_t u = 0; u < columns; ++u)
                            for (unsigned s = 0; s < together; ++s)
                                put(bytes, kind, sample(x + u, y + v, plane + s), u);
                    if (kind.tiled)
                        ASSERT_GT(TIFFWriteTile(file, bytes.data(), x, y, 0, static_cast<uint16_t>(plane)), 0);
                    else
                        ASSERT_EQ(TIFFWriteScanline(file, bytes.data(), y, static_cast<uint16_t>(plane)), 1);
                }
            }
        }
        TIFFClose(file);
    }

    static void put(std::vector<uint8_t> &bytes, const Kind &kind, unsigned value, uint32_t x) {
        if (kind.bits == 1) {
            if (x % 8 == 0) bytes.push_back(0);
            bytes.back() = static_cast<uint8_t>(bytes.back() | value << (7 - x % 8));
        } else if (kind.bits == 16) {
            const auto wide = static_cast<uint16_t>(value * 257);
            const auto *parts = reinterpret_cast<const uint8_t *>(&wide);
            bytes.insert(bytes.end(), parts, parts + 2);
        } else {
            bytes.push_back(static_cast<uint8_t>(value));
        }
    }

    void expect(bool alpha, const std::function<Pixel(uint32_t x, uint32_t y)> &expected, int tolerance = 0) {
        kzb_image_info info = {};
        error = {};
        kzb_image_reader *reader = kzb_image_open(path("a.tif").c_str(), nullptr, &info, &error);
        ASSERT_NE(reader, nullptr) << error.message;
        ASSERT_EQ(info.channels, alpha ? 4 : 3);
        std::vector<uint8_t> row(width * 4);
        for (uint32_t y = 0; y < height; ++y) {
            ASSERT_TRUE(kzb_image_read_row(reader, row.data(), &error)) << error.message;
            for (uint32_t x = 0; x < width; ++x)
                for (size_t c = 0; c < (alpha ? 4u : 3u); ++c)
                    ASSERT_NEAR(row[x * (alpha ? 4 : 3) + c], expected(x, y)[c], tolerance) << x << ", " << y;
        }
        kzb_image_close(reader);
    }
};

Pixel gray(uint32_t x, uint32_t y) {
    const uint8_t level = gray_at(x, y);
    return {level, level, level, 255};
}

} // namespace

TEST_F(TiffKindsTest, StripsTilesAndPlanesOf8And16Bits) {
    for (const char *mode : {"wl", "wb", "w8"}) {
        for (const bool tiled : {false, true}) {
            for (const uint16_t planes : {PLANARCONFIG_CONTIG, PLANARCONFIG_SEPARATE}) {
                for (const uint16_t bits : {8, 16}) {
                    SCOPED_TRACE(testing::Message() << mode << tiled << planes << ", " << bits);
                    write({.bits = bits,
                           .samples = 3,
                           .photometric = PHOTOMETRIC_RGB,
                           .planes = planes,
                           .tiled = tiled,
                           .mode = mode},
                          [](uint32_t x, uint32_t y, unsigned s) { return colour_at(x, y)[s]; });
                    expect(false, colour_at);
                }
            }
        }
    }
}

TEST_F(TiffKindsTest, GrayEitherWayRound) {
    for (const bool tiled : {false, true}) {
        for (const uint16_t bits : {8, 16}) {
            write({.bits = bits, .samples = 1, .photometric = PHOTOMETRIC_MINISBLACK, .tiled = tiled},
                  [](uint32_t x, uint32_t y, unsigned) { return gray_at(x, y); });
            expect(false, gray);
            write({.bits = bits, .samples = 1, .photometric = PHOTOMETRIC_MINISWHITE, .tiled = tiled},
                  [](uint32_t x, uint32_t y, unsigned) { return 255u - gray_at(x, y); });
            expect(false, gray);
        }
    }
}

TEST_F(TiffKindsTest, AlphaByItselfAndMultipliedIn) {
    for (const bool tiled : {false, true}) {
        write(
            {.bits = 8, .samples = 4, .photometric = PHOTOMETRIC_RGB, .extra = EXTRASAMPLE_UNASSALPHA, .tiled = tiled},
            [](uint32_t x, uint32_t y, unsigned s) { return colour_at(x, y)[s]; });
        expect(true, colour_at);
        // Multiplied colours lose what alpha takes from them.
        write(
            {.bits = 8, .samples = 4, .photometric = PHOTOMETRIC_RGB, .extra = EXTRASAMPLE_ASSOCALPHA, .tiled = tiled},
            [](uint32_t x, uint32_t y, unsigned s) {
                const Pixel pixel = colour_at(x, y);
                return s == 3 ? pixel[3] : (pixel[s] * unsigned{pixel[3]} + 127) / 255;
            });
        expect(true, colour_at, 1);
    }
    write({.bits = 8, .samples = 2, .photometric = PHOTOMETRIC_MINISBLACK, .extra = EXTRASAMPLE_UNASSALPHA},
          [](uint32_t x, uint32_t y, unsigned s) { return s == 1 ? colour_at(x, y)[3] : gray_at(x, y); });
    expect(true, [](uint32_t x, uint32_t y) {
        Pixel pixel = gray(x, y);
        pixel[3] = colour_at(x, y)[3];
        return pixel;
    });
    write({.bits = 8, .samples = 4, .photometric = PHOTOMETRIC_RGB, .extra = EXTRASAMPLE_UNSPECIFIED},
          [](uint32_t x, uint32_t y, unsigned s) { return colour_at(x, y)[s]; });
    expect(false, colour_at);
}

TEST_F(TiffKindsTest, PalettesBitsAndInks) {
    for (const bool tiled : {false, true}) {
        write({.bits = 8, .samples = 1, .photometric = PHOTOMETRIC_PALETTE, .tiled = tiled},
              [](uint32_t x, uint32_t y, unsigned) { return gray_at(x, y); });
        expect(false, [](uint32_t x, uint32_t y) {
            return Pixel{gray_at(x, y), static_cast<uint8_t>(255 - gray_at(x, y)), 0, 255};
        });
        if (!tiled) {
            write({.bits = 1, .samples = 1, .photometric = PHOTOMETRIC_MINISBLACK},
                  [](uint32_t x, uint32_t y, unsigned) { return (x + y) % 2; });
            expect(false, [](uint32_t x, uint32_t y) {
                const auto level = static_cast<uint8_t>((x + y) % 2 * 255);
                return Pixel{level, level, level, 255};
            });
        }
        write({.bits = 8, .samples = 4, .photometric = PHOTOMETRIC_SEPARATED, .tiled = tiled},
              [](uint32_t x, uint32_t y, unsigned s) { return s == 3 ? 0u : 255u - colour_at(x, y)[s]; });
        expect(false, colour_at);
    }
}

TEST_F(TiffKindsTest, EveryUsualCompression) {
    for (const uint16_t compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_PACKBITS}) {
        write({.bits = 8, .samples = 3, .photometric = PHOTOMETRIC_RGB, .compression = compression},
              [](uint32_t x, uint32_t y, unsigned s) { return colour_at(x, y)[s]; });
        expect(false, colour_at);
    }
}

TEST_F(TiffKindsTest, AFileCanComeThroughAPipe) {
    write({.bits = 8, .samples = 3, .photometric = PHOTOMETRIC_RGB},
          [](uint32_t x, uint32_t y, unsigned s) { return colour_at(x, y)[s]; });
    const auto bytes = file_bytes(path("a.tif"));
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(::write(ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    close(ends[1]);
    const std::string name = "/proc/self/fd/" + std::to_string(ends[0]);
    EXPECT_TRUE(PictureOwner(kzb_picture_read(name.c_str(), nullptr, &error))) << error.message;
    close(ends[0]);
}
