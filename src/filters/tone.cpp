#include "filters/tone.h"

#include "filters/tables.h"
#include "host/entry_points.h"
#include "image/bytes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace kzb {

namespace {

constexpr Table solarize_table = {
    255, 253, 251, 249, 247, 245, 243, 241, 239, 237, 235, 233, 231, 229, 227, 225, //
    223, 221, 219, 217, 215, 213, 211, 209, 207, 205, 203, 201, 199, 197, 195, 193, //
    191, 189, 187, 185, 183, 180, 179, 177, 175, 173, 171, 169, 167, 164, 163, 161, //
    159, 157, 155, 153, 151, 148, 147, 145, 143, 141, 139, 137, 135, 132, 131, 129, //
    127, 125, 122, 121, 119, 117, 114, 113, 111, 109, 106, 105, 103, 101, 98,  97,  //
    95,  93,  90,  89,  87,  85,  82,  81,  79,  77,  74,  73,  71,  69,  66,  65,  //
    63,  61,  58,  56,  55,  53,  50,  48,  47,  45,  42,  40,  39,  37,  34,  32,  //
    31,  29,  26,  24,  23,  21,  18,  16,  15,  13,  10,  8,   7,   5,   2,   0,   //
    0,   2,   4,   6,   9,   11,  13,  15,  16,  18,  20,  22,  25,  27,  29,  31,  //
    32,  34,  36,  38,  41,  43,  45,  47,  48,  50,  52,  54,  57,  59,  61,  63,  //
    65,  66,  68,  70,  73,  75,  77,  79,  81,  82,  84,  86,  89,  91,  93,  95,  //
    97,  98,  100, 102, 105, 107, 109, 111, 113, 114, 116, 118, 121, 123, 125, 127, //
    129, 131, 132, 134, 137, 139, 141, 143, 145, 147, 148, 150, 153, 155, 157, 159, //
    161, 163, 164, 166, 169, 171, 173, 175, 177, 179, 180, 182, 185, 187, 189, 191, //
    193, 195, 196, 198, 201, 203, 205, 207, 209, 211, 212, 214, 217, 219, 221, 223, //
    225, 227, 228, 230, 233, 235, 237, 239, 241, 243, 244, 246, 249, 251, 253, 255,
};

// The last tables that were made: the channels of an image, and the images of a series, mostly have one gamma, and
// small images take less time than a table.
Table gamma_table(double gamma) {
    struct Made {
        uint64_t bits;
        Table table;
    };
    static constinit std::array<Made, 4> made = {};
    static constinit size_t count = 0;
    const auto bits = std::bit_cast<uint64_t>(gamma);
    for (size_t i = 0; i < std::min(count, made.size()); ++i)
        if (made[i].bits == bits) return made[i].table;
    auto &[made_bits, table] = made[count % made.size()];
    made_bits = bits;
    for (int i = 0; i < 256; ++i)
        table[static_cast<size_t>(i)] = byte_from(std::pow(i / 255.0, 1.0 / gamma) * 255.0 + 0.5);
    count = count == 2 * made.size() - 1 ? made.size() : count + 1;
    return table;
}

// Truncates each gamma before weighing it: programs rely on gray layouts coming out that way.
double combined_gamma(double red, double green, double blue) {
    const int64_t weighed =
        int64_t{integer_from(red)} * 77 + int64_t{integer_from(green)} * 151 + int64_t{integer_from(blue)} * 28;
    return static_cast<double>(weighed / 256);
}

// C. Schlick, "Fast alternatives to Perlin's bias and gain functions", Graphics Gems IV.
Table gain_table(double gain, double bias) {
    const double exponent = std::log(1.0 - gain) / std::log(0.5);
    const double k = 1.0 / bias - 2.0;
    Table table;
    for (int i = 0; i < 256; ++i) {
        const double x = i / 255.0;
        double t;
        if (x < 0.001)
            t = 0;
        else if (x > 0.999)
            t = 1;
        else if (x < 0.5)
            t = 0.5 * std::pow(2 * x, exponent);
        else
            t = 1 - 0.5 * std::pow(2 * (1 - x), exponent);
        table[static_cast<size_t>(i)] = byte_from(t / ((1 - t) * k + 1) * 255.0);
    }
    return table;
}

Table transfer_table(IntegerArray array) {
    Table table = {};
    // Without it a 0 would stand for an element that there need not be.
    if (array == nullptr || !RuntimeUBound.offered()) return table;
    const int32_t last = std::min(RuntimeUBound(array), 255);
    for (int32_t i = 0; i <= last; ++i) {
        int32_t value = 0;
        RuntimeDirectReadIntArray(array, i, &value);
        table[static_cast<size_t>(i)] = static_cast<uint8_t>(value);
    }
    return table;
}

// The tables of a filter that treats red, green, blue and, where it says so, alpha apart, and a gray layout in one way.
template <class Of, class Make>
ChannelTables tables_by_channel(const ImageRecord &source, const Of &gray, const Of &red, const Of &green,
                                const Of &blue, const Of *alpha, Make make) {
    ChannelTables tables;
    const Of *last = nullptr;
    for (Channel channel : alpha == nullptr ? colour_channels_of(source) : channels_of(source)) {
        const Of *of = alpha;
        switch (channel) {
        case Channel::gray:
            of = &gray;
            break;
        case Channel::red:
            of = &red;
            break;
        case Channel::green:
            of = &green;
            break;
        case Channel::blue:
            of = &blue;
            break;
        case Channel::alpha:
            break;
        }
        // Bytes are compared: 0 and -0 are different gammas.
        if (last != nullptr && std::memcmp(last, of, sizeof(Of)) == 0)
            tables.add(channel, tables.tables[tables.channels.size() - 1]);
        else
            tables.add(channel, make(*of));
        last = of;
    }
    return tables;
}

ChannelTables same_table(const ImageRecord &source, const Table &table) {
    ChannelTables tables;
    for (Channel channel : channels_of(source)) tables.add(channel, table);
    return tables;
}

ImageObject gamma(ImageObject image, ImageObject dest, double gray, double red, double green, double blue,
                  const double *alpha) {
    return filter_through_tables(image, dest, [&](const ImageRecord &source) {
        return tables_by_channel(source, gray, red, green, blue, alpha, gamma_table);
    });
}

ImageObject transfer(ImageObject image, ImageObject dest, IntegerArray gray, IntegerArray red, IntegerArray green,
                     IntegerArray blue, const IntegerArray *alpha) {
    return filter_through_tables(image, dest, [&](const ImageRecord &source) {
        return tables_by_channel(source, gray, red, green, blue, alpha, transfer_table);
    });
}

} // namespace

