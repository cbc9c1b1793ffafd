// The sine behind the windowed filters' weights, and the functions of a rotation's angle.

#include "geometry/sine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace kzb {
namespace {

TEST(Sine, IsTheNearestDouble) {
    struct {
        double angle, sine;
    } const known[] = {
        // Angles at which libraries err in the last bit, on one processor or another.
        {0x1.75ddafa423f4ep+2, -0x1.b59424650c3abp-2},
        {0x1.685417bbdcc52p+1, 0x1.4873f62286e8fp-2},
        {0x1.729212bac79b6p+1, 0x1.f3c12f3a2f61bp-3},
        {0x1.626b8aeaa26d4p+4, -0x1.467ffb38322fdp-3},
        {0x1.9e8ce80231bf3p+2, 0x1.8b27ea0310259p-3},
        {0x1.c48a78878fe4bp+2, 0x1.6ae51f1ef075fp-1},
        {0x1.acc1868065efbp-3, 0x1.a9a17e39fdf1fp-3},
        {0x1.22a221dd2fad2p+3, 0x1.57e3db8c64193p-2},
        {0x1.afd91613e44a8p+2, 0x1.caac048810f77p-2},
        {0x1.1d6a4f8a845p+3, 0x1.efe9836874213p-2},
        {0x1.e951a20793e99p+0, 0x1.e2963f82fe0d7p-1},
        {0x1.6b901eea4891ap+4, -0x1.5605f8512620fp-1},
        // Multiples of the double nearest to pi.
        {0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53},
        {0x1.921fb54442d18p+2, -0x1.1a62633145c07p-52},
        {0x1.2d97c7f3321d2p+3, 0x1.a79394c9e8a0ap-52},
        {0x1.921fb54442d18p+3, -0x1.1a62633145c07p-51},
        {0x1.5fdbbe9bba775p+4, 0x1.ee2c2d963a10cp-51},
        {0x1.921fb54442d18p+0, 1.0},
        {0x1.2d97c7f3321d2p+2, -1.0},
        {0x1.78fdb9effea46p+4, -1.0},
        {0x1.921fb54442d18p-1, 0x1.6a09e667f3bccp-1},
        {0x1.921fb54442d19p-1, 0x1.6a09e667f3bcdp-1},
        {0x1.0c152382d7365p+0, 0x1.bb67ae8584caap-1},
        {0x1.0c152382d7365p+1, 0x1.bb67ae8584cabp-1},
        {0x1.afc6f70213be5p-29, 0x1.afc6f70213be5p-29},
        {0x1.0d4cab14b6bbfp-995, 0x1.0d4cab14b6bbfp-995},
        {-2.5, -0x1.326af0dcfcab1p-1},
        {-25.0, 0x1.0f0e6f31e809dp-3},
        {8000.0, 0x1.fee5482d13679p-1},
        {-8191.75, 0x1.ff6e4bfc4f549p-1},
        {0.0, 0.0},
    };
    for (const auto &[angle, expected] : known) EXPECT_EQ(sine(angle), expected) << angle;
}

TEST(Sine, StaysWithinOneStepOfTheLibrarys) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (int i = -60000; i <= 60000; ++i) {
        const double angle = i * 0.00097;
        const double library = std::sin(angle);
        const double found = sine(angle);
        ASSERT_GE(found, std::nextafter(library, -infinity)) << angle;
        ASSERT_LE(found, std::nextafter(library, infinity)) << angle;
    }
}

