#include "host.h"

using namespace kzb_test;

namespace {

class Declaration : public HostTest {
protected:
    kzb_declaration parsed(const char *text) {
        kzb_declaration declaration;
        std::memset(&declaration, 0x55, sizeof declaration);
        EXPECT_TRUE(kzb_parse_declaration(text, &declaration, &error)) << error.message;
        return declaration;
    }
    std::string failure(const char *text) {
        kzb_declaration declaration;
        EXPECT_FALSE(kzb_parse_declaration(text, &declaration, &error)) << text;
        EXPECT_EQ(error.status, KZB_ERROR_USAGE);
        return error.message;
    }
};

TEST_F(Declaration, MayBeANameAlone) {
    kzb_declaration d = parsed("Close");
    EXPECT_STREQ(d.name, "Close");
    EXPECT_EQ(d.parameter_count, 0U);
    EXPECT_EQ(d.result, KZB_TYPE_NONE);
    EXPECT_STREQ(d.result_name, "");
    EXPECT_EQ(parsed("Close()").parameter_count, 0U);
}

TEST_F(Declaration, HasArgumentsAndAResult) {
    kzb_declaration d = parsed("Mix(a as integer, B AS Int64, c as boolean, d as double, e as color, f as string, "
                               "g as Picture, h() as integer) as MemoryBlock");
    const kzb_type types[] = {KZB_TYPE_INTEGER, KZB_TYPE_INT64,  KZB_TYPE_BOOLEAN, KZB_TYPE_DOUBLE,
                              KZB_TYPE_COLOR,   KZB_TYPE_STRING, KZB_TYPE_OBJECT,  KZB_TYPE_INTEGER_ARRAY};
    const char *const names[] = {"a", "B", "c", "d", "e", "f", "g", "h"};
    const char *const type_names[] = {"integer", "Int64", "boolean", "double", "color", "string", "Picture", "integer"};
    ASSERT_EQ(d.parameter_count, 8U);
    for (size_t i = 0; i < 8; ++i) {
        EXPECT_STREQ(d.parameters[i].name, names[i]);
        EXPECT_EQ(d.parameters[i].type, types[i]);
        EXPECT_STREQ(d.parameters[i].type_name, type_names[i]);
        EXPECT_FALSE(d.parameters[i].has_default);
    }
    EXPECT_EQ(d.result, KZB_TYPE_OBJECT);
    EXPECT_STREQ(d.result_name, "MemoryBlock");
}

TEST_F(Declaration, SpacesDoNotMatter) {
    kzb_declaration d = parsed("  Mix ( a  as integer= 5 ,b( ) as\tinteger )as double ");
    ASSERT_EQ(d.parameter_count, 2U);
    EXPECT_STREQ(d.parameters[0].default_text, "5");
    EXPECT_EQ(d.parameters[1].type, KZB_TYPE_INTEGER_ARRAY);
    EXPECT_EQ(d.result, KZB_TYPE_DOUBLE);
}

TEST_F(Declaration, HasDefaultsOfEveryType) {
    kzb_declaration d = parsed("F(a as integer=-5, b as boolean=FALSE, c as double=1.5e3, d as double=2, "
                               "e as color=&cFF00AA, f as string=\"a,)\"\"b\", g as Picture=Nil, h() as integer=nil, "
                               "i as integer=&h10, j as color=&hFF)");
    ASSERT_EQ(d.parameter_count, 10U);
    const char *const texts[] = {"-5", "FALSE", "1.5e3", "2", "&cFF00AA", "\"a,)\"\"b\"", "Nil", "nil", "&h10", "&hFF"};
    for (size_t i = 0; i < 10; ++i) {
        EXPECT_TRUE(d.parameters[i].has_default);
        EXPECT_STREQ(d.parameters[i].default_text, texts[i]);
    }
}

TEST_F(Declaration, RefusesDefaultsThatDoNotFit) {
    for (const char *text : {"F(a as integer=nil)", "F(a as integer=1.5)", "F(a as integer=3000000000)",
                             "F(a as boolean=2)", "F(a as double=x)", "F(a as double=inf)", "F(a as Picture=1)",
                             "F(a as string=a)", "F(a as string=\"a)", "F(a as integer=)", "F(a() as integer=1)",
                             "F(a as color=&cFFF)", "F(a as integer=&hXY)", "F(a as integer=&h)"})
        EXPECT_NE(failure(text).find("a default value of the argument's type is expected"), std::string::npos)
            << text << ": " << error.message;
}

TEST_F(Declaration, TellsWhereItCannotBeRead) {
    EXPECT_EQ(failure(""), "the declaration \"\" ends where a name is expected");
    EXPECT_EQ(failure("1F"), "the declaration \"1F\" has '1F' where a name is expected");
    EXPECT_EQ(failure("F("), "the declaration \"F(\" ends where an argument's name is expected");
    EXPECT_EQ(failure("F(a"), "the declaration \"F(a\" ends where 'as' is expected");
    EXPECT_EQ(failure("F(a integer)"), "the declaration \"F(a integer)\" has 'integer)' where 'as' is expected");
    EXPECT_EQ(failure("F(a as)"), "the declaration \"F(a as)\" has ')' where a type is expected");
    EXPECT_EQ(failure("F(a as integer"), "the declaration \"F(a as integer\" ends where ',' or ')' is expected");
    EXPECT_EQ(failure("F(a as integer,)"),
              "the declaration \"F(a as integer,)\" has ')' where an argument's name is expected");
    EXPECT_EQ(failure("F(a( as integer)"),
              "the declaration \"F(a( as integer)\" has 'as integer)' where ')' is expected");
    EXPECT_EQ(failure("F as"), "the declaration \"F as\" ends where a type is expected");
    EXPECT_EQ(failure("F as integer x"), "the declaration \"F as integer x\" has 'x' where the end is expected");
    EXPECT_EQ(failure("F assassin"), "the declaration \"F assassin\" has 'assassin' where the end is expected");
    EXPECT_EQ(failure("F(a() as double)"), "the declaration \"F(a() as double)\" has an array of double; arrays are of "
                                           "integers");
    EXPECT_EQ(failure("F(a as integer, A as integer)"),
              "the declaration \"F(a as integer, A as integer)\" has two arguments named A");
    EXPECT_EQ(failure(nullptr), "the declaration is nil");
    EXPECT_FALSE(kzb_parse_declaration("F", nullptr, &error));
}

TEST_F(Declaration, HasLimits) {
    std::string name(63, 'n');
    EXPECT_EQ(parsed(name.c_str()).name, name);
    EXPECT_NE(failure((name + "n").c_str()).find("has a name or value longer than 63 letters"), std::string::npos);
    std::string many = "F(a0 as integer";
    for (int i = 1; i < 16; ++i) many += ", a" + std::to_string(i) + " as integer";
    EXPECT_EQ(parsed((many + ")").c_str()).parameter_count, 16U);
    EXPECT_NE(failure((many + ", b as integer)").c_str()).find("has more than 16 arguments"), std::string::npos);
}

TEST_F(Declaration, AFailureLeavesTheResultAlone) {
    kzb_declaration declaration = {};
    declaration.parameter_count = 7;
    EXPECT_FALSE(kzb_parse_declaration("F(", &declaration, nullptr));
    EXPECT_EQ(declaration.parameter_count, 7U);
}

} // namespace
