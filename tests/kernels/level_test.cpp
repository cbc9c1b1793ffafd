#include "kernels/look_up.h"

#include <gtest/gtest.h>

namespace kzb::kernels {
namespace {

TEST(Level, EachIncludesThoseBeforeIt) {
    EXPECT_TRUE(runs(Level::baseline));
    EXPECT_TRUE(runs(Level::avx2) || !runs(Level::avx512));
    EXPECT_TRUE(runs(Level::avx512) || !runs(Level::avx512vbmi));
}

TEST(Level, TheOneInUseRunsHere) {
    EXPECT_TRUE(runs(level_in_use()));
}

TEST(RowFunction, HasABodyOfItsOwnForEachLevel) {
    EXPECT_NE(look_up.at(Level::baseline), look_up.at(Level::avx2));
    EXPECT_NE(look_up.at(Level::avx2), look_up.at(Level::avx512));
    EXPECT_NE(look_up.at(Level::avx512), look_up.at(Level::avx512vbmi));
}

TEST(RowFunction, CallsThatOfTheLevelInUse) {
    static Level called;
    using Function = RowFunction<void()>;
    const Function function({[] { called = Level::baseline; }, [] { called = Level::avx2; },
                             [] { called = Level::avx512; }, [] { called = Level::avx512vbmi; }});
    function();
    EXPECT_EQ(called, level_in_use());
    function.at(Level::avx2)();
    EXPECT_EQ(called, Level::avx2);
}

} // namespace
} // namespace kzb::kernels
