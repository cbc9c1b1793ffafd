// `kzb check` on modules that are each wrong in one way, and on one that is right.

#include "cli/command.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace kzb::test {

namespace {

using nlohmann::json;

const std::string module_file = KZB_TEST_MODULE;

std::string broken(const std::string &fault) {
    return BROKEN + fault + ".so";
}

std::string faulty(const std::string &fault) {
    return FAULTY + fault + ".so";
}

Outcome check(std::vector<std::string> words) {
    words.insert(words.begin(), "check");
    return run_command("/", words);
}

// What `kzb check --json` says; an empty value, and a failed test, when it is no JSON.
json report(std::vector<std::string> words, int exit) {
    words.push_back("--json");
    const Outcome outcome = check(words);
    EXPECT_EQ(outcome.exit, exit) << outcome.out << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const json parsed = json::parse(outcome.out, nullptr, false);
    EXPECT_FALSE(parsed.is_discarded()) << outcome.out;
    return parsed.is_discarded() ? json() : parsed;
}

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

std::vector<std::string> names_listed() {
    std::vector<std::string> names;
    std::istringstream lines(check({"--list"}).out);
    for (std::string line; std::getline(lines, line);) names.push_back(line.substr(0, line.find(' ')));
    return names;
}

void expect_all_well(const std::string &module, const std::string &seed) {
    const json found = report({module, "--seed", seed, "--time-limit", "120"}, 0);
    std::vector<std::string> names;
    for (const json &result : found["checks"]) {
        EXPECT_EQ(result["result"], "ok") << result;
        names.push_back(result["name"]);
    }
    EXPECT_EQ(names, names_listed());
    EXPECT_EQ(found["summary"]["ok"], names.size());
    EXPECT_EQ(found["module"], module);
    EXPECT_EQ(std::to_string(found["seed"].get<uint64_t>()), seed);
}

TEST(Check, PassesThePictureModule) {
    expect_all_well(module_file, "1");
}

TEST(Check, PassesTheModuleOfTheseTestsWithoutAFault) {
    expect_all_well(broken("none"), "18446744073709551615");
}

TEST(Check, FindsEveryFaultWithoutStoppingAtTheFirst) {
    const json found = report({broken("method"), "nil-arguments", "reference-balance"}, 1);
    EXPECT_EQ(found["checks"][0]["findings"].size(), 1u);
    EXPECT_EQ(found["checks"][1]["result"], "warn"); // the crash is no matter of references
    const json nil = report({faulty("nil_property_name"), "--time-limit", "60"}, 1);
    std::set<std::string> failed;
    for (const json &result : nil["checks"])
        if (result["result"] == "fail") failed.insert(result["name"]);
    EXPECT_TRUE(failed.contains("nil-entries") && failed.contains("accepted")) << nil;
    EXPECT_FALSE(failed.contains("nil-arguments")) << nil; // skipped
}

TEST(Check, WarnsOfFurtherExports) {
    const json found = report({broken("export"), "exports"}, 0);
    EXPECT_EQ(found["checks"][0]["result"], "warn");
    EXPECT_EQ(found["checks"][0]["sentence"], "also exported is another_name");
    EXPECT_EQ(found["summary"]["warn"], 1);
}

TEST(Check, StopsAModuleThatNeverReturnsAndSkipsWhatRestsOnIt) {
    const json found = report({broken("endless"), "--time-limit", "2.5", "--seed", "3"}, 1);
    std::map<std::string, json> results;
    for (const json &result : found["checks"]) results[result["name"]] = result;
    EXPECT_EQ(results["library"]["result"], "ok");
    EXPECT_EQ(results["start-up"]["sentence"], "the module did not end in time while REALPluginMain runs");
    for (const char *name : {"version-first", "nil-entries", "accepted", "missing-entries"})
        EXPECT_EQ(results[name]["result"], "skip") << name;
    EXPECT_EQ(results["nil-entries"]["sentence"], "not run, because start-up did not pass");
    EXPECT_EQ(found["time_limit"], 2.5);
}

TEST(Check, SaysTheSameAgainWithTheSameSeed) {
    const auto run = [](const char *seed) {
        return check({broken("random"), "random-arguments", "constructors", "--seed", seed}).out;
    };
    const std::string first = run("11");
    EXPECT_EQ(run("11"), first);
    EXPECT_TRUE(first.ends_with("; seed 11\n")) << first;
}

TEST(Check, PrintsOneLineForEachCheckAndASummary) {
    const Outcome outcome = check({faulty("bad_constant"), "constants", "types", "--seed", "5"});
    EXPECT_EQ(outcome.exit, 1);
    EXPECT_EQ(outcome.out,
              "ok   types - Every type that a record names is one of the host's or of the module's classes.\n"
              "FAIL constants - class Faulty, constant 1: \"Two = two\" does not read \"Name = integer\"\n"
              "2 checks: 1 ok, 0 warned, 1 failed, 0 not run; seed 5\n");
}

TEST(Check, EscapesWhateverAModuleCallsItsClasses) {
    const json found = report({broken("class_name"), "class-records"}, 1);
    EXPECT_EQ(found["checks"][0]["sentence"], "class Broken \"\\\xEF\xBF\xBD: \"Broken \"\\\xEF\xBF\xBD\" is no name");
}

TEST(Check, LeavesNoFolderBehind) {
    const std::string own = std::filesystem::temp_directory_path() / "kzb-check-check-test";
    std::filesystem::create_directory(own);
    setenv("TMPDIR", own.c_str(), 1);
    check({broken("file_left"), "constructors", "start-up"});
    unsetenv("TMPDIR");
    EXPECT_TRUE(std::filesystem::is_empty(own));
    std::filesystem::remove_all(own);
}

TEST(Check, ListsEveryCheckWithItsDescription) {
    const Outcome list = check({"--list"});
    EXPECT_EQ(list.exit, 0);
    const json listed = json::parse(check({"--list", "--json"}).out);
    std::istringstream lines(list.out);
    size_t number = 0;
    for (std::string line; std::getline(lines, line); ++number) {
        const size_t space = line.find(' ');
        ASSERT_LT(number, listed.size());
        EXPECT_EQ(line.substr(0, space), listed[number]["name"]);
        EXPECT_EQ(line.substr(line.find_first_not_of(' ', space)), listed[number]["description"]);
        EXPECT_TRUE(line.ends_with(".")) << line;
    }
    EXPECT_EQ(number, listed.size());
    EXPECT_GE(number, 25u);
    const std::vector<std::string> names = names_listed();
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
}

TEST(Check, IsDescribedOnItsPageAsInTheList) {
    std::ifstream page(CHECK_PAGE);
    json described = json::array();
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with("- `")) continue;
        const size_t end = line.find("`: ");
        ASSERT_NE(end, line.npos) << line;
        described.push_back({{"name", line.substr(3, end - 3)}, {"description", line.substr(end + 3)}});
    }
    EXPECT_EQ(described, json::parse(check({"--list", "--json"}).out));
}

