#include "host.h"
#include <cmath>

using namespace kzb_test;

namespace {

class Property : public SamplerTest {
protected:
    std::string get_mistake(const char *property) {
        Value result;
        EXPECT_FALSE(kzb_get(sampler->object, property, result.receive(), &error));
        EXPECT_EQ(error.status, KZB_ERROR_USAGE);
        return error.message;
    }
    std::string set_mistake(const char *property, const Value &value) {
        EXPECT_FALSE(kzb_set(sampler->object, property, &*value, &error));
        EXPECT_EQ(error.status, KZB_ERROR_USAGE);
        return error.message;
    }
    int32_t destroyed() {
        Value result;
        EXPECT_TRUE(kzb_call_shared("Sampler", "Destroyed", nullptr, 0, result.receive(), &error));
        return static_cast<int32_t>(result->integer);
    }
};

TEST_F(Property, IsReadAndWrittenDirectlyByItsType) {
    set("Count", integer(-123456789));
    set("Flag", boolean(1));
    set("Big", integer(INT64_C(0x123456789ABCDEF)));
    set("Ratio", number(-0.1));
    set("Tint", color(0xABCDEF));
    EXPECT_EQ(get("Count")->integer, -123456789);
    EXPECT_EQ(get("Flag")->kind, KZB_BOOLEAN);
    EXPECT_EQ(get("Flag")->integer, 1);
    EXPECT_EQ(get("Big")->integer, INT64_C(0x123456789ABCDEF));
    EXPECT_EQ(get("Ratio")->number, -0.1);
    EXPECT_EQ(get("Tint")->kind, KZB_COLOR);
    EXPECT_EQ(get("Tint")->integer, 0xABCDEF);
    set("Flag", boolean(0)); // leaves its neighbours alone
    EXPECT_EQ(get("Count")->integer, -123456789);
    EXPECT_EQ(get("Big")->integer, INT64_C(0x123456789ABCDEF));
}

TEST_F(Property, BeginsAsZero) {
    sampler = make();
    EXPECT_EQ(get("Count")->integer, 0);
    EXPECT_EQ(get("Flag")->integer, 0);
    EXPECT_EQ(get("Big")->integer, 0);
    EXPECT_EQ(get("Ratio")->number, 0);
    EXPECT_FALSE(std::signbit(get("Ratio")->number));
    EXPECT_EQ(get("Other")->kind, KZB_NIL);
    EXPECT_EQ(get("Label")->string, nullptr);
}

TEST_F(Property, IsComputedByFunctions) {
    set("Computed", integer(1234));
    EXPECT_EQ(get("Computed")->integer, 1234);
    EXPECT_EQ(get("Title").text(), "title 7");
    EXPECT_EQ(get("TotalSize")->integer, INT64_C(0x123456789AB));
    EXPECT_EQ(get("Exact")->number, 0.75);
    set("Secret", integer(99));
    EXPECT_EQ(get("Known")->integer, 99);
}

TEST_F(Property, OfAMemoryBlockRefersToTheBytesThemselves) {
    Value memory = get("memory");
    size_t count = 77;
    void *bytes = kzb_block_bytes(reinterpret_cast<KZBMemoryBlock>(memory->object), &count);
    EXPECT_EQ(count, 0U);
    static_cast<int32_t *>(bytes)[3] = 0x1234;
    EXPECT_EQ(call("Item", integer(3))->integer, 0x1234);
}

TEST_F(Property, GettersAndSettersRaise) {
    Value below = integer(-1);
    EXPECT_FALSE(kzb_set(sampler->object, "Computed", &*below, &error));
    EXPECT_EQ(error.status, KZB_ERROR_EXCEPTION);
    EXPECT_STREQ(error.exception, "OutOfBoundsException");
    EXPECT_STREQ(error.message, "Computed is negative");
}

TEST_F(Property, TellsWhatCannotBeDone) {
    EXPECT_EQ(get_mistake("Secret"), "Sampler.Secret cannot be read");
    EXPECT_EQ(set_mistake("Known", integer(1)), "Sampler.Known cannot be assigned to");
    EXPECT_EQ(set_mistake("Title", text("x")), "Sampler.Title cannot be assigned to");
    EXPECT_EQ(get_mistake("Cont"), "Sampler has no property Cont; did you mean Count?");
    EXPECT_EQ(set_mistake("Qwertyuiop", integer(1)), "Sampler has no property Qwertyuiop");
    EXPECT_EQ(get_mistake("Half"), "Sampler.Half is a method, not a property");
    EXPECT_EQ(set_mistake("count", text("x")),
              "Sampler.Count: an Integer from -2147483648 to 2147483647 is expected, a string came");
    EXPECT_EQ(set_mistake("Count", integer(INT64_C(1) << 32)),
              "Sampler.Count: an Integer from -2147483648 to 2147483647 is expected, the integer 4294967296 came");
    EXPECT_EQ(set_mistake("Other", block("x")), "Sampler.Other: a Sampler or nil is expected, a MemoryBlock came");
    EXPECT_EQ(set_mistake("Flag", integer(2)), "Sampler.Flag: a Boolean is expected, the integer 2 came");
    EXPECT_FALSE(kzb_get(nullptr, "Count", nullptr, &error));
    EXPECT_STREQ(error.message, "Count is a property of an object, not of nil");
    EXPECT_FALSE(kzb_get(sampler->object, nullptr, nullptr, &error));
    EXPECT_FALSE(kzb_set(sampler->object, "Count", nullptr, &error));
    EXPECT_STREQ(error.message, "Count: there is no value to assign");
}

TEST_F(Property, DirectAssignmentTakesTheNewAndDropsTheOldReference) {
    int32_t before = destroyed();
    {
        Value first = make(integer(1)), second = make(integer(2));
        set("Other", first);
        set("Other", second);
    }
    EXPECT_EQ(destroyed(), before + 1); // the first
    EXPECT_EQ(kzb_live_count("Sampler"), 2U);
    {
        Value other = get("Other"), count;
        EXPECT_TRUE(kzb_get(other->object, "Count", count.receive(), &error));
        EXPECT_EQ(count->integer, 2);
    }
    set("Other", nil());
    EXPECT_EQ(destroyed(), before + 2);
    EXPECT_EQ(get("Other")->kind, KZB_NIL);
}

TEST_F(Property, AnAssignedReferenceIsDroppedAfterTheDestructor) {
    int32_t before = destroyed();
    set("Other", make(integer(1)));
    set("Label", text("label"));
    EXPECT_EQ(kzb_live_count("String"), 1U);
    sampler = nil();
    EXPECT_EQ(destroyed(), before + 2);
    EXPECT_EQ(kzb_live_count(nullptr), 0U);
}

TEST_F(Property, AnAssignedReferenceThatIsGoneFromItsPlaceIsNotDropped) {
    Value other = make(integer(1));
    set("Other", other);
    call("ForgetOther"); // the module has it now
    size_t references = kzb_live_references();
    sampler = nil();
    EXPECT_EQ(kzb_live_references(), references - 1);
    kzb_value extra = *other;
    kzb_release(&extra);
}

TEST_F(Property, AReferenceThatTheModulePutInItsPlaceIsNotDropped) {
    Value other = make(integer(1));
    set("Other", make(integer(2)));
    call("AdoptOther", other);
    EXPECT_EQ(kzb_live_count("Sampler"), 2U);
    sampler = nil();
    EXPECT_EQ(kzb_live_count("Sampler"), 1U);
}

TEST_F(Property, AssigningAnObjectToItselfKeepsIt) {
    set("Other", make(integer(3)));
    Value other = get("Other");
    set("Other", other);
    set("Other", other);
    other = nil();
    EXPECT_EQ(kzb_live_count("Sampler"), 2U);
}

TEST_F(Property, OfHostObjectsIsReadByName) {
    Value bytes = block("12345"), size;
    EXPECT_TRUE(kzb_get(bytes->object, "size", size.receive(), &error)) << error.message;
    EXPECT_EQ(size->integer, 5);
    EXPECT_FALSE(kzb_get(bytes->object, "Sizes", nullptr, &error));
    EXPECT_STREQ(error.message, "MemoryBlock has no property Sizes; did you mean Size?");
    EXPECT_FALSE(kzb_set(bytes->object, "Size", &*size, &error));
    EXPECT_STREQ(error.message, "MemoryBlock.Size cannot be assigned to");
}

TEST_F(Property, OfExceptionsCanBeSet) {
    Value exception = object(kzb_new("RuntimeException", nullptr, 0, &error)), message;
    ASSERT_TRUE(exception->object) << error.message;
    for (const char *words : {"first", "second"}) {
        Value given = text(words);
        EXPECT_TRUE(kzb_set(exception->object, "Message", &*given, &error)) << error.message;
        EXPECT_TRUE(kzb_get(exception->object, "Message", message.receive(), &error));
        EXPECT_EQ(message.text(), words);
    }
    Value wrong = integer(1);
    EXPECT_FALSE(kzb_set(exception->object, "Message", &*wrong, &error));
    EXPECT_STREQ(error.message, "RuntimeException.Message: a String is expected, the integer 1 came");
}

TEST_F(Property, IsReachedByModulesByName) {
    EXPECT_EQ(call("IntegerProperty", block("123"), text("Size"))->integer, 3);
    EXPECT_EQ(call("IntegerProperty", block("123"), text("Width"))->integer, -78);
    EXPECT_EQ(call("IntegerProperty", sampler, text("Count"))->integer, 7);
    EXPECT_EQ(call("IntegerProperty", sampler, text("Ratio"))->integer, -78);     // no integer
    EXPECT_EQ(call("IntegerProperty", sampler, text("TotalSize"))->integer, -78); // too large for one
    Value none = nil();
    EXPECT_EQ(call("SetStringProperty", sampler, text("Label"), text("given"))->integer, 1);
    EXPECT_EQ(get("Label").text(), "given");
    EXPECT_EQ(call("SetStringProperty", sampler, text("Title"), text("given"))->integer, 0);
    EXPECT_EQ(call("SetStringProperty", none, text("Label"), text("given"))->integer, 0);
}

TEST_F(Property, ConstantsAreFoundByName) {
    auto constant = [&](const char *name) {
        int64_t value = -77;
        EXPECT_TRUE(kzb_constant("Sampler", name, &value, &error)) << error.message;
        return value;
    };
    EXPECT_EQ(constant("Zero"), 0);
    EXPECT_EQ(constant("ten"), 10);
    EXPECT_EQ(constant("Minus"), -1);
    EXPECT_EQ(constant("Below"), -15);
    EXPECT_FALSE(kzb_constant("Sampler", "Zer", nullptr, &error));
    EXPECT_STREQ(error.message, "Sampler has no constant Zer; did you mean Zero?");
    EXPECT_FALSE(kzb_constant("Source", "Zero", nullptr, &error));
    EXPECT_STREQ(error.message, "Source has no constant Zero");
    EXPECT_FALSE(kzb_constant("Sampler", nullptr, nullptr, &error));
    EXPECT_FALSE(kzb_constant(nullptr, "Zero", nullptr, &error));
    EXPECT_STREQ(error.message, "the class's name is nil");
}

TEST_F(Property, MethodsAreFoundByTheirDeclaration) {
    EXPECT_EQ(call("FindsMethod", text("Negated(value as boolean) as boolean"))->integer, 1);
    EXPECT_EQ(call("FindsMethod", text("negated( value  as Boolean ) as Boolean"))->integer, 1);
    EXPECT_EQ(call("FindsMethod", text("Negated(value as boolean)"))->integer, 0);
}

} // namespace
