// The texts that declare constants.

#include "host/constants.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace kzb {
namespace {

std::string declared(int32_t value, bool prefix, bool decimal) {
    ConstantDefinition constant = {"Name", value, 0};
    build_constant_declarations(&constant, 1, 0, prefix, decimal);
    EXPECT_EQ(constant.first, 0);
    EXPECT_EQ(constant.second, 0);
    const std::string text = constant.declaration;
    std::free(const_cast<char *>(constant.declaration));
    return text;
}

TEST(ConstantDeclarations, SingleDigitsAreDecimalAndAllOthersHexadecimal) {
    EXPECT_EQ(declared(0, false, false), "Name = 0");
    EXPECT_EQ(declared(9, false, false), "Name = 9");
    EXPECT_EQ(declared(10, false, false), "Name = &h0000000A");
    EXPECT_EQ(declared(21, false, false), "Name = &h00000015");
    EXPECT_EQ(declared(-1, false, false), "Name = &hFFFFFFFF");
    EXPECT_EQ(declared(INT32_MIN, false, false), "Name = &h80000000");
}

TEST(ConstantDeclarations, AreDecimalThroughoutWhenAskedFor) {
    EXPECT_EQ(declared(-15, false, true), "Name = -15");
    EXPECT_EQ(declared(0, false, true), "Name = 0");
    EXPECT_EQ(declared(1234567890, false, true), "Name = 1234567890");
    EXPECT_EQ(declared(INT32_MIN, true, true), "kName = -2147483648");
}

TEST(ConstantDeclarations, TakeAPrefixWhenAskedFor) { EXPECT_EQ(declared(7, true, false), "kName = 7"); }

TEST(ConstantDeclarations, StartAtTheFirstIndex) {
    ConstantDefinition table[] = {{"A", 1, 0}, {"B", 2, 0}};
    build_constant_declarations(table, 2, 2, false, false);
    EXPECT_STREQ(table[1].declaration, "B");
    build_constant_declarations(table, 0, 0, false, false);
    EXPECT_STREQ(table[0].declaration, "A");
    build_constant_declarations(table, 2, 1, false, false);
    EXPECT_STREQ(table[0].declaration, "A");
    EXPECT_EQ(table[0].first, 1);
    EXPECT_STREQ(table[1].declaration, "B = 2");
    std::free(const_cast<char *>(table[1].declaration));
}

} // namespace
} // namespace kzb
