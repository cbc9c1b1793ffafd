// The fuzzer's bytes as values. Used up, they go on as zeros, so that every input is a whole program.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>

namespace kzb::fuzz {

class Feed {
public:
    Feed(const uint8_t *bytes, size_t count) : next_(bytes), end_(bytes + count) {}

    bool empty() const { return next_ == end_; }
    uint8_t byte() { return empty() ? uint8_t{0} : *next_++; }
    // 0 to count - 1.
    size_t below(size_t count) { return byte() % count; }

    // Any integer; the small ones and those at which something changes take one byte.
    int32_t integer() {
        static constexpr int32_t corners[] = {std::numeric_limits<int32_t>::min(),
                                              std::numeric_limits<int32_t>::max(),
                                              -1,
                                              0,
                                              1,
                                              255,
                                              256,
                                              -256,
                                              127,
                                              128,
                                              65535,
                                              65536,
                                              -65536,
                                              1 << 30,
                                              -(1 << 30),
                                              1 << 24,
                                              std::numeric_limits<int32_t>::min() + 1,
                                              std::numeric_limits<int32_t>::max() - 1,
                                              std::numeric_limits<int32_t>::max() - 20,
                                              std::numeric_limits<int32_t>::min() + 20,
                                              1000,
                                              -1000,
                                              4096,
                                              100000};
        const uint8_t kind = byte();
        if (kind < 96) return kind - 16;
        if (kind < 160) return corners[static_cast<size_t>(kind) % std::size(corners)];
        if (kind < 224) return static_cast<int16_t>(bits(2));
        return static_cast<int32_t>(bits(4));
    }

    double number() {
        using limits = std::numeric_limits<double>;
        static constexpr double corners[] = {0.0,
                                             -0.0,
                                             1.0,
                                             -1.0,
                                             0.5,
                                             1e-300,
                                             1e300,
                                             -1e300,
                                             2147483647.0,
                                             2147483648.0,
                                             -2147483649.0,
                                             4294967296.0,
                                             9.3e18,
                                             -9.3e18,
                                             90.0,
                                             180.0,
                                             270.0,
                                             360.0,
                                             255.0,
                                             limits::infinity(),
                                             -limits::infinity(),
                                             limits::quiet_NaN(),
                                             limits::denorm_min(),
                                             limits::max(),
                                             limits::lowest(),
                                             limits::epsilon(),
                                             2.2};
        const uint8_t kind = byte();
        if (kind < 96) return kind / 8.0;
        if (kind < 176) return corners[static_cast<size_t>(kind) % std::size(corners)];
        if (kind < 216) return static_cast<int16_t>(bits(2)) / 16.0;
        return std::bit_cast<double>(bits(8));
    }

private:
    uint64_t bits(int bytes) {
        uint64_t value = 0;
        for (int i = 0; i < bytes; ++i) value |= uint64_t{byte()} << 8 * i;
        return value;
    }

    const uint8_t *next_;
    const uint8_t *end_;
};

} // namespace kzb::fuzz
