#include "host.h"

using namespace kzb_test;

namespace {

class Exception : public SamplerTest {
protected:
    void TearDown() override {
        kzb_on_yield(nullptr, nullptr);
        SamplerTest::TearDown();
    }

    std::string exception(const char *method, const Arguments &arguments = Arguments()) {
        std::string message = mistake_with(method, arguments, KZB_ERROR_EXCEPTION);
        return std::string(error.exception) + ": " + message;
    }
};

TEST_F(Exception, CarriesTheMessageThatWasSetAfterRaising) {
    Value far = integer(4);
    EXPECT_EQ(exception("Item", Arguments(far)), "OutOfBoundsException: Index is out of bounds.");
    EXPECT_EQ(kzb_live_count("OutOfBoundsException"), 0U);
}

TEST_F(Exception, TheFirstOfTwoIsDelivered) {
    EXPECT_EQ(exception("RaiseTwo"), "NilObjectException: first"); // and the result is released
    EXPECT_EQ(kzb_live_count("OutOfBoundsException"), 0U);
    EXPECT_EQ(kzb_live_count("NilObjectException"), 0U);
}

TEST_F(Exception, WithoutAMessageHasAnEmptyOne) {
    EXPECT_EQ(exception("RaiseSilently"), "OutOfBoundsException: ");
}

TEST_F(Exception, ThatIsNilIsNotRaised) {
    call("RaiseNil");
}

TEST_F(Exception, MayBeRaisedAgain) {
    EXPECT_EQ(exception("RaiseAgain"), "RuntimeException: ");
}

TEST_F(Exception, OfAnotherClassIsAMisuse) {
    call("RaiseObject");
    expected_misuses = {"RuntimeRaiseException was given an object of class Sampler, which is no exception"};
}

TEST_F(Exception, IsNotRaisedOutsideOfMethods) {
    Value made = object(kzb_new("RuntimeException", nullptr, 0, &error));
    reinterpret_cast<RuntimeRaiseExceptionFunction *>(kzb_host_entry("RuntimeRaiseException"))(made->object);
    expected_misuses = {"RuntimeRaiseException was called while no method runs"};
}

TEST_F(Exception, MessagesAreGivenInUtf8) {
    std::u16string wide = u"Größe €";
    Value utf16 = text(std::string(reinterpret_cast<const char *>(wide.data()), 2 * wide.size()), KZB_ENCODING_UTF16);
    EXPECT_EQ(exception("RaiseMessage", Arguments(utf16)), "RuntimeException: Größe €");
    Value ascii = text("caf\xE9", KZB_ENCODING_ASCII), raw = text("caf\xE9", KZB_ENCODING_UNKNOWN);
    EXPECT_EQ(exception("RaiseMessage", Arguments(ascii)), "RuntimeException: caf?");
    EXPECT_EQ(exception("RaiseMessage", Arguments(raw)), "RuntimeException: caf?");
    Value lines = text("two\nlines");
    EXPECT_EQ(exception("RaiseMessage", Arguments(lines)), "RuntimeException: two lines");
}

TEST_F(Exception, LongMessagesAreCutAtACharacter) {
    for (size_t lead : {1020, 1021, 1022, 1023}) {
        Value message = text(std::string(lead, 'a') + "€€");
        exception("RaiseMessage", Arguments(message));
        EXPECT_EQ(std::string(error.message), std::string(lead, 'a') + (lead == 1020 ? "€" : ""));
    }
}

KZBObject nested = nullptr;
std::string nested_result;

TEST_F(Exception, NestedCallsKeepTheirsApart) {
    nested = sampler->object;
    kzb_on_yield(
        [](void *) {
            kzb_error inner = {};
            Value far = integer(-1);
            int done = kzb_call(nested, "Item", &*far, 1, nullptr, &inner);
            nested_result = std::to_string(done) + " " + inner.exception + ": " + inner.message;
            Value near = integer(1);
            nested_result += kzb_call(nested, "Item", &*near, 1, nullptr, &inner) ? ", then well" : ", then not";
            return 1;
        },
        nullptr);
    EXPECT_EQ(exception("RaiseAndYield"), "NilObjectException: outer");
    EXPECT_EQ(nested_result, "0 OutOfBoundsException: Index is out of bounds., then well");
}

} // namespace
