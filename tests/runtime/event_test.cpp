#include "host.h"

using namespace kzb_test;

namespace {

class Event : public SamplerTest {
protected:
    void SetUp() override {
        SamplerTest::SetUp();
        source = object(kzb_new("Source", nullptr, 0, &error));
        ASSERT_TRUE(source->object) << error.message;
    }
    void TearDown() override {
        source = nil();
        kzb_on_yield(nullptr, nullptr);
        kzb_clear_stop();
        SamplerTest::TearDown();
    }
    template <class Handler> int handle(const char *event, Handler *handler) {
        return kzb_handle_event(source->object, event, reinterpret_cast<KZBFunction>(handler), &error);
    }
    Value ask(const Value &object) {
        Value a = integer(12), b = number(0.5), result;
        kzb_value arguments[] = {*a, *b};
        EXPECT_TRUE(kzb_call(object->object, "Ask", arguments, 2, result.receive(), &error)) << error.message;
        return result;
    }

    Value source;
};

KZBObject seen_source;
int32_t seen_a;
double seen_b;

// A handler calls the module itself.
KZBObject supply(KZBObject source, int32_t a, double b) {
    seen_source = source;
    seen_a = a;
    seen_b = b;
    Value start = integer(a);
    return kzb_new("Sampler", &*start, 1, nullptr);
}

KZBObject supply_nothing(KZBObject, int32_t, double) {
    return nullptr;
}

TEST_F(Event, CallsTheHandlerOfItsObject) {
    EXPECT_EQ(ask(source)->kind, KZB_NIL);
    ASSERT_TRUE(handle("Supply", supply)) << error.message;
    Value supplied = ask(source), count;
    ASSERT_EQ(supplied->kind, KZB_OBJECT);
    EXPECT_EQ(seen_source, source->object);
    EXPECT_EQ(seen_a, 12);
    EXPECT_EQ(seen_b, 0.5);
    EXPECT_TRUE(kzb_get(supplied->object, "Count", count.receive(), &error));
    EXPECT_EQ(count->integer, 12);
    Value other = object(kzb_new("Source", nullptr, 0, &error));
    EXPECT_EQ(ask(other)->kind, KZB_NIL); // another object has no handler
}

TEST_F(Event, HandlersAreReplacedAndTakenAway) {
    EXPECT_TRUE(handle("supply", supply));
    EXPECT_TRUE(handle("Supply", supply_nothing));
    EXPECT_EQ(ask(source)->kind, KZB_NIL);
    EXPECT_TRUE(handle("Supply", supply));
    EXPECT_EQ(ask(source)->kind, KZB_OBJECT);
    EXPECT_TRUE(kzb_handle_event(source->object, "Supply", nullptr, &error));
    EXPECT_EQ(ask(source)->kind, KZB_NIL);
}

TEST_F(Event, TellsWhatIsWrong) {
    EXPECT_FALSE(handle("Suply", supply));
    EXPECT_STREQ(error.message, "Source has no event Suply; did you mean Supply?");
    EXPECT_FALSE(kzb_handle_event(sampler->object, "Supply", nullptr, &error));
    EXPECT_STREQ(error.message, "Sampler has no event Supply");
    EXPECT_FALSE(kzb_handle_event(nullptr, "Supply", nullptr, &error));
    EXPECT_STREQ(error.message, "Supply is an event of an object, not of nil");
    EXPECT_FALSE(kzb_handle_event(source->object, nullptr, nullptr, &error));
    Value bytes = block("x");
    EXPECT_FALSE(kzb_handle_event(bytes->object, "Supply", nullptr, &error));
    EXPECT_STREQ(error.message, "MemoryBlock has no event Supply");
}

TEST_F(Event, YieldsAreCountedAndCalledBack) {
    uint64_t before = kzb_yield_count();
    call("Yield");
    EXPECT_EQ(kzb_yield_count(), before + 1);
    int calls = 0;
    kzb_on_yield([](void *context) -> int { return ++*static_cast<int *>(context) < 3; }, &calls);
    call("Yield");
    call("Yield");
    EXPECT_FALSE(kzb_stop_requested());
    call("Yield");
    EXPECT_TRUE(kzb_stop_requested());
    EXPECT_EQ(calls, 3);
    kzb_on_yield(nullptr, nullptr);
    call("Yield");
    EXPECT_TRUE(kzb_stop_requested()); // remembered until cleared
    kzb_clear_stop();
    EXPECT_FALSE(kzb_stop_requested());
    EXPECT_EQ(kzb_yield_count(), before + 5);
}

size_t alive_during_call = 0;

TEST_F(Event, TheObjectOfACallOutlivesIt) {
    kzb_on_yield(
        [](void *mine) {
            *static_cast<Value *>(mine) = nil();
            alive_during_call = kzb_live_count("Sampler");
            return 1;
        },
        &sampler);
    EXPECT_TRUE(kzb_call(sampler->object, "Yield", nullptr, 0, nullptr, &error)) << error.message;
    EXPECT_EQ(alive_during_call, 1U);
    EXPECT_EQ(kzb_live_count("Sampler"), 0U);
}

} // namespace
