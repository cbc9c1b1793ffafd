// Point operations through tables: solarize, gamma, gain, transfer, auto levels.

#include "filters/plain_tone.h"
#include "fixtures/filter_check.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace kzb::test {
namespace {

// One gray pixel through an operation.
template <class... Arguments> uint8_t gray_through(const char *method, uint8_t value, const Arguments &...arguments) {
    const Image image(1, 1, 11);
    image.call("FillRect", 0, 0, 1, 1, value);
    return Image(image.call(method, nullptr, arguments...)).row(0)[0];
}

TEST(SolarizeFilter, FallsToTheMiddleAndRisesAgainInEveryChannel) {
    const Image image(256, 1, 11);
    Bytes ramp(256);
    for (size_t i = 0; i < 256; ++i) ramp[i] = static_cast<uint8_t>(i);
    image.assign("Row", block_of(ramp), 0);
    const Bytes out = Image(image.call("SolarizeFilter", nullptr)).row(0);
    EXPECT_EQ(out[0], 255);
    EXPECT_EQ(out[127], 0);
    EXPECT_EQ(out[128], 0);
    EXPECT_EQ(out[255], 255);
    // Steps that are not regular.
    EXPECT_EQ(out[37], 180);
    EXPECT_EQ(out[53], 148);
    EXPECT_EQ(out[110], 34);
    EXPECT_EQ(out[196], 137);
    int sum = 0;
    for (uint8_t value : out) sum += value;
    EXPECT_EQ(sum, 32696);
    check_filter({[](const Image &source, const Value &dest) { return source.call("SolarizeFilter", dest); },
                  point_operation(true, [=](Channel, uint8_t v) { return out[v]; })});
}

TEST(GammaFilter, EachGammaKeepsItsTableInASeries) {
    const Image image(1, 1, 11);
    image.call("FillRect", 77);
    for (int32_t pass = 0; pass < 3; ++pass)
        for (int32_t i = 1; i <= 9; ++i) {
            const double gamma = (i + pass) / 3.0;
            const Image out(image.call("GammaFilter", nullptr, gamma));
            EXPECT_EQ(out.row(0)[0], static_cast<int32_t>(std::pow(77 / 255.0, 1 / gamma) * 255 + 0.5)) << gamma;
        }
}

TEST(GammaFilter, OneGammaLeavesAlphaAlone) {
    check_filter({[](const Image &source, const Value &dest) { return source.call("GammaFilter", dest, 2.2); },
                  point_operation(false, [](Channel, uint8_t v) { return gamma_of(2.2, v); })});
}

TEST(GammaFilter, AlphaGammaActsWhereTheLayoutHasAlpha) {
    check_filter({[](const Image &source, const Value &dest) { return source.call("GammaFilter", dest, 0.6, 1.7); },
                  point_operation(true, [](Channel channel, uint8_t v) {
                      return gamma_of(channel == Channel::alpha ? 1.7 : 0.6, v);
                  })});
}

uint8_t separate_gamma(Channel channel, uint8_t v) {
    switch (channel) {
    case Channel::red:
        return gamma_of(3.9, v);
    case Channel::green:
        return gamma_of(2.2, v);
    case Channel::blue:
        return gamma_of(1.5, v);
    // (3 * 77 + 2 * 151 + 1 * 28) / 256 in integers
    case Channel::gray:
        return gamma_of(2.0, v);
    case Channel::alpha:
        return gamma_of(0.4, v);
    }
    return 0;
}

TEST(GammaFilter, SeparateGammasCombineForGray) {
    check_filter(
        {[](const Image &source, const Value &dest) { return source.call("GammaFilter", dest, 3.9, 2.2, 1.5); },
         point_operation(false, separate_gamma)});
    check_filter(
        {[](const Image &source, const Value &dest) { return source.call("GammaFilter", dest, 3.9, 2.2, 1.5, 0.4); },
         point_operation(true, separate_gamma)});
}

TEST(GammaFilter, EqualGammasOf2point2GiveAGrayGammaOfExactly2) {
    for (int v : {0, 1, 40, 128, 200, 255})
        EXPECT_EQ(gray_through("GammaFilter", static_cast<uint8_t>(v), 2.2, 2.2, 2.2),
                  gamma_of(2.0, static_cast<uint8_t>(v)));
}

TEST(GammaFilter, GammasBelowOneCombineToZeroWhichBlackensAllButWhite) {
    EXPECT_EQ(gray_through("GammaFilter", 254, 0.9, 0.9, 0.9), 0);
    EXPECT_EQ(gray_through("GammaFilter", 255, 0.9, 0.9, 0.9), 255);
}

TEST(GammaFilter, GammaOneCopies) {
    check_filter({[](const Image &source, const Value &dest) { return source.call("GammaFilter", dest, 1.0); },
                  point_operation(false, [](Channel, uint8_t v) { return v; })});
}

TEST(GammaFilter, AValueThatIsNotANumberGivesZero) {
    EXPECT_EQ(gray_through("GammaFilter", 100, std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(GainFilter, ActsOnEveryChannelAlphaIncluded) {
    check_filter({[](const Image &source, const Value &dest) { return source.call("GainFilter", dest, 0.7, 0.3); },
                  point_operation(true, [](Channel, uint8_t v) { return gain_of(0.7, 0.3, v); })});
}

TEST(GainFilter, TransformsTheAlphaOfGrayWithTheSameTable) {
    const Image image(1, 1, 12);
    image.call("FillRect", 90);
    const Bytes out = Image(image.call("GainFilter", nullptr, 0.8, 0.4)).row(0);
    EXPECT_EQ(out[0], gain_of(0.8, 0.4, 90));
    EXPECT_EQ(out[1], out[0]);
    EXPECT_NE(out[0], 90);
}

TEST(GainFilter, HalfAndHalfIsTheIdentityUpToTruncation) {
    for (int v = 0; v < 256; ++v) {
        const int out = gray_through("GainFilter", static_cast<uint8_t>(v), 0.5, 0.5);
        EXPECT_TRUE(out == v || out == v - 1) << v << " became " << out;
    }
}

TEST(GainFilter, ExtremeArgumentsStayInRange) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (double gain : {-3.0, 0.0, 1.0, 2.0, infinity})
        for (double bias : {-1.0, 0.0, 1.0, 1e300, infinity})
            EXPECT_EQ(gray_through("GainFilter", 77, gain, bias), gain_of(gain, bias, 77)) << gain << ' ' << bias;
}

std::vector<int32_t> numbers(size_t count, int32_t factor, int32_t start) {
    std::vector<int32_t> values(count);
    for (size_t i = 0; i < count; ++i) values[i] = start + factor * static_cast<int32_t>(i);
    return values;
}

TEST(TransferFilter, EachChannelHasItsOwnTableAndGrayTakesGreen) {
    const auto red = numbers(256, 3, 7), green = numbers(256, -1, 255), blue = numbers(256, 5, -9);
    const auto alpha = numbers(256, 11, 2);
    const auto rule = [=](Channel channel, uint8_t v) {
        const auto &table = channel == Channel::red     ? red
                            : channel == Channel::blue  ? blue
                            : channel == Channel::alpha ? alpha
                                                        : green;
        return static_cast<uint8_t>(table[v]);
    };
    const Value r = array_of(red), g = array_of(green), b = array_of(blue), a = array_of(alpha);
    check_filter({[&](const Image &source, const Value &dest) { return source.call("TransferFilter", dest, r, g, b); },
                  point_operation(false, rule)});
    check_filter(
        {[&](const Image &source, const Value &dest) { return source.call("TransferFilter", dest, r, g, b, a); },
         point_operation(true, rule)});
}

TEST(TransferFilter, OneTableForAllColours) {
    const auto gray = numbers(256, 7, 1), alpha = numbers(256, -3, 4);
    const Value g = array_of(gray), a = array_of(alpha);
    const auto rule = [=](Channel channel, uint8_t v) {
        return static_cast<uint8_t>((channel == Channel::alpha ? alpha : gray)[v]);
    };
    check_filter({[&](const Image &source, const Value &dest) { return source.call("TransferFilter", dest, g); },
                  point_operation(false, rule)});
    check_filter({[&](const Image &source, const Value &dest) { return source.call("TransferFilter", dest, g, a); },
                  point_operation(true, rule)});
}

TEST(TransferFilter, ANilArrayGivesBlack) {
    const Image image(2, 1, 1);
    image.call("FillRect", 200);
    const Value identity = array_of(numbers(256, 1, 0));
    const Bytes out = Image(image.call("TransferFilter", nullptr, identity, nullptr, identity)).row(0);
    EXPECT_EQ(Bytes(out.begin(), out.begin() + 6), (Bytes{200, 0, 200, 200, 0, 200}));
}

TEST(TransferFilter, AShortArrayGivesZeroForTheInputsBeyondIt) {
    const Value ten = array_of(numbers(10, 1, 100));
    EXPECT_EQ(gray_through("TransferFilter", 9, ten), 109);
    EXPECT_EQ(gray_through("TransferFilter", 10, ten), 0);
    EXPECT_EQ(gray_through("TransferFilter", 255, ten), 0);
    EXPECT_EQ(gray_through("TransferFilter", 0, array_of({})), 0);
}

TEST(TransferFilter, OnlyTheFirst256ValuesOfALongArrayCount) {
    const Value many = array_of(numbers(300, 1, 3));
    EXPECT_EQ(gray_through("TransferFilter", 255, many), static_cast<uint8_t>(255 + 3));
}

TEST(TransferFilter, TheLowByteOfAValueIsStored) {
    const Value odd = array_of({256, -1, 513});
    EXPECT_EQ(gray_through("TransferFilter", 0, odd), 0);
    EXPECT_EQ(gray_through("TransferFilter", 1, odd), 255);
    EXPECT_EQ(gray_through("TransferFilter", 2, odd), 1);
}

TEST(ToneFilters, GiveNilForAnImageThatIsNotUsable) {
    const Image invalid(3, 3, 99);
    EXPECT_FALSE(invalid.valid());
    EXPECT_TRUE(invalid.call("SolarizeFilter", nullptr).is_nil());
    EXPECT_TRUE(invalid.call("GammaFilter", nullptr, 2.0).is_nil());
    const Image flat(3, 0, 1);
    EXPECT_TRUE(flat.call("GainFilter", nullptr, 0.5, 0.5).is_nil());
    Image closed(3, 3, 1);
    closed.call("Close");
    EXPECT_TRUE(closed.call("SolarizeFilter", nullptr).is_nil());
    const Image source(3, 3, 1);
    EXPECT_TRUE(source.call("SolarizeFilter", closed).is_nil());
    EXPECT_TRUE(source.call("SolarizeFilter", invalid).is_nil());
}

TEST(ToneFilters, LeaveTheDestinationOfANeitherGrayNorColourImageAlone) {
    const Image source(3, 2, 14);
    const Image dest = *make_image(Storage::memory, 3, 2, 2, 5);
    const Bytes before = storage_of(dest);
    EXPECT_TRUE(dest.same(Object(source.call("SolarizeFilter", dest))));
    EXPECT_EQ(storage_of(dest), before);
}

TEST(AutoLevel, StretchesTheWholeImageInEveryStorage) {
    uint32_t seed = 1;
    for (const Layout &of : layouts()) {
        for (Storage storage : every_storage) {
            const auto image = make_image(storage, 37, 21, of.code, seed++);
            if (!image) continue;
            SCOPED_TRACE(std::string(of.name) + " in " + name_of(storage));
            Snapshots snapshots;
            const PlainImage expected = snapshots.of(*image);
            if (of.is_rgb()) auto_level(expected, 0, 0, 37, 21);
            EXPECT_EQ(image->call("AutoLevel").boolean(), of.is_rgb());
            EXPECT_EQ(difference(*image, expected), "");
        }
    }
    const Image tall = make_tall_image(5, 7, 3);
    Snapshots snapshots;
    const PlainImage expected = snapshots.of(tall);
    auto_level(expected, 0, 0, 5, tall_height);
    EXPECT_TRUE(tall.call("AutoLevel").boolean());
    EXPECT_EQ(difference(tall, expected), "");
}

void expect_levelled(std::vector<int32_t> arguments, std::vector<int32_t> rectangle) {
    const Image image = *make_image(Storage::memory, 30, 20, 2, 8);
    Snapshots snapshots;
    const PlainImage expected = snapshots.of(image);
    auto_level(expected, rectangle[0], rectangle[1], rectangle[2], rectangle[3]);
    EXPECT_TRUE(image.call("AutoLevel", arguments[0], arguments[1], arguments[2], arguments[3]).boolean());
    EXPECT_EQ(difference(image, expected), "");
}

TEST(AutoLevel, ANegativeSizeReachesBack) {
    expect_levelled({10, 10, -5, -5}, {5, 5, 5, 5});
}

TEST(AutoLevel, TheRectangleIsCutToTheImage) {
    expect_levelled({-4, -3, 20, 10}, {0, 0, 16, 7});
    expect_levelled({25, 15, 100, 100}, {25, 15, 5, 5});
    expect_levelled({1, 1, INT32_MAX, INT32_MAX}, {1, 1, 29, 19});
}

TEST(AutoLevel, AnEmptyRectangleGivesFalse) {
    const Image image = *make_image(Storage::memory, 30, 20, 2, 8);
    const Bytes before = storage_of(image);
    for (auto [x, y, w, h] : std::vector<std::array<int32_t, 4>>{{0, 0, 0, 5},
                                                                 {30, 0, 5, 5},
                                                                 {0, 20, 5, 5},
                                                                 {-9, 0, 9, 5},
                                                                 {INT32_MIN, 0, INT32_MIN, 5},
                                                                 {INT32_MAX, 0, INT32_MAX, 5}})
        EXPECT_FALSE(image.call("AutoLevel", x, y, w, h).boolean()) << x << ' ' << y << ' ' << w << ' ' << h;
    EXPECT_EQ(storage_of(image), before);
}

TEST(AutoLevel, AFlatImageBecomesBlackWhereTheScaleIsNotANumber) {
    const Image image(8, 8, 1);
    image.call("FillRect", 0);
    EXPECT_TRUE(image.call("AutoLevel").boolean());
    EXPECT_EQ(storage_of(image), Bytes(storage_of(image).size()));
}

TEST(AutoLevel, GivesFalseForOtherLayoutsAndInvalidImages) {
    EXPECT_FALSE(Image(4, 4, 11).call("AutoLevel").boolean());
    EXPECT_FALSE(Image(4, 4, 14).call("AutoLevel").boolean());
    EXPECT_FALSE(Image(4, 4, 0).call("AutoLevel").boolean());
    EXPECT_FALSE(Image(0, 4, 1).call("AutoLevel").boolean());
}

} // namespace
} // namespace kzb::test
