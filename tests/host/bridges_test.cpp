// Strings, memory blocks and exceptions from plain bytes, on a host that records what it is asked for.

#include "host/bridges.h"

#include "host/entry_points.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace kzb {
namespace {

std::vector<std::string> calls;
KZBStringRecord built = {}, converted = {};
bool strings_fail = false, blocks_fail = false, bytes_fail = false, exceptions_fail = false;
uint8_t block_bytes[16];

void *const an_object = &built;

KZBString build(const void *bytes, int32_t count) {
    calls.push_back("build " + std::string(static_cast<const char *>(bytes), static_cast<size_t>(count)));
    return strings_fail ? nullptr : &built;
}
void tag(KZBString, uint32_t encoding) { calls.push_back("tag " + std::to_string(encoding)); }
KZBString convert(KZBString, uint32_t encoding) {
    calls.push_back("convert " + std::to_string(encoding));
    return &converted;
}
void release_string(KZBString string) { calls.push_back(string == &built ? "release built" : "release other"); }
KZBMemoryBlock new_block(int32_t size) {
    calls.push_back("block " + std::to_string(size));
    return blocks_fail ? nullptr : static_cast<KZBMemoryBlock>(an_object);
}
void *bytes_of(KZBMemoryBlock) { return bytes_fail ? nullptr : block_bytes; }
void unlock(KZBObject) { calls.push_back("unlock"); }
KZBObject new_instance(const char *name) {
    calls.push_back(std::string("new ") + name);
    return exceptions_fail ? nullptr : static_cast<KZBObject>(an_object);
}
void raise_exception(KZBObject exception) { calls.push_back(exception == nullptr ? "raise nil" : "raise"); }
KZBBoolean set_string(KZBObject, const char *property, KZBString string) {
    calls.push_back(std::string("set ") + property + (string == nullptr ? " nil" : ""));
    return 1;
}

void *host(const char *name) {
    const struct {
        const char *name;
        void *address;
    } entries[] = {{"REALBuildString", reinterpret_cast<void *>(build)},
                   {"REALSetStringEncoding", reinterpret_cast<void *>(tag)},
                   {"REALConvertString", reinterpret_cast<void *>(convert)},
                   {"REALUnlockString", reinterpret_cast<void *>(release_string)},
                   {"newMemoryBlock", reinterpret_cast<void *>(new_block)},
                   {"memoryBlockGetPtr", reinterpret_cast<void *>(bytes_of)},
                   {"REALUnlockObject", reinterpret_cast<void *>(unlock)},
                   {"PluginNewInstance", reinterpret_cast<void *>(new_instance)},
                   {"RuntimeRaiseException", reinterpret_cast<void *>(raise_exception)},
                   {"REALSetPropValueString", reinterpret_cast<void *>(set_string)}};
    for (const auto &entry : entries)
        if (std::strcmp(entry.name, name) == 0) return entry.address;
    return nullptr;
}

class Bridges : public testing::Test {
protected:
    void SetUp() override {
        set_resolver(host);
        calls.clear();
        strings_fail = blocks_fail = bytes_fail = exceptions_fail = false;
        std::memset(block_bytes, 0, sizeof block_bytes);
    }
    using Calls = std::vector<std::string>;
};

TEST_F(Bridges, NoBytesMakeNoString) {
    EXPECT_EQ(make_string("abc", 0, KZB_ENCODING_ASCII), nullptr);
    EXPECT_EQ(make_string(nullptr, 3, KZB_ENCODING_ASCII), nullptr);
    EXPECT_EQ(calls, Calls{});
}

TEST_F(Bridges, AStringIsTaggedAndNotConverted) {
    EXPECT_EQ(make_string("abc", 2, KZB_ENCODING_ASCII), &built);
    EXPECT_EQ(calls, (Calls{"build ab", "tag 1536"}));
}

TEST_F(Bridges, WideStringsAreConvertedToUtf8AndReleased) {
    for (uint32_t encoding : {KZB_ENCODING_UTF16, KZB_ENCODING_UTF32}) {
        calls.clear();
        EXPECT_EQ(make_string("abcd", 4, encoding), &converted);
        EXPECT_EQ(calls, (Calls{"build abcd", "tag " + std::to_string(encoding), "convert 134217984", "release built"}));
    }
}

TEST_F(Bridges, AStringThatTheHostCannotMakeIsNil) {
    strings_fail = true;
    EXPECT_EQ(make_string("abc", 3, KZB_ENCODING_ASCII), nullptr);
    EXPECT_EQ(make_string("abcd", 4, KZB_ENCODING_UTF16), nullptr);
    EXPECT_EQ(calls, (Calls{"build abc", "build abcd"}));
}

TEST_F(Bridges, ABlockHoldsACopy) {
    EXPECT_EQ(make_memory_block("abc", 3), static_cast<KZBMemoryBlock>(an_object));
    EXPECT_EQ(std::memcmp(block_bytes, "abc", 4), 0);
    EXPECT_EQ(calls, (Calls{"block 3"}));
}

TEST_F(Bridges, NoBytesMakeNoBlock) {
    EXPECT_EQ(make_memory_block("abc", 0), nullptr);
    EXPECT_EQ(make_memory_block("abc", -1), nullptr);
    EXPECT_EQ(make_memory_block(nullptr, 3), nullptr);
    EXPECT_EQ(calls, Calls{});
}

TEST_F(Bridges, ABlockWithoutBytesIsReleased) {
    bytes_fail = true;
    EXPECT_EQ(make_memory_block("abc", 3), nullptr);
    EXPECT_EQ(calls, (Calls{"block 3", "unlock"}));
    blocks_fail = true;
    calls.clear();
    EXPECT_EQ(make_memory_block("abc", 3), nullptr);
    EXPECT_EQ(calls, Calls{"block 3"});
}

TEST_F(Bridges, AnExceptionIsRaisedBeforeItsMessageIsSet) {
    raise_out_of_bounds("text");
    EXPECT_EQ(calls, (Calls{"new OutOfBoundsException", "build text", "tag 1536", "raise", "set Message", "release built"}));
    calls.clear();
    raise_nil_object("text");
    EXPECT_EQ(calls.front(), "new NilObjectException");
}

TEST_F(Bridges, ANilMessageIsSetAsEmpty) {
    raise_out_of_bounds(nullptr);
    EXPECT_EQ(calls, (Calls{"new OutOfBoundsException", "raise", "set Message nil"}));
}

TEST_F(Bridges, AnExceptionThatCannotBeMadeIsRaisedAsNil) {
    exceptions_fail = true;
    raise_nil_object("text");
    EXPECT_EQ(calls, (Calls{"new NilObjectException", "build text", "tag 1536", "raise nil", "set Message", "release built"}));
}

int lookups = 0;
void *lacking(const char *) {
    ++lookups;
    return nullptr;
}

TEST(EntryPoints, WithoutAHostThereAreNone) {
    set_resolver(nullptr);
    EXPECT_EQ(resolve("REALLockObject"), nullptr);
    EntryPoint<int32_t(KZBArray)> missing("RuntimeUBound");
    EXPECT_FALSE(missing.offered());
    EXPECT_EQ(missing(nullptr), 0);
}

TEST(EntryPoints, OneThatTheHostLacksGivesZeroAndIsAskedForAgain) {
    set_resolver(lacking);
    lookups = 0;
    EntryPoint<int32_t(KZBArray)> missing("RuntimeUBound");
    EXPECT_EQ(missing(nullptr), 0);
    EXPECT_EQ(missing(nullptr), 0);
    EXPECT_EQ(lookups, 2);
    EntryPoint<void(KZBObject)> nothing("REALLockObject");
    nothing(nullptr);
    EXPECT_EQ(lookups, 3);
}

int32_t seven(KZBArray) { return 7; }
void *offering(const char *) {
    ++lookups;
    return reinterpret_cast<void *>(seven);
}

TEST(EntryPoints, OneThatTheHostHasIsLookedUpOnce) {
    set_resolver(offering);
    lookups = 0;
    EntryPoint<int32_t(KZBArray)> found("RuntimeUBound");
    EXPECT_EQ(found(nullptr), 7);
    EXPECT_EQ(found(nullptr), 7);
    EXPECT_EQ(lookups, 1);
}

} // namespace
} // namespace kzb
