#include "host.h"

using namespace kzb_test;

namespace {

using Audit = SamplerTest;

TEST_F(Audit, CountsWhatIsAlive) {
    EXPECT_EQ(kzb_live_count("sampler"), 1U);
    EXPECT_EQ(kzb_live_count("MemoryBlock"), 0U);
    size_t all = kzb_live_count(nullptr), references = kzb_live_references();
    Value bytes = block("x"), words = text("x"), numbers = array({1}), item = object(kzb_folder_item_new("/"));
    EXPECT_EQ(kzb_live_count(nullptr), all + 4);
    EXPECT_EQ(kzb_live_references(), references + 4);
    EXPECT_EQ(kzb_live_count("MemoryBlock"), 1U);
    EXPECT_EQ(kzb_live_count("FolderItem"), 1U);
    EXPECT_EQ(kzb_live_count("Array"), 1U);
    EXPECT_EQ(kzb_live_count("String"), 1U);
    EXPECT_EQ(kzb_live_count("Nonsense"), 0U);
    kzb_retain(&*numbers);
    EXPECT_EQ(kzb_live_references(), references + 5);
    kzb_value second = *numbers;
    kzb_release(&second);
    EXPECT_EQ(kzb_live_references(), references + 4);
}

TEST_F(Audit, NamesTheClassOfAnObject) {
    EXPECT_STREQ(kzb_class_name(sampler->object), "Sampler");
    EXPECT_STREQ(kzb_class_name(nullptr), "nil");
}

TEST_F(Audit, ReportsAReleaseTooMany) {
    call("ReleaseBlockTwice");
    call("ReleaseStringTwice");
    expected_misuses = {"REALUnlockObject was given a released MemoryBlock",
                        "REALUnlockString was given a released String"};
}

TEST_F(Audit, ReportsAUseAfterTheRelease) {
    call("UseReleasedBlock");
    Value result;
    EXPECT_EQ(call("ReleasedResult")->kind, KZB_NIL);
    expected_misuses = {"memoryBlockGetPtr was given a released MemoryBlock",
                        "ReleasedResult was given a released String"};
}

TEST_F(Audit, ReportsAnObjectOfTheWrongClass) {
    call("TakeBlockForArray", block("x"));
    call("ReleaseStringAsObject");
    expected_misuses = {"RuntimeUBound was given an object of class MemoryBlock, but needs one of class Array",
                        "REALUnlockObject was given a string, but needs an object"};
}

TEST_F(Audit, ReportsWhatIsNoReferenceAtAll) {
    int64_t number[8] = {};
    reinterpret_cast<REALLockObjectFunction *>(kzb_host_entry("REALLockObject"))(reinterpret_cast<KZBObject>(number));
    ASSERT_EQ(misuses.size(), 1U);
    EXPECT_EQ(misuses[0].rfind("REALLockObject was given 0x", 0), 0U);
    EXPECT_NE(misuses[0].find("which is no object"), std::string::npos);
    expected_misuses = misuses;
}

TEST_F(Audit, ReportsAWriteAfterTheRelease) {
    call("WriteToReleased");
    EXPECT_TRUE(misuses.empty());
    for (int i = 0; i < 5000; ++i) block("x"); // until the record is let go
    expected_misuses = {"a released String was written to"};
}

TEST_F(Audit, LooksForWritesAfterTheReleaseWhenAModuleIsUnloaded) {
    call("WriteToReleased");
    expected_misuses = {"a released String was written to"};
}

TEST_F(Audit, ReportsADestructorThatKeepsItsObject) {
    call("KeepItself");
    sampler = nil();
    EXPECT_EQ(kzb_live_references(), 0U);
    expected_misuses = {"the destructor of class Sampler kept a reference to its object"};
}

TEST_F(Audit, ReportsReleasedObjectsThatProgramsUse) {
    Value gone = make(integer(1));
    KZBObject stale = gone->object;
    gone = nil();
    EXPECT_FALSE(kzb_call(stale, "Nothing", nullptr, 0, nullptr, &error));
    EXPECT_STREQ(error.message, "Nothing was called on an object that has been released");
    EXPECT_FALSE(kzb_get(stale, "Count", nullptr, &error));
    EXPECT_STREQ(error.message, "Count: the object has been released");
    EXPECT_FALSE(kzb_handle_event(stale, "Supply", nullptr, &error));
    kzb_value argument = {};
    argument.kind = KZB_OBJECT;
    argument.object = stale;
    EXPECT_FALSE(kzb_set(sampler->object, "Other", &argument, &error));
    EXPECT_STREQ(error.message, "Sampler.Other: a Sampler or nil is expected, an object that has been released came");
    EXPECT_EQ(misuses.size(), 4U);
    for (const std::string &line : misuses)
        EXPECT_NE(line.find(" was given a released Sampler"), std::string::npos) << line;
    expected_misuses = misuses;
}

TEST_F(Audit, ReportsADestructorThatReleasesItsObject) {
    call("ReleaseItself");
    sampler = nil();
    expected_misuses = {"REALUnlockObject dropped one reference too many while the destructor of class Sampler runs"};
}

using AuditDeathTest = SamplerTest;

TEST_F(AuditDeathTest, AbortsWithOneLineWithoutAHandler) {
    EXPECT_EXIT(
        {
            kzb_on_misuse(nullptr, nullptr);
            kzb_call(sampler->object, "ReleaseBlockTwice", nullptr, 0, nullptr, nullptr);
        },
        testing::KilledBySignal(SIGABRT), "^kzbruntime: REALUnlockObject was given a released MemoryBlock\n$");
}

} // namespace
