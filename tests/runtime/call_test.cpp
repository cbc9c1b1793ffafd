#include "host.h"

using namespace kzb_test;

namespace {

using Call = SamplerTest;

TEST_F(Call, CarriesArgumentsOfEveryType) {
    Value other = make(integer(42)), bytes = block("\x2A"), items = array({1, 2, 3});
    Value item = object(kzb_folder_item_new("/tmp/some file"));
    Value line = call("Describe", integer(-5), integer(INT64_C(-1234567890123)), number(0.5), boolean(1),
                      color(0x12ABEF), text("text"), bytes, other, items, item, number(-0.25), integer(INT32_MIN));
    EXPECT_EQ(line.text(), "7 -5 -1234567890123 0.5 1 12ABEF text 42 42 2 /tmp/some file -0.25 -2147483648");
}

TEST_F(Call, CarriesNilForEveryReference) {
    Value line = call("Describe", integer(0), integer(0), integer(3), integer(0), integer(0), nil(), nil(), nil(),
                      nil(), nil(), integer(-1), integer(1));
    EXPECT_EQ(line.text(), "7 0 0 3 0 000000  -1 -1 -1  -1 1");
}

TEST_F(Call, ReturnsEveryType) {
    Value negative = call("TwiceInteger", integer(-21));
    EXPECT_EQ(negative->kind, KZB_INTEGER);
    EXPECT_EQ(negative->integer, -42);
    EXPECT_EQ(call("TwiceInt64", integer(INT64_C(-5000000000)))->integer, INT64_C(-10000000000));
    Value half = call("Half", number(0.75));
    EXPECT_EQ(half->kind, KZB_DOUBLE);
    EXPECT_EQ(half->number, 0.375);
    Value negated = call("Negated", boolean(0));
    EXPECT_EQ(negated->kind, KZB_BOOLEAN);
    EXPECT_EQ(negated->integer, 1);
    EXPECT_EQ(call("Negated", boolean(1))->integer, 0);
    Value inverted = call("Inverted", color(0x010203));
    EXPECT_EQ(inverted->kind, KZB_COLOR);
    EXPECT_EQ(inverted->integer, 0xFEFDFC);
    EXPECT_EQ(call("Doubled", text("ab")).text(), "abab");
    Value copied = call("Copied", text("bytes"));
    size_t count = 0;
    void *bytes = kzb_block_bytes(reinterpret_cast<KZBMemoryBlock>(copied->object), &count);
    EXPECT_EQ(std::string(static_cast<char *>(bytes), count), "bytes");
}

TEST_F(Call, ReturnsNilAndNothing) {
    Value no_text = call("NoText");
    EXPECT_EQ(no_text->kind, KZB_STRING);
    EXPECT_EQ(no_text->string, nullptr);
    EXPECT_EQ(call("NoObject")->kind, KZB_NIL);
    EXPECT_EQ(call("Nothing")->kind, KZB_NIL);
}

TEST_F(Call, KeepsTheBalanceOfReferences) {
    size_t before = kzb_live_references();
    {
        Value self = call("Myself");
        EXPECT_EQ(self->object, sampler->object);
        EXPECT_EQ(kzb_live_references(), before + 1);
    }
    EXPECT_EQ(kzb_live_references(), before);
    EXPECT_TRUE(kzb_call(sampler->object, "Myself", nullptr, 0, nullptr, &error)); // the result is released
    EXPECT_EQ(kzb_live_references(), before);
}

TEST_F(Call, ComparesNamesWithoutRegardToCase) {
    EXPECT_EQ(call("TWICEINTEGER", integer(4))->integer, 8);
    EXPECT_EQ(
        call_with("sum", Arguments().named("A", integer(1)).named("C", integer(3)).named("b", integer(2)))->integer,
        123);
}

TEST_F(Call, FillsInDefaults) {
    EXPECT_EQ(call("Sum", integer(1))->integer, 149);
    EXPECT_EQ(call("Sum", integer(1), integer(2))->integer, 119);
    EXPECT_EQ(call("Defaults").text(), "1 -2.5 FF8000 a, \"b\" (c) 0 0 4886718345");
}

TEST_F(Call, TakesNamedArguments) {
    EXPECT_EQ(call_with("Sum", Arguments(integer(1)).named("c", integer(3)))->integer, 153);
    EXPECT_EQ(call_with("Sum", Arguments().named("c", integer(3)).named("a", integer(2)))->integer, 253);
}

TEST_F(Call, ChoosesTheOverloadByType) {
    EXPECT_EQ(call("Kind", integer(1)).text(), "integer");
    EXPECT_EQ(call("Kind", number(1)).text(), "double");
    EXPECT_EQ(call("Kind", boolean(1)).text(), "boolean");
    EXPECT_EQ(call("Kind", color(1)).text(), "color");
    EXPECT_EQ(call("Kind", text("1")).text(), "string");
    EXPECT_EQ(call("Kind", block("1")).text(), "block");
    EXPECT_EQ(call("Kind", array({1})).text(), "array");
}

TEST_F(Call, PrefersAnExactTypeToAConvertedOne) {
    EXPECT_EQ(call("Number", integer(1)).text(), "wide");
    EXPECT_EQ(call("Number", number(1)).text(), "number");
    EXPECT_EQ(call("Kind", integer(INT64_C(1) << 40)).text(), "double"); // too large for the exact type
}

TEST_F(Call, PrefersFewerDefaults) {
    EXPECT_EQ(call("Pick").text(), "none");
    EXPECT_EQ(call("Pick", integer(1)).text(), "one");
    EXPECT_EQ(call("Pick", integer(1), integer(2)).text(), "optional");
    EXPECT_EQ(call_with("Pick", Arguments().named("last", integer(1))).text(), "optional");
}

TEST_F(Call, ConvertsIntegersWhereTheyFit) {
    EXPECT_EQ(call("Half", integer(3))->number, 1.5);
    EXPECT_EQ(call("Negated", integer(1))->integer, 0);
    EXPECT_EQ(call("Inverted", integer(0xFFFFFF))->integer, 0);
    EXPECT_EQ(call("TwiceInt64", integer(4))->integer, 8);
    EXPECT_EQ(mistake("Negated", integer(2)),
              "Sampler.Negated, argument 1 (value as boolean): a Boolean is expected, the integer 2 came");
    EXPECT_EQ(mistake("Inverted", integer(0x1000000)), "Sampler.Inverted, argument 1 (value as color): a Color from "
                                                       "&c000000 to &cFFFFFF is expected, the integer 16777216 came");
    EXPECT_EQ(mistake("Inverted", color(-1)),
              "Sampler.Inverted, argument 1 (value as color): a Color from &c000000 to &cFFFFFF is expected, the color "
              "&cFFFFFFFFFFFFFFFF came");
}

TEST_F(Call, RefusesIntegersBeyond32Bits) {
    EXPECT_EQ(call("TwiceInteger", integer(INT32_MAX))->integer, -2);
    EXPECT_EQ(mistake("TwiceInteger", integer(INT64_C(2147483648))),
              "Sampler.TwiceInteger, argument 1 (value as integer): an Integer from -2147483648 to 2147483647 is "
              "expected, the integer 2147483648 came");
    EXPECT_EQ(mistake("TwiceInteger", integer(INT64_C(-2147483649))).find("Sampler.TwiceInteger, argument 1"), 0U);
}

TEST_F(Call, NamesTheArgumentThatDoesNotFit) {
    EXPECT_EQ(mistake("TwiceInteger", number(2.5)), "Sampler.TwiceInteger, argument 1 (value as integer): an Integer "
                                                    "from -2147483648 to 2147483647 is expected, the number 2.5 came");
    EXPECT_EQ(mistake("TwiceInteger", nil()), "Sampler.TwiceInteger, argument 1 (value as integer): an Integer "
                                              "from -2147483648 to 2147483647 is expected, nil came");
    EXPECT_EQ(mistake("Wrapped", sampler),
              "Sampler.Wrapped, argument 1 (block as memoryblock): a memoryblock or nil is expected, a Sampler came");
    EXPECT_EQ(mistake("SetStringProperty", block("x"), text("Message"), text("x")),
              "Sampler.SetStringProperty, argument 1 (sampler as Sampler): a Sampler or nil is expected, a MemoryBlock "
              "came");
    EXPECT_EQ(
        mistake("Element", integer(1), integer(1)),
        "Sampler.Element, argument 1 (values() as integer): an array of integers is expected, the integer 1 came");
    EXPECT_EQ(mistake("Half", text("1")),
              "Sampler.Half, argument 1 (value as double): a number is expected, a string came");
    EXPECT_EQ(mistake("Doubled", array({})),
              "Sampler.Doubled, argument 1 (value as string): a String is expected, an array of integers came");
    EXPECT_EQ(mistake("Negated", boolean(3)),
              "Sampler.Negated, argument 1 (value as boolean): a Boolean is expected, a boolean of value 3 came");
}

TEST_F(Call, NamesTheArgumentOfTheNearestOverload) {
    EXPECT_EQ(mistake("IntegerProperty", text("x"), text("y")),
              "Sampler.IntegerProperty, argument 1 (block as memoryblock): a memoryblock or nil is expected, a string "
              "came");
    EXPECT_EQ(mistake("IntegerProperty", sampler, integer(1)),
              "Sampler.IntegerProperty, argument 2 (name as string): a String is expected, the integer 1 came");
}

TEST_F(Call, TellsHowManyArgumentsItTakes) {
    EXPECT_EQ(mistake("TwiceInteger"), "Sampler.TwiceInteger needs argument 1 (value as integer), an Integer from "
                                       "-2147483648 to 2147483647; 0 came");
    EXPECT_EQ(mistake("TwiceInteger", integer(1), integer(2)), "Sampler.TwiceInteger takes 1 argument; 2 came");
    EXPECT_EQ(mistake("Nothing", integer(1)), "Sampler.Nothing takes 0 arguments; 1 came");
    EXPECT_EQ(mistake("Sum", integer(1), integer(2), integer(3), integer(4)),
              "Sampler.Sum takes 1, 2 or 3 arguments; 4 came");
    EXPECT_EQ(mistake("Kind"), "Sampler.Kind takes 1 argument; 0 came");
}

TEST_F(Call, TellsWhatIsWrongWithNames) {
    EXPECT_EQ(mistake_with("Element", Arguments(array({})).named("indx", integer(1))),
              "Sampler.Element has no argument named indx; did you mean index?");
    EXPECT_EQ(mistake_with("Element", Arguments(array({})).named("zzz", integer(1))),
              "Sampler.Element has no argument named zzz; its arguments are values, index");
    EXPECT_EQ(mistake_with("Nothing", Arguments().named("zzz", integer(1))),
              "Sampler.Nothing has no argument named zzz; it takes none");
    EXPECT_EQ(mistake_with("Sum", Arguments(integer(1)).named("a", integer(1))),
              "Sampler.Sum was given the argument a twice");
    EXPECT_EQ(mistake_with("Sum", Arguments().named("b", integer(1))),
              "Sampler.Sum needs argument 1 (a as integer), an Integer from -2147483648 to 2147483647; 1 came");
    Arguments mixed;
    mixed.named("a", integer(1));
    kzb_value values[] = {mixed.data()[0], *integer(2)};
    EXPECT_FALSE(kzb_call(sampler->object, "Sum", values, 2, nullptr, &error));
    EXPECT_STREQ(error.message, "Sampler.Sum was given an argument without a name after a named one");
}

TEST_F(Call, SuggestsTheMethodThatWasMeant) {
    EXPECT_EQ(mistake("TwiceIntegr"), "Sampler has no method TwiceIntegr; did you mean TwiceInteger?");
    EXPECT_EQ(mistake("Qwertyuiop"), "Sampler has no method Qwertyuiop");
    EXPECT_EQ(mistake("Count"), "Sampler.Count is a property, not a method");
    EXPECT_EQ(mistake("Add", integer(1), integer(2)), "Sampler.Add is a shared method, called on the class");
}

TEST_F(Call, RefusesNilAndMissingParts) {
    EXPECT_FALSE(kzb_call(nullptr, "Nothing", nullptr, 0, nullptr, &error));
    EXPECT_STREQ(error.message, "Nothing was called on nil");
    EXPECT_FALSE(kzb_call(sampler->object, nullptr, nullptr, 0, nullptr, &error));
    EXPECT_STREQ(error.message, "the method's name is nil");
    EXPECT_FALSE(kzb_call(sampler->object, "Half", nullptr, 1, nullptr, &error));
    EXPECT_STREQ(error.message, "Half: the arguments are nil");
    EXPECT_FALSE(kzb_call(sampler->object, "Nothing", nullptr, 1, nullptr, nullptr)); // an error is not required
}

TEST_F(Call, CallsMethodsOfHostObjects) {
    Value bytes = block("x");
    EXPECT_FALSE(kzb_call(bytes->object, "Nothing", nullptr, 0, nullptr, &error));
    EXPECT_STREQ(error.message, "MemoryBlock has no method Nothing");
}

TEST_F(Call, AssignsToMethods) {
    Value index = integer(2), value = integer(-9), result;
    EXPECT_TRUE(kzb_assign(sampler->object, "Item", &*index, 1, &*value, &error)) << error.message;
    EXPECT_EQ(call("Item", integer(2))->integer, -9);
    EXPECT_EQ(call("Item", integer(1))->integer, 0);
    Value one = integer(1), words = text("words");
    EXPECT_TRUE(kzb_assign(sampler->object, "StringAt", &*one, 1, &*words, &error)) << error.message;
    EXPECT_EQ(call("StringAt", integer(1)).text(), "words");
    Value none = nil();
    EXPECT_TRUE(kzb_assign(sampler->object, "StringAt", &*one, 1, &*none, &error)) << error.message;
    EXPECT_EQ(call("StringAt", integer(1))->string, nullptr);
}

TEST_F(Call, TellsWhatIsWrongWithAnAssignment) {
    Value index = integer(0), words = text("x"), far = integer(9), value = integer(1);
    EXPECT_FALSE(kzb_assign(sampler->object, "Item", &*index, 1, &*words, &error));
    EXPECT_STREQ(error.message, "Sampler.Item, the assigned value (as integer): an Integer from -2147483648 to "
                                "2147483647 is expected, a string came");
    EXPECT_FALSE(kzb_assign(sampler->object, "Half", &*index, 1, &*words, &error));
    EXPECT_STREQ(error.message, "Sampler.Half cannot be assigned to");
    EXPECT_FALSE(kzb_assign(sampler->object, "Item", &*index, 1, nullptr, &error));
    EXPECT_STREQ(error.message, "Item: there is no value to assign");
    EXPECT_FALSE(kzb_assign(sampler->object, "Item", &*far, 1, &*value, &error));
    EXPECT_EQ(error.status, KZB_ERROR_EXCEPTION);
}

TEST_F(Call, CallsSharedMethods) {
    Value a = integer(20), b = integer(22);
    Arguments numbers(a, b);
    Value result;
    EXPECT_TRUE(kzb_call_shared("Sampler", "Add", numbers.data(), 2, result.receive(), &error)) << error.message;
    EXPECT_EQ(result->integer, 42);
    Value start = integer(5);
    EXPECT_TRUE(kzb_call_shared("sampler", "make", &*start, 1, result.receive(), &error)) << error.message;
    EXPECT_STREQ(kzb_class_name(result->object), "Sampler");
    EXPECT_FALSE(kzb_call_shared("Sampler", "Half", &*start, 1, nullptr, &error));
    EXPECT_STREQ(error.message, "Sampler.Half is a method of an object, not of the class");
    EXPECT_FALSE(kzb_call_shared("Samplr", "Add", nullptr, 0, nullptr, &error));
    EXPECT_STREQ(error.message, "there is no class Samplr; did you mean Sampler?");
    EXPECT_FALSE(kzb_call_shared("MemoryBlock", "Add", nullptr, 0, nullptr, &error));
    EXPECT_STREQ(error.message, "MemoryBlock has no shared method Add");
}

TEST_F(Call, NewRunsTheConstructorThatFits) {
    Value bytes = block(std::string(1, '\x05'));
    Value made = make(bytes, integer(30));
    Value count;
    EXPECT_TRUE(kzb_get(made->object, "Count", count.receive(), &error));
    EXPECT_EQ(count->integer, 35);
}

TEST_F(Call, NewWithoutArgumentsRunsNoConstructorWhereNoneTakesNone) {
    Value made = make();
    Value count;
    EXPECT_TRUE(kzb_get(made->object, "Count", count.receive(), &error));
    EXPECT_EQ(count->integer, 0);
}

TEST_F(Call, NewTellsItsMistakes) {
    size_t before = kzb_live_count("Sampler");
    Value words = text("x");
    Arguments wrong(words);
    EXPECT_FALSE(kzb_new("Sampler", wrong.data(), 1, &error));
    EXPECT_STREQ(error.message, "Sampler.Constructor, argument 1 (start as integer): an Integer from -2147483648 to "
                                "2147483647 is expected, a string came");
    EXPECT_FALSE(kzb_new("Source", wrong.data(), 1, &error));
    EXPECT_STREQ(error.message, "Source has no method Constructor");
    EXPECT_FALSE(kzb_new("Nonsense", nullptr, 0, &error));
    EXPECT_STREQ(error.message, "there is no class Nonsense");
    EXPECT_FALSE(kzb_new("MemoryBlock", nullptr, 0, &error));
    EXPECT_STREQ(error.message, "New makes no objects of class MemoryBlock");
    EXPECT_FALSE(kzb_new(nullptr, nullptr, 0, &error));
    Arguments raising(nil(), integer(1));
    EXPECT_FALSE(kzb_new("Sampler", raising.data(), 2, &error));
    EXPECT_EQ(error.status, KZB_ERROR_EXCEPTION);
    EXPECT_STREQ(error.message, "Block is nil");
    EXPECT_EQ(kzb_live_count("Sampler"), before);
}

} // namespace
