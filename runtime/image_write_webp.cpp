#include "image_codec.h"

#include <webp/encode.h>
#include <webp/mux.h>

namespace kzb {

namespace {

const char *reason_of(WebPEncodingError error) {
    switch (error) {
    case VP8_ENC_ERROR_PARTITION0_OVERFLOW:
    case VP8_ENC_ERROR_PARTITION_OVERFLOW:
        return "a WebP file cannot hold so much detail; lower the quality";
    case VP8_ENC_ERROR_FILE_TOO_BIG:
        return "a WebP file holds at most 4 gigabytes";
    default:
        return "the picture cannot be encoded";
    }
}

// The library encodes a picture as a whole.
class WebpWriter : public ImageWriter {
public:
    explicit WebpWriter(ImageTarget &write_to) : ImageWriter(write_to) { WebPMemoryWriterInit(&encoded); }
    ~WebpWriter() override {
        WebPPictureFree(&picture);
        WebPMemoryWriterClear(&encoded);
        WebPDataClear(&assembled);
        WebPMuxDelete(mux);
    }

    bool start(const ImageShape &wanted) override {
        if (wanted.width > WEBP_MAX_DIMENSION || wanted.height > WEBP_MAX_DIMENSION) {
            return target.fail_size("WebP", WEBP_MAX_DIMENSION);
        }
        channels = wanted.channels;
        profile.assign(wanted.profile.begin(), wanted.profile.end());
        if (!WebPConfigInit(&config) || !WebPPictureInit(&picture)) return target.fail_encoding("another WebP library");
        config.quality = static_cast<float>(target.quality);
        config.lossless = target.lossless;
        config.exact = target.lossless;
        picture.use_argb = 1;
        picture.width = static_cast<int>(wanted.width);
        picture.height = static_cast<int>(wanted.height);
        picture.writer = WebPMemoryWrite;
        picture.custom_ptr = &encoded;
        return WebPPictureAlloc(&picture) || target.fail_memory();
    }

    bool write_row(const uint8_t *row) override {
        uint32_t *pixels = picture.argb + static_cast<ptrdiff_t>(rows++) * picture.argb_stride;
        const bool gray = channels < 3, alpha = channels % 2 == 0;
        for (int x = 0; x < picture.width; ++x, row += channels) {
            const uint32_t red = row[0], green = gray ? red : row[1], blue = gray ? red : row[2];
            const uint32_t opacity = alpha ? row[channels - 1] : 255;
            pixels[x] = opacity << 24 | red << 16 | green << 8 | blue;
        }
        return true;
    }

    bool finish() override {
        if (!WebPEncode(&config, &picture)) {
            const WebPEncodingError error = picture.error_code;
            if (error == VP8_ENC_ERROR_OUT_OF_MEMORY || error == VP8_ENC_ERROR_BITSTREAM_OUT_OF_MEMORY) {
                return target.fail_memory();
            }
            return target.fail_encoding(reason_of(error));
        }
        WebPData file = {encoded.mem, encoded.size};
        if (!profile.empty()) {
            if (!assemble(file)) return target.fail_memory();
            file = assembled;
        }
        return target.output.write(file.bytes, file.size) || target.fail_encoding("");
    }

private:
    // Puts the profile beside the encoded picture.
    bool assemble(const WebPData &image) {
        const WebPData chunk = {profile.data(), profile.size()};
        mux = WebPMuxNew();
        return mux && WebPMuxSetImage(mux, &image, 0) == WEBP_MUX_OK &&
               WebPMuxSetChunk(mux, "ICCP", &chunk, 0) == WEBP_MUX_OK &&
               WebPMuxAssemble(mux, &assembled) == WEBP_MUX_OK;
    }

    WebPConfig config{};
    WebPPicture picture{};
    WebPMemoryWriter encoded{};
    WebPMux *mux = nullptr;
    WebPData assembled{};
    int channels = 0;
    size_t rows = 0;
    std::vector<uint8_t> profile;
};

} // namespace

std::unique_ptr<ImageWriter> make_webp_writer(ImageTarget &target) {
    return std::make_unique<WebpWriter>(target);
}

} // namespace kzb
