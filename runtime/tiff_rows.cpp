#include "tiff_rows.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace kzb {

namespace {

// How the pixels are stored.
struct Storage {
    uint16_t bits = 1, samples = 1, photometric = PHOTOMETRIC_MINISWHITE, planes = PLANARCONFIG_CONTIG,
             format = SAMPLEFORMAT_UINT, extra_count = 0;
    const uint16_t *extra = nullptr;

    explicit Storage(TIFF *file) {
        TIFFGetFieldDefaulted(file, TIFFTAG_BITSPERSAMPLE, &bits);
        TIFFGetFieldDefaulted(file, TIFFTAG_SAMPLESPERPIXEL, &samples);
        TIFFGetFieldDefaulted(file, TIFFTAG_PLANARCONFIG, &planes);
        TIFFGetFieldDefaulted(file, TIFFTAG_SAMPLEFORMAT, &format);
        TIFFGetFieldDefaulted(file, TIFFTAG_EXTRASAMPLES, &extra_count, &extra);
        TIFFGetField(file, TIFFTAG_PHOTOMETRIC, &photometric);
    }

    unsigned colours() const { return photometric == PHOTOMETRIC_RGB ? 3 : 1; }

    // Whether the samples are the channels themselves, in whole bytes.
    bool plain() const {
        const bool known = photometric == PHOTOMETRIC_RGB || photometric == PHOTOMETRIC_MINISBLACK ||
                           photometric == PHOTOMETRIC_MINISWHITE;
        return known && (bits == 8 || bits == 16) && planes == PLANARCONFIG_CONTIG && format == SAMPLEFORMAT_UINT &&
               samples >= colours() && samples <= 16;
    }

    // What the first extra sample is.
    uint16_t first_extra() const {
        return extra_count > 0 && samples > colours() ? extra[0] : uint16_t{EXTRASAMPLE_UNSPECIFIED};
    }
};

uint8_t narrowed(unsigned sixteen_bits) {
    return static_cast<uint8_t>((sixteen_bits * 255 + 32895) >> 16);
}

// Colours that were multiplied by their alpha.
void divide_by_alpha(uint8_t *pixel) {
    const unsigned alpha = pixel[3];
    if (alpha == 0 || alpha == 255) return;
    for (int i = 0; i < 3; ++i) {
        pixel[i] = static_cast<uint8_t>(std::min(255u, (pixel[i] * 255u + alpha / 2) / alpha));
    }
}

// Samples that are the channels, in strips or tiles.
class PlainRows : public TiffRows {
public:
    PlainRows(TIFF *read_from, const Storage &stored, uint32_t columns, uint32_t count)
        : file(read_from), storage(stored), width(columns), height(count), sample_bytes(stored.bits / 8) {
        const uint16_t extra = storage.first_extra();
        has_alpha = extra == EXTRASAMPLE_ASSOCALPHA || extra == EXTRASAMPLE_UNASSALPHA;
        multiplied = extra == EXTRASAMPLE_ASSOCALPHA;
        tiled = TIFFIsTiled(file) != 0;
        if (!tiled) return;
        TIFFGetField(file, TIFFTAG_TILEWIDTH, &tile_width);
        TIFFGetField(file, TIFFTAG_TILELENGTH, &tile_height);
    }

    bool start(TiffErrors &errors) {
        pixel_bytes = size_t{storage.samples} * sample_bytes;
        line_bytes = width * pixel_bytes;
        if (!tiled) {
            lines.resize(std::max(line_bytes, static_cast<size_t>(TIFFScanlineSize(file))));
            return true;
        }
        // A row of tiles is held; a damaged file states larger ones.
        const uint64_t tile_row_bytes = uint64_t{tile_width} * pixel_bytes;
        constexpr uint64_t most_bytes = 1 << 30;
        if (tile_width == 0 || tile_height == 0 || tile_row_bytes * tile_height > most_bytes ||
            uint64_t{line_bytes} * tile_height > 2 * most_bytes ||
            static_cast<uint64_t>(TIFFTileSize(file)) != tile_row_bytes * tile_height) {
            std::strcpy(errors.reason, "tiles of an unlikely size");
            return false;
        }
        tile.resize(static_cast<size_t>(tile_row_bytes * tile_height));
        lines.resize(line_bytes * tile_height);
        return true;
    }