TEST(Check, EveryCheckHasAModuleThatFailsIt) {
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

TEST(Check, RefusesWhatIsNoLibrary) {
    const Outcome absent = check({"/nowhere/module.so"});
    EXPECT_EQ(absent.exit, 5);
    EXPECT_EQ(absent.out, "");
    EXPECT_EQ(absent.err, "kzb: /nowhere/module.so: No such file or directory; give the path of a module\n");
    EXPECT_EQ(check({CHECK_PAGE}).exit, 5);
    EXPECT_EQ(check({"/"}).exit, 5);
    EXPECT_EQ(check({"/dev/null"}).exit, 5);
}

TEST(Check, FailsForLibrariesThatCannotBeLoaded) {
    const json program = report({KZB_COMMAND, "library"}, 1);
    EXPECT_EQ(program["checks"][0]["result"], "fail") << program;
    // The head of the module for another machine, and the module without its end.
    std::ifstream file(module_file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const std::string path = std::filesystem::temp_directory_path() / "kzb-check-damaged.so";
    std::string other = bytes;
    other[18] = 8, other[19] = 0;
    std::ofstream(path, std::ios::binary) << other;
    EXPECT_EQ(report({path, "library"}, 1)["checks"][0]["sentence"],
              "the library is for another machine than this one");
    for (size_t length : {size_t{64}, size_t{1000}, bytes.size() / 2}) {
        std::ofstream(path, std::ios::binary) << bytes.substr(0, length);
        EXPECT_EQ(report({path}, 1)["checks"][0]["result"], "fail") << length;
    }
    std::filesystem::remove(path);
}

TEST(Check, ExplainsMistakesOfItsUser) {
    const Outcome unknown = check({module_file, "nil-entry"});
    EXPECT_EQ(unknown.exit, 2);
    EXPECT_EQ(unknown.err,
              "kzb: there is no check nil-entry; did you mean nil-entries?; 'kzb check --list' shows the checks\n");
    EXPECT_EQ(check({}).exit, 2);
    EXPECT_EQ(check({module_file, "--seed", "x"}).exit, 2);
    EXPECT_EQ(check({module_file, "--time-limit", "0"}).exit, 2);
    EXPECT_EQ(check({module_file, "--nonsense"}).exit, 2);
    const Outcome help = check({"--help"});
    EXPECT_EQ(help.exit, 0);
    for (const char *part : {"kzb check MODULE.so", "--json", "--list", "--seed", "--time-limit", "Exit codes"})
        EXPECT_NE(help.out.find(part), help.out.npos) << part;
    EXPECT_NE(run_command("/", {"--help"}).out.find("kzb check MODULE.so [CHECK...]"), std::string::npos);
}

TEST(Check, LeavesChainsThatBeginWithAFileOfItsNameAlone) {
    EXPECT_EQ(run_command("/", {"check", ":", "Invert", "-o", "/nowhere/out.png"}).exit, 4);
}

} // namespace

} // namespace kzb::test
