#include "image_codec.h"

namespace kzb {

namespace {

// Raw gray and colour maps and, with alpha, arbitrary maps.
class PnmWriter : public ImageWriter {
public:
    using ImageWriter::ImageWriter;

    bool start(const ImageShape &shape) override {
        row_bytes = shape.row_bytes();
        const std::string width = std::to_string(shape.width), height = std::to_string(shape.height);
        if (!shape.alpha()) return write((shape.gray() ? "P5\n" : "P6\n") + width + " " + height + "\n255\n");
        return write("P7\nWIDTH " + width + "\nHEIGHT " + height + "\nDEPTH " + std::to_string(shape.channels) +
                     "\nMAXVAL 255\nTUPLTYPE " + (shape.gray() ? "GRAYSCALE_ALPHA" : "RGB_ALPHA") + "\nENDHDR\n");
    }
    bool write_row(const uint8_t *row) override {
        return target.output.write(row, row_bytes) || target.fail_encoding("");
    }
    bool finish() override { return true; }

private:
    bool write(const std::string &text) {
        return target.output.write(text.data(), text.size()) || target.fail_encoding("");
    }

    size_t row_bytes = 0;
};

} // namespace

std::unique_ptr<ImageWriter> make_pnm_writer(ImageTarget &target) {
    return std::make_unique<PnmWriter>(target);
}

} // namespace kzb