    bool next(uint8_t *row) override {
        const uint8_t *line = lines.data();
        if (tiled) {
            const uint32_t inside = at % tile_height;
            if (inside == 0 && !read_tiles()) return false;
            line += inside * line_bytes;
        } else if (TIFFReadScanline(file, lines.data(), at, 0) != 1) {
            return false;
        }
        ++at;
        unpack(line, row);
        return true;
    }

private:
    bool read_tiles() {
        const size_t tile_row_bytes = tile_width * pixel_bytes;
        for (uint32_t x = 0; x < width; x += std::min(tile_width, width - x)) {
            const uint32_t index = TIFFComputeTile(file, x, at, 0, 0);
            const auto size = static_cast<tmsize_t>(tile.size());
            if (TIFFReadEncodedTile(file, index, tile.data(), size) != size) return false;
            const size_t part = std::min(tile_width, width - x) * pixel_bytes;
            for (uint32_t y = 0; y < std::min(tile_height, height - at); ++y) {
                std::memcpy(&lines[y * line_bytes + x * pixel_bytes], &tile[y * tile_row_bytes], part);
            }
        }
        return true;
    }

    uint8_t sample(const uint8_t *pixel, unsigned index) const {
        if (sample_bytes == 1) return pixel[index];
        uint16_t value;
        std::memcpy(&value, pixel + index * 2, 2);
        return narrowed(value);
    }

    void unpack(const uint8_t *line, uint8_t *row) const {
        const unsigned colours = storage.colours();
        const uint8_t flip = storage.photometric == PHOTOMETRIC_MINISWHITE ? 255 : 0;
        for (uint32_t x = 0; x < width; ++x, line += pixel_bytes) {
            for (unsigned i = 0; i < 3; ++i) row[i] = sample(line, colours == 3 ? i : 0) ^ flip;
            if (has_alpha) row[3] = sample(line, colours);
            if (multiplied) divide_by_alpha(row);
            row += has_alpha ? 4 : 3;
        }
    }

    TIFF *file;
    Storage storage;
    uint32_t width, height, tile_width = 0, tile_height = 0, at = 0;
    size_t sample_bytes, pixel_bytes = 0, line_bytes = 0;
    bool tiled, multiplied;
    std::vector<uint8_t> lines, tile;
};

// All else: palettes, inks, luminances, bits, planes, as the library shows them. It multiplies colours by their alpha.
class ShownRows : public TiffRows {
public:
    explicit ShownRows(TIFF *read_from) : file(read_from) {}
    ~ShownRows() override {
        if (begun) TIFFRGBAImageEnd(&image);
    }

    bool start(TiffErrors &errors) {
        char reason[1024] = "";
        begun = TIFFRGBAImageOK(file, reason) && TIFFRGBAImageBegin(&image, file, 1, reason);
        if (!begun) {
            std::snprintf(errors.reason, sizeof errors.reason, "%.150s", reason);
            return false;
        }
        image.req_orientation = image.orientation; // rows stay as they are stored
        has_alpha = image.alpha != 0;
        uint32_t rows = 0;
        if (TIFFIsTiled(file)) {
            TIFFGetField(file, TIFFTAG_TILELENGTH, &rows);
        } else {
            TIFFGetFieldDefaulted(file, TIFFTAG_ROWSPERSTRIP, &rows);
        }
        constexpr uint32_t most_rows = 256;
        band = std::clamp(rows, uint32_t{1}, std::min(most_rows, image.height));
        pixels.resize(size_t{image.width} * band);
        return true;
    }

    bool next(uint8_t *row) override {
        const uint32_t inside = at % band;
        if (inside == 0) {
            image.row_offset = static_cast<int>(at);
            image.col_offset = 0;
            if (!TIFFRGBAImageGet(&image, pixels.data(), image.width, std::min(band, total() - at))) return false;
        }
        const uint32_t *from = &pixels[size_t{inside} * image.width];
        for (uint32_t x = 0; x < image.width; ++x) {
            uint8_t pixel[4] = {static_cast<uint8_t>(TIFFGetR(from[x])), static_cast<uint8_t>(TIFFGetG(from[x])),
                                static_cast<uint8_t>(TIFFGetB(from[x])), static_cast<uint8_t>(TIFFGetA(from[x]))};
            if (has_alpha) divide_by_alpha(pixel);
            std::memcpy(row, pixel, has_alpha ? 4 : 3);
            row += has_alpha ? 4 : 3;
        }
        ++at;
        return true;
    }

private:
    uint32_t total() const { return image.height; }

    TIFF *file;
    TIFFRGBAImage image{};
    bool begun = false;
    uint32_t band = 1, at = 0;
    std::vector<uint32_t> pixels;
};

template <class Rows> std::unique_ptr<TiffRows> started(std::unique_ptr<Rows> rows, TiffErrors &errors) {
    if (!rows->start(errors)) return nullptr;
    return rows;
}

} // namespace

std::unique_ptr<TiffRows> make_tiff_rows(TIFF *file, uint32_t width, uint32_t height, TiffErrors &errors) {
    const Storage storage(file);
    if (storage.plain()) return started(std::make_unique<PlainRows>(file, storage, width, height), errors);
    return started(std::make_unique<ShownRows>(file), errors);
}

} // namespace kzb
