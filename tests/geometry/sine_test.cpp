// The sine behind the windowed filters' weights.

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

} // namespace
} // namespace kzb
