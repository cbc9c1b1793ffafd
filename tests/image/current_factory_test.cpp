// The process's factory being replaced, on a host that records what becomes of the references.

#include "host/entry_points.h"
#include "image/factory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace kzb {
namespace {

using Calls = std::vector<std::string>;

Calls calls;
uint8_t first_object, second_object, third_object;
FactoryObject const first = reinterpret_cast<FactoryObject>(&first_object);
FactoryObject const second = reinterpret_cast<FactoryObject>(&second_object);
FactoryObject const third = reinterpret_cast<FactoryObject>(&third_object);
FactoryObject set_by_user_code = nullptr; // by what runs when the first is dropped

std::string name_of(KZBObject object) {
    return object == as_object(first) ? "first" : object == as_object(second) ? "second" : "third";
}

void lock(KZBObject object) {
    calls.push_back("lock " + name_of(object));
}
void unlock(KZBObject object) {
    calls.push_back("unlock " + name_of(object));
    if (object == as_object(first) && set_by_user_code != nullptr) set_factory(set_by_user_code);
}

void *host(const char *name) {
    if (std::strcmp(name, "REALLockObject") == 0) return reinterpret_cast<void *>(lock);
    if (std::strcmp(name, "REALUnlockObject") == 0) return reinterpret_cast<void *>(unlock);
    return nullptr;
}

class CurrentFactory : public testing::Test {
protected:
    void SetUp() override {
        set_resolver(host);
        set_by_user_code = nullptr;
        set_factory(first);
        calls.clear();
    }
    void TearDown() override {
        set_by_user_code = nullptr;
        set_factory(nullptr);
    }
};

TEST_F(CurrentFactory, IsDroppedBeforeTheNextIsHeld) {
    set_factory(second);
    EXPECT_EQ(calls, (Calls{"unlock first", "lock second"}));
}

TEST_F(CurrentFactory, IsDroppedAndHeldAgainWhenItIsSetAgain) {
    set_factory(first);
    EXPECT_EQ(calls, (Calls{"unlock first", "lock first"}));
}

TEST_F(CurrentFactory, IsDroppedOnceWhenNoneFollows) {
    set_factory(nullptr);
    set_factory(nullptr);
    EXPECT_EQ(calls, (Calls{"unlock first"}));
}

TEST_F(CurrentFactory, ReplacesWhatUserCodeSetsWhileTheOldOneGoes) {
    set_by_user_code = third;
    set_factory(second);
    EXPECT_EQ(calls, (Calls{"unlock first", "lock third", "lock second", "unlock third"}));
    calls.clear();
    set_factory(nullptr);
    EXPECT_EQ(calls, (Calls{"unlock second"}));
}

} // namespace
} // namespace kzb
