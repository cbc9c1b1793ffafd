#include "exif.h"
#include "held_pixels.h"
#include "image_codec.h"

#include <webp/decode.h>
#include <webp/demux.h>

#include <cstring>

namespace kzb {

namespace {

const char *reason_of(VP8StatusCode status) {
    switch (status) {
    case VP8_STATUS_BITSTREAM_ERROR:
        return "wrong bits";
    case VP8_STATUS_UNSUPPORTED_FEATURE:
        return "an unknown feature";
    case VP8_STATUS_INVALID_PARAM:
        return "no picture in it";
    default:
        return "incomplete";
    }
}

struct Demuxer {
    WebPDemuxer *demuxer;
    explicit Demuxer(const std::vector<uint8_t> &bytes) {
        const WebPData data = {bytes.data(), bytes.size()};
        demuxer = WebPDemux(&data);
    }
    ~Demuxer() { WebPDemuxDelete(demuxer); }
    Demuxer(const Demuxer &) = delete;
    Demuxer &operator=(const Demuxer &) = delete;

    std::vector<uint8_t> chunk(const char *name) const {
        WebPChunkIterator chunk;
        std::vector<uint8_t> bytes;
        if (demuxer && WebPDemuxGetChunk(demuxer, name, 1, &chunk)) {
            bytes.assign(chunk.chunk.bytes, chunk.chunk.bytes + chunk.chunk.size);
            WebPDemuxReleaseChunkIterator(&chunk);
        }
        return bytes;
    }
};

// The library decodes a picture as a whole.
class WebpReader : public ImageReader {
public:
    using ImageReader::ImageReader;

    bool start(ImageInfo &info) override {
        // The format counts its bytes in 32 bits.
        if (!source.input.take_all(file, SIZE_MAX < UINT32_MAX ? SIZE_MAX / 4 : UINT32_MAX)) {
            return source.fail_decoding("too long");
        }
        const VP8StatusCode status = WebPGetFeatures(file.data(), file.size(), &features);
        if (status == VP8_STATUS_NOT_ENOUGH_DATA) return fail_short();
        if (status != VP8_STATUS_OK) return fail(status);
        if (features.has_animation) {
            return source.fail(KZB_ERROR_INPUT, "the WebP file holds an animation, not one picture");
        }
        const auto width = static_cast<uint64_t>(features.width), height = static_cast<uint64_t>(features.height);
        if (!source.size_fits(width, height) || !source.within_limit(width, height)) return false;
        info.width = static_cast<uint32_t>(width);
        info.height = static_cast<uint32_t>(height);
        info.alpha = features.has_alpha != 0;
        row_bytes = size_t{info.width} * (info.alpha ? 4 : 3);
        const Demuxer demuxer(file);
        info.profile = demuxer.chunk("ICCP");
        const std::vector<uint8_t> exif = demuxer.chunk("EXIF");
        info.orientation = exif_orientation(exif.data(), exif.size());
        return true;
    }

    bool read_row(uint8_t *row) override {
        if (!pixels.bytes() && !decode()) return false;
        std::memcpy(row, pixels.bytes() + rows++ * row_bytes, row_bytes);
        return true;
    }

private:
    bool decode() {
        const size_t count = row_bytes * static_cast<size_t>(features.height);
        if (!pixels.hold(count, source.scratch)) return source.fail_memory();
        WebPDecoderConfig config;
        if (!WebPInitDecoderConfig(&config)) return fail(VP8_STATUS_INVALID_PARAM);
        config.output.colorspace = features.has_alpha ? MODE_RGBA : MODE_RGB;
        config.output.is_external_memory = 1;
        config.output.u.RGBA = {pixels.bytes(), static_cast<int>(row_bytes), count};
        const VP8StatusCode status = WebPDecode(file.data(), file.size(), &config);
        std::vector<uint8_t>().swap(file);
        if (status == VP8_STATUS_NOT_ENOUGH_DATA || status == VP8_STATUS_SUSPENDED) return fail_short();
        return status == VP8_STATUS_OK || fail(status);
    }

    bool fail_short() {
        return source.fail(KZB_ERROR_INPUT, "the WebP file ends too early, a part of it is missing; copy it again");
    }
    bool fail(VP8StatusCode status) {
        if (status == VP8_STATUS_OUT_OF_MEMORY) return source.fail_memory();
        return source.fail(KZB_ERROR_INPUT, std::string("the WebP file is damaged or of a kind that cannot be read (") +
                                                reason_of(status) + ")");
    }

    std::vector<uint8_t> file;
    WebPBitstreamFeatures features{};
    HeldPixels pixels;
    size_t row_bytes = 0, rows = 0;
};

} // namespace

std::unique_ptr<ImageReader> make_webp_reader(ImageSource &source) {
    return std::make_unique<WebpReader>(source);
}

} // namespace kzb
