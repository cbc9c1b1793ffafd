#include "host_string.h"

#include <bit>
#include <cerrno>
#include <cstring>
#include <iconv.h>
#include <new>
#include <string>

namespace kzb {

namespace {

constexpr bool little = std::endian::native == std::endian::little;

// The library's name of an encoding; nil: not known here.
const char *iconv_name(uint32_t encoding, bool swapped) noexcept {
    switch (encoding) {
    case KZB_ENCODING_ASCII:
        return "ASCII";
    case KZB_ENCODING_UTF8:
        return "UTF-8";
    case KZB_ENCODING_UTF16:
        return little != swapped ? "UTF-16LE" : "UTF-16BE";
    case KZB_ENCODING_UTF32:
        return little != swapped ? "UTF-32LE" : "UTF-32BE";
    default:
        return nullptr;
    }
}

// Takes a byte order mark off the text; true: the text is in the other byte order.
template <class Unit> bool take_byte_order_mark(std::string_view &bytes, Unit mark, Unit swapped_mark) noexcept {
    if (bytes.size() < sizeof(Unit)) return false;
    Unit first;
    std::memcpy(&first, bytes.data(), sizeof first);
    if (first != mark && first != swapped_mark) return false;
    bytes.remove_prefix(sizeof first);
    return first == swapped_mark;
}

bool in_other_byte_order(std::string_view &bytes, uint32_t encoding) noexcept {
    if (encoding == KZB_ENCODING_UTF16) return take_byte_order_mark<uint16_t>(bytes, 0xFEFF, 0xFFFE);
    if (encoding == KZB_ENCODING_UTF32) return take_byte_order_mark<uint32_t>(bytes, 0xFEFF, 0xFFFE0000);
    return false;
}

class Converter {
public:
    Converter(const char *to, const char *from) noexcept : handle(iconv_open(to, from)) {}
    ~Converter() {
        if (valid()) iconv_close(handle);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    bool valid() const noexcept { return handle != reinterpret_cast<iconv_t>(-1); }

    // All of the text, or false when a part of it cannot be converted. May throw std::bad_alloc.
    bool convert(std::string_view bytes, std::string &result) {
        char *in = const_cast<char *>(bytes.data());
        size_t in_left = bytes.size();
        while (in_left > 0) {
            char part[4096];
            char *out = part;
            size_t out_left = sizeof part;
            size_t status = iconv(handle, &in, &in_left, &out, &out_left);
            result.append(part, sizeof part - out_left);
            // Without room for more, the library reports an error too; every other one, and a character that has been
            // replaced by another, means that the text does not fit.
            if (status == static_cast<size_t>(-1) && (errno != E2BIG || out == part)) return false;
            if (status != static_cast<size_t>(-1) && status > 0) return false;
        }
        return true;
    }

private:
    iconv_t handle;
};

} // namespace

KZBString string_convert(KZBString string, uint32_t encoding) noexcept {
    if (!string) return nullptr;
    uint32_t present = static_cast<uint32_t>(string->encoding);
    std::string_view bytes = string_bytes(string);
    if (present == KZB_ENCODING_UNKNOWN || encoding == KZB_ENCODING_UNKNOWN)
        return string_new(bytes.data(), bytes.size(), encoding);
    bool swapped = in_other_byte_order(bytes, present);
    const char *from = iconv_name(present, swapped), *to = iconv_name(encoding, false);
    if (!from || !to) return nullptr;
    try {
        Converter converter(to, from);
        std::string result;
        if (!converter.valid() || !converter.convert(bytes, result)) return nullptr;
        return string_new(result.data(), result.size(), encoding);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

} // namespace kzb
