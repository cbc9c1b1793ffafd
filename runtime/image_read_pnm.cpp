#include "image_codec.h"

#include <cstring>

namespace kzb {

namespace {

constexpr const char *damaged = "wrong header or numbers";

// Portable anymaps P1 to P7, plain and raw.
class PnmReader : public ImageReader {
public:
    using ImageReader::ImageReader;

    bool start(ImageInfo &info) override {
        kind = source.input.next()[1] - '0';
        source.input.take(2);
        const bool known = kind == 7 ? read_pam_header() : read_header();
        if (!known) return source.fail_decoding(damaged);
        if (!source.size_fits(width, height) || !source.within_limit(width, height)) return false;
        const uint64_t row_bytes = stored_row_bytes();
        if (row_bytes * height > source.input.size()) return source.fail_too_short(width, height);
        if (row_bytes > PTRDIFF_MAX) return source.fail_memory();
        info.width = width;
        info.height = height;
        info.alpha = channels % 2 == 0;
        stored.resize(kind > 3 ? static_cast<size_t>(row_bytes) : 0);
        return true;
    }

    bool read_row(uint8_t *row) override {
        for (size_t done = 0; done < stored.size();) {
            if (!source.input.fill()) return source.fail_decoding("");
            const size_t part = std::min(stored.size() - done, source.input.available());
            std::memcpy(&stored[done], source.input.next(), part);
            source.input.take(part);
            done += part;
        }
        const bool gray = channels < 3, alpha = channels % 2 == 0;
        for (uint32_t x = 0; x < width; ++x) {
            uint8_t pixel[4] = {};
            for (uint32_t c = 0; c < 4 && c < channels; ++c)
                if (!sample(x, c, pixel[c])) return source.fail_decoding(damaged);
            if (alpha) row[3] = pixel[gray ? 1 : 3];
            for (int i = 0; i < 3; ++i) row[i] = pixel[gray ? 0 : i];
            row += alpha ? 4 : 3;
        }
        return true;
    }

private:
    size_t sample_bytes() const { return most > 255 ? 2 : 1; }
    uint64_t stored_row_bytes() const {
        if (kind < 4) return width; // a digit each, at least
        return kind == 4 ? (uint64_t{width} + 7) / 8 : uint64_t{width} * sample_bytes() * channels;
    }

    // A sample as 0 to 255.
    bool sample(uint32_t x, uint32_t channel, uint8_t &value) {
        if (kind == 4) {
            value = stored[x / 8] >> (7 - x % 8) & 1 ? 0 : 255;
            return true;
        }
        uint32_t number = 0;
        if (kind == 1) {
            const int digit = next_after_space();
            value = digit == '1' ? 0 : 255;
            return digit == '0' || digit == '1';
        }
        if (kind < 4) {
            if (!read_number(number, false)) return false;
        } else {
            const uint8_t *bytes = &stored[(size_t{x} * channels + channel) * sample_bytes()];
            number = most > 255 ? uint32_t{bytes[0]} << 8 | bytes[1] : bytes[0];
        }
        if (number > most) return false;
        value = static_cast<uint8_t>((number * 255 + most / 2) / most);
        return true;
    }

    bool read_header() {
        channels = kind % 3 == 0 ? 3 : 1;
        most = 1;
        if (!read_number(width, true) || !read_number(height, true)) return false;
        if (kind % 3 != 1 && !read_number(most, true)) return false;
        if (most < 1 || most > 65535) return false;
        // One space parts a raw file's numbers from its pixels.
        return kind < 4 || is_space(take());
    }

    // Lines of a word and a number, up to ENDHDR.
    bool read_pam_header() {
        for (;;) {
            std::string word;
            int c = next_after_space();
            for (; c > ' '; c = take()) word += static_cast<char>(c);
            if (word == "ENDHDR") break;
            if (word == "TUPLTYPE" || word.starts_with('#')) {
                if (c != '\n') skip_line();
                continue;
            }
            uint32_t number = 0;
            if (!read_number(number, true)) return false;
            if (word == "WIDTH")
                width = number;
            else if (word == "HEIGHT")
                height = number;
            else if (word == "DEPTH")
                channels = number;
            else if (word == "MAXVAL")
                most = number;
            else
                return false;
        }
        return channels >= 1 && channels <= 4 && most >= 1 && most <= 65535;
    }

    static bool is_space(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
    int peek() { return source.input.fill() ? *source.input.next() : -1; }
    int take() {
        const int c = peek();
        if (c >= 0) source.input.take(1);
        return c;
    }
    void skip_line() {
        for (int c = take(); c >= 0 && c != '\n';) c = take();
    }
    int next_after_space() {
        int c = take();
        while (is_space(c)) c = take();
        return c;
    }

    bool read_number(uint32_t &number, bool comments) {
        while (is_space(peek()) || (comments && peek() == '#')) {
            if (peek() == '#')
                skip_line();
            else
                take();
        }
        uint64_t value = 0;
        bool any = false;
        for (int c = peek(); c >= '0' && c <= '9' && value <= INT32_MAX; c = peek()) {
            value = value * 10 + static_cast<uint64_t>(take() - '0');
            any = true;
        }
        number = static_cast<uint32_t>(value);
        return any && value <= INT32_MAX;
    }

    int kind = 0;
    uint32_t width = 0, height = 0, channels = 0, most = 0;
    std::vector<uint8_t> stored;
};

} // namespace

std::unique_ptr<ImageReader> make_pnm_reader(ImageSource &source) {
    return std::make_unique<PnmReader>(source);
}

} // namespace kzb