TEST(Cosine, IsTheNearestDouble) {
    struct {
        double angle, cosine;
    } const known[] = {
        {0x1.3a83b41e6b3ap+2, 0x1.9aafd39aedb71p-3},
        {-0x1.70daa83b4e9afp+1, -0x1.eecd5ecf3fe1dp-1},
        {0x1.ccc49eab885f8p+0, -0x1.d10f99cd1583bp-3},
        {-0x1.54d39aa82271p+0, 0x1.e5b4b452da449p-3},
        {-0x1.6ff9b914103d6p+2, 0x1.b8d4ae29af63bp-1},
        {-0x1.5d6e5a85fe00cp+2, 0x1.5c0cf9644333bp-1},
        {-0x1.00cdb7e42dad6p+1, -0x1.aff8b5b72ad0bp-2},
        {0x1.29956aac7cf68p+0, 0x1.96a2a8114e9f3p-2},
        {0x1.b3fde3facdb6p+0, -0x1.0e274e23b7f27p-3},
        {0x1.573db90341d64p+0, 0x1.d2eb5fcad1737p-3},
        {0x1.397db22ef6cc8p+0, 0x1.5b7da7736382fp-2},
        {-0x1.5e499ad097254p+0, 0x1.9bdcdf31cc359p-3},
        {0x0p+0, 0x1p+0},
        {0x1.921fb54442d18p-1, 0x1.6a09e667f3bcdp-1},
        {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54},
        {0x1.921fb54442d18p+1, -0x1p+0},
        {0x1.921fb54442d18p+2, 0x1p+0},
        {0x1p+0, 0x1.14a280fb5068cp-1},
        {-0x1.4p+1, -0x1.9a2f7ef858b7dp-1},
        {0x1.12e0be826d695p-30, 0x1p+0},
        {0x1.0c152382d7365p+0, 0x1.0000000000001p-1},
        {0x1.2fd3b0c77c70dp-2, 0x1.e9a0c6e7bdb1fp-1},
        {0x1.9101c0da1da7ap+1, -0x1.fffb02599c9cdp-1},
        {0x1.f4p+12, 0x1.0ce1e7bcc7037p-4},
    };
    for (const auto &[angle, expected] : known) EXPECT_EQ(cosine(angle), expected) << angle;
}

TEST(Tangent, IsTheNearestDouble) {
    struct {
        double angle, tangent;
    } const known[] = {
        {0x1.acd577da83a78p+0, -0x1.31967f4d23e5fp+3},
        {-0x1.0df63f0931cbap+2, -0x1.db1859b5157c5p+0},
        {0x1.64b88bcd1a3p+2, -0x1.b7905d4844281p-1},
        {-0x1.cbc1012e2b598p+1, -0x1.eef1ef7a415dbp-2},
        {-0x1.546f7edfd45c6p+2, 0x1.70b23e0ddc3e5p+0},
        {0x1.63c31878da432p+2, -0x1.c50ff85506b29p-1},
        {0x1.bce69f082ce18p+0, -0x1.7b702877e8885p+2},
        {-0x1.3de75385d38ccp+1, 0x1.8bb4150f251cdp-1},
        {-0x1.d95865f9191b1p+1, -0x1.3e72ddb667b03p-1},
        {-0x1.7839e2794d9c8p-1, -0x1.cea87fe1c426fp-1},
        {0x1.a56f85ae67b5p+0, -0x1.a764683f8d287p+3},
        {0x1.55817943416bcp+0, 0x1.093638ae3e6e9p+2},
        {0x0p+0, 0x0p+0},
        {0x1.921fb54442d18p-1, 0x1.fffffffffffffp-1},
        {0x1.921fb54442d18p+0, 0x1.d02967c31cdb5p+53},
        {0x1.921fb54442d18p+1, -0x1.1a62633145c07p-53},
        {0x1.921fb54442d18p+2, -0x1.1a62633145c07p-52},
        {0x1p+0, 0x1.8eb245cbee3a6p+0},
        {-0x1.4p+1, 0x1.7e79b4e00bb15p-1},
        {0x1.12e0be826d695p-30, 0x1.12e0be826d695p-30},
        {0x1.0c152382d7365p+0, 0x1.bb67ae8584ca8p+0},
        {0x1.2fd3b0c77c70dp-2, 0x1.391176b8feb5bp-2},
        {0x1.9101c0da1da7ap+1, -0x1.1df645e10077dp-7},
        {0x1.f4p+12, 0x1.e66b0770f8fcdp+3},
    };
    for (const auto &[angle, expected] : known) EXPECT_EQ(tangent(angle), expected) << angle;
}

TEST(CosineAndTangent, StayWithinOneStepOfTheLibrarys) {
    const double infinity = std::numeric_limits<double>::infinity();
    const auto close = [&](double found, double library) {
        return found >= std::nextafter(library, -infinity) && found <= std::nextafter(library, infinity);
    };
    for (int i = -20000; i <= 20000; ++i) {
        const double angle = i * 0.00097;
        ASSERT_TRUE(close(cosine(angle), std::cos(angle))) << angle;
        ASSERT_TRUE(close(tangent(angle), std::tan(angle))) << angle;
    }
}

} // namespace
} // namespace kzb
