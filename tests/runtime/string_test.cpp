#include "host.h"
#include <string_view>

using namespace kzb_test;

namespace {

using String = SamplerTest;

template <class Character> std::string bytes(std::basic_string_view<Character> characters) {
    return {reinterpret_cast<const char *>(characters.data()), characters.size() * sizeof(Character)};
}

constexpr std::string_view utf8 = "aß€𝄞";
constexpr std::u16string_view utf16 = u"aß€𝄞";
constexpr std::u32string_view utf32 = U"aß€𝄞";

TEST_F(String, KeepsItsBytes) {
    std::string with_nul("a\0b", 3);
    Value string = text(with_nul, KZB_ENCODING_UNKNOWN);
    EXPECT_EQ(string->string->length, 3);
    EXPECT_EQ(string->string->reference_count, 1);
    EXPECT_EQ(string->string->encoding, 0xFFFF);
    EXPECT_EQ(string.text(), with_nul);
    EXPECT_EQ(string->string->text[3], 0);
    EXPECT_EQ(kzb_live_count("string"), 1U);
    kzb_retain(&*string);
    EXPECT_EQ(string->string->reference_count, 2);
    kzb_value second = *string;
    kzb_release(&second);
    EXPECT_EQ(second.kind, KZB_NIL);
}

TEST_F(String, MayBeEmpty) {
    Value empty = text("");
    ASSERT_TRUE(empty->string);
    EXPECT_EQ(empty->string->length, 0);
    EXPECT_EQ(empty->string->text[0], 0);
    EXPECT_EQ(call("Doubled", nil()).text(), "");
    EXPECT_EQ(kzb_string_new(nullptr, 4, KZB_ENCODING_UTF8), nullptr);
}

TEST_F(String, IsBuiltByModules) {
    auto build = reinterpret_cast<REALBuildStringFunction *>(kzb_host_entry("REALBuildString"));
    EXPECT_EQ(build("abc", -1), nullptr);
    EXPECT_EQ(build(nullptr, 1), nullptr);
    KZBString string = build("abc", 2);
    ASSERT_TRUE(string);
    EXPECT_EQ(string->length, 2);
    EXPECT_STREQ(string->text, "ab");
    reinterpret_cast<REALSetStringEncodingFunction *>(kzb_host_entry("REALSetStringEncoding"))(string, 0x08000100);
    EXPECT_EQ(string->encoding, 0x08000100);
    reinterpret_cast<REALUnlockStringFunction *>(kzb_host_entry("REALUnlockString"))(string);
}

TEST_F(String, IsConvertedBetweenTheEncodings) {
    struct Form {
        uint32_t encoding;
        std::string bytes;
    };
    const Form forms[] = {
        {KZB_ENCODING_UTF8, std::string(utf8)}, {KZB_ENCODING_UTF16, bytes(utf16)}, {KZB_ENCODING_UTF32, bytes(utf32)}};
    for (const Form &from : forms)
        for (const Form &to : forms) {
            Value converted = call("Convert", text(from.bytes, from.encoding), integer(to.encoding));
            EXPECT_EQ(converted.text(), to.bytes) << std::hex << from.encoding << " to " << to.encoding;
            EXPECT_EQ(static_cast<uint32_t>(converted->string->encoding), to.encoding);
        }
    EXPECT_EQ(call("Convert", text("ab", KZB_ENCODING_ASCII), integer(KZB_ENCODING_UTF16)).text(),
              bytes(std::u16string_view(u"ab")));
    EXPECT_EQ(call("Convert", text("ab"), integer(KZB_ENCODING_ASCII)).text(), "ab");
}

TEST_F(String, ConvertsLongText) {
    std::string many;
    std::u16string wide;
    for (int i = 0; i < 5000; ++i) many += "€", wide += u"€";
    EXPECT_EQ(call("Convert", text(many), integer(KZB_ENCODING_UTF16)).text(), bytes(std::u16string_view(wide)));
    EXPECT_EQ(call("Convert", text(""), integer(KZB_ENCODING_UTF16)).text(), "");
}

TEST_F(String, ByteOrderMarksAreHeeded) {
    EXPECT_EQ(
        call("Convert", text(bytes(std::u16string_view(u"\uFEFFab")), KZB_ENCODING_UTF16), integer(KZB_ENCODING_UTF8))
            .text(),
        "ab");
    EXPECT_EQ(call("Convert", text(bytes(std::u16string_view(u"\uFFFE\u6100\u6200")), KZB_ENCODING_UTF16),
                   integer(KZB_ENCODING_UTF8))
                  .text(),
              "ab");
    const char32_t swapped[] = {0xFFFE0000, 0x61000000};
    EXPECT_EQ(
        call("Convert", text(bytes(std::u32string_view(swapped, 2)), KZB_ENCODING_UTF32), integer(KZB_ENCODING_UTF8))
            .text(),
        "a");
}

TEST_F(String, RawBytesAreOnlyTaggedAnew) {
    Value raw = call("Convert", text("\xFF\xFE\x80", KZB_ENCODING_UNKNOWN), integer(KZB_ENCODING_UTF8));
    EXPECT_EQ(raw.text(), "\xFF\xFE\x80");
    EXPECT_EQ(raw->string->encoding, 0x08000100);
    EXPECT_EQ(call("Convert", text("\xFF", KZB_ENCODING_UTF8), integer(0xFFFF)).text(), "\xFF");
}

TEST_F(String, ThatCannotBeConvertedGivesNil) {
    EXPECT_EQ(call("Convert", text("\xFF\xFE"), integer(KZB_ENCODING_UTF16))->string, nullptr);  // no UTF-8
    EXPECT_EQ(call("Convert", text("a\xE2\x82"), integer(KZB_ENCODING_UTF16))->string, nullptr); // cut off
    EXPECT_EQ(call("Convert", text("abc", KZB_ENCODING_UTF16), integer(KZB_ENCODING_UTF8))->string, nullptr);
    EXPECT_EQ(call("Convert", text("€"), integer(KZB_ENCODING_ASCII))->string, nullptr); // does not fit
    EXPECT_EQ(call("Convert", text("\xE9", KZB_ENCODING_ASCII), integer(KZB_ENCODING_UTF8))->string, nullptr);
    EXPECT_EQ(call("Convert", text("a"), integer(0x0201))->string, nullptr); // not known
    EXPECT_EQ(call("Convert", nil(), integer(KZB_ENCODING_UTF8))->string, nullptr);
}

} // namespace
