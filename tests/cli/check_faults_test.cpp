// Modules that are each wrong in one way, held against the check made for it.

#include "cli/check_command.h"

#include <algorithm>
#include <ostream>
#include <set>

namespace kzb::test {

namespace {

using nlohmann::json;

struct Case {
    std::string file;
    const char *check;
    const char *says; // a part of one of the findings
};

void PrintTo(const Case &c, std::ostream *stream) {
    *stream << c.file << " in " << c.check;
}

class Fault : public testing::TestWithParam<Case> {};

TEST_P(Fault, IsFoundByItsCheckAlone) {
    const Case &fault = GetParam();
    const json found = report({fault.file, fault.check, "--seed", "1", "--time-limit", "60"}, 1);
    ASSERT_EQ(found["checks"].size(), 1u);
    const json &result = found["checks"][0];
    EXPECT_EQ(result["name"], fault.check);
    EXPECT_EQ(result["result"], "fail");
    const auto findings = result["findings"].get<std::vector<std::string>>();
    ASSERT_FALSE(findings.empty());
    EXPECT_EQ(result["sentence"], findings[0]);
    EXPECT_TRUE(std::any_of(findings.begin(), findings.end(), [&](const std::string &text) {
        return text.find(fault.says) != text.npos;
    })) << result;
    EXPECT_EQ(found["summary"]["fail"], 1);
}

INSTANTIATE_TEST_SUITE_P(File, Fault,
                         testing::Values(Case{faulty("no_main"), "entry-point", "does not export REALPluginMain"},
                                         Case{broken("needed"), "needed-libraries",
                                              "the needed library libkzb-absent.so is not found"},
                                         Case{broken("needed"), "library", "libkzb-absent.so"}));

INSTANTIATE_TEST_SUITE_P(
    StartUp, Fault,
    testing::Values(Case{faulty("no_class"), "start-up", "registers no class"},
                    Case{broken("start"), "start-up",
                         "ended by SIGSEGV (Segmentation fault) while REALPluginMain runs"},
                    Case{faulty("no_version"), "version-first", "RegisterPluginVersion is never called"},
                    Case{faulty("wrong_version"), "version-first", "is called with 8, not 9"},
                    Case{broken("version_twice"), "version-first", "is called 2 times"},
                    Case{broken("late_version"), "version-first",
                         "the first entry point called is REALGetRBVersion, not RegisterPluginVersion"},
                    Case{faulty("nil_class"), "registered-once", "call 0: the class definition is nil"},
                    Case{faulty("twice"), "registered-once", "call 1: the class definition of Faulty"},
                    Case{faulty("twice"), "bare-host", "ended by SIGSEGV"},
                    Case{broken("trusts_resolver"), "bare-host", "ended by SIGSEGV"},
                    Case{broken("trusts_resolver"), "missing-at-start", "without REALGetRBVersion: ended by SIGSEGV"}));

INSTANTIATE_TEST_SUITE_P(
    Tables, Fault,
    testing::Values(
        Case{faulty("record_version"), "class-records", "class Faulty: the version is 10, not 9"},
        Case{faulty("nil_class_name"), "class-records", "class 0: the name is nil"},
        Case{faulty("host_class_name"), "class-records", "class memoryblock: the name is taken by the host"},
        Case{faulty("constructor"), "class-records", "class Faulty: the constructor is not nil"},
        Case{faulty("nil_table"), "table-counts", "class Faulty: the method table is nil but its count is 2"},
        Case{faulty("negative_count"), "table-counts", "class Faulty: the constant count is negative (-1)"},
        Case{faulty("nil_property_name"), "nil-entries", "class Faulty, property 1: the name is nil"},
        Case{faulty("nil_type_name"), "nil-entries", "class Faulty, property 1: the type name is nil"},
        Case{faulty("nil_method_declaration"), "nil-entries", "class Faulty, method 1: the declaration is nil"},
        Case{faulty("nil_function"), "nil-entries", "class Faulty, method 1: the function is nil"},
        Case{faulty("nil_event_declaration"), "nil-entries", "class Faulty, event 0: the declaration is nil"},
        Case{faulty("nil_constant_declaration"), "nil-entries", "class Faulty, constant 1: the declaration is nil"},
        Case{broken("property_twice"), "duplicate-names",
             "class Broken, property 1: number is there already, as class Broken, property 0"},
        Case{broken("method_twice"), "duplicate-names", "class Broken, method 3: BLOCK(integer) is there already"},
        Case{broken("constant_twice"), "duplicate-names", "class Broken, constant 1: ONE is there already"},
        Case{faulty("direct_outside"), "direct-access",
             "class Faulty, property 1 (Second): bytes 1 to 4 are outside the instance data of 4 bytes"},
        Case{faulty("bad_method_declaration"), "declarations", "class Faulty, method 1: the declaration"},
        Case{faulty("setter_without_type"), "declarations", "has a setter but no type to assign"},
        Case{faulty("unknown_type"), "types", "class Faulty, property 1 (Second): there is no type Unheard"},
        Case{faulty("bad_constant"), "constants", "class Faulty, constant 1: \"Two = two\""},
        Case{broken("constant_word"), "constants", "class Broken, constant 1: the second word"}));

INSTANTIATE_TEST_SUITE_P(
    Behaviour, Fault,
    testing::Values(
        Case{faulty("nil_function"), "accepted", "class Faulty, method 1: the function is nil"},
        Case{broken("destructor"), "fresh-objects",
             "ended by SIGSEGV (Segmentation fault) while making and releasing a Broken"},
        Case{broken("getter"), "property-reads", "while reading Broken.Number"},
        Case{broken("setter"), "property-writes", "while assigning to Broken.Number"},
        Case{broken("method"), "nil-arguments", "while calling Broken.Block(size as integer) as memoryblock with nil"},
        Case{broken("exit"), "nil-arguments", "ended its process with exit code 3 while calling Broken.Block("},
        Case{broken("random"), "random-arguments", "while calling Broken.Block("},
        Case{broken("huge_constructor"), "constructors",
             "while calling Broken.Constructor(width as integer, height as integer) with huge numbers"},
        Case{broken("huge_constructor"), "constructors", "with huge numbers for width"},
        Case{broken("file_left"), "constructors", "the file of a released object is left behind"},
        Case{broken("shared"), "shared-methods", "while calling the shared method Broken.Total("},
        Case{broken("leak"), "reference-balance", "as memoryblock with nil and zeros: references +1, objects"},
        Case{broken("over_release"), "over-release", "REALUnlockObject was given a released MemoryBlock"},
        Case{broken("trusts_host"), "missing-entries", "without newMemoryBlock, the module ended by SIGSEGV"},
        Case{broken("trusts_host"), "failing-entries", "with a failing newMemoryBlock, the module ended by SIGSEGV"},
        Case{broken("failure_path"), "missing-entries", "without REALBuildString, calling Broken.Text as string"},
        Case{broken("failure_path"), "failing-entries", "with a failing REALBuildString, calling Broken.Text"}));

TEST(Faults, AreThereForEveryCheck) {
    std::set<std::string> tested = {"exports"}; // which only warns
    const auto *suite = testing::UnitTest::GetInstance();
    for (int i = 0; i < suite->total_test_suite_count(); ++i)
        for (int j = 0; j < suite->GetTestSuite(i)->total_test_count(); ++j)
            if (const char *value = suite->GetTestSuite(i)->GetTestInfo(j)->value_param()) {
                const std::string text = value;
                tested.insert(text.substr(text.rfind(' ') + 1));
            }
    for (const std::string &name : names_listed()) EXPECT_TRUE(tested.contains(name)) << name;
}

} // namespace

} // namespace kzb::test