ImageObject solarize_filter(ImageObject image, ImageObject dest) {
    return filter_through_tables(image, dest,
                                 [](const ImageRecord &source) { return same_table(source, solarize_table); });
}

ImageObject gamma_filter(ImageObject image, ImageObject dest, double value) {
    return gamma(image, dest, value, value, value, value, nullptr);
}

ImageObject gamma_filter_with_alpha(ImageObject image, ImageObject dest, double value, double alpha_gamma) {
    return gamma(image, dest, value, value, value, value, &alpha_gamma);
}

ImageObject gamma_filter_rgb(ImageObject image, ImageObject dest, double red_gamma, double green_gamma,
                             double blue_gamma) {
    return gamma(image, dest, combined_gamma(red_gamma, green_gamma, blue_gamma), red_gamma, green_gamma, blue_gamma,
                 nullptr);
}

ImageObject gamma_filter_rgba(ImageObject image, ImageObject dest, double red_gamma, double green_gamma,
                              double blue_gamma, double alpha_gamma) {
    return gamma(image, dest, combined_gamma(red_gamma, green_gamma, blue_gamma), red_gamma, green_gamma, blue_gamma,
                 &alpha_gamma);
}

ImageObject gain_filter(ImageObject image, ImageObject dest, double gain, double bias) {
    return filter_through_tables(image, dest,
                                 [&](const ImageRecord &source) { return same_table(source, gain_table(gain, bias)); });
}

ImageObject transfer_filter_gray(ImageObject image, ImageObject dest, IntegerArray gray) {
    return transfer(image, dest, gray, gray, gray, gray, nullptr);
}

ImageObject transfer_filter_gray_alpha(ImageObject image, ImageObject dest, IntegerArray gray, IntegerArray alpha) {
    return transfer(image, dest, gray, gray, gray, gray, &alpha);
}

ImageObject transfer_filter_rgb(ImageObject image, ImageObject dest, IntegerArray red, IntegerArray green,
                                IntegerArray blue) {
    return transfer(image, dest, green, red, green, blue, nullptr);
}

ImageObject transfer_filter_rgba(ImageObject image, ImageObject dest, IntegerArray red, IntegerArray green,
                                 IntegerArray blue, IntegerArray alpha) {
    return transfer(image, dest, green, red, green, blue, &alpha);
}

} // namespace kzb
