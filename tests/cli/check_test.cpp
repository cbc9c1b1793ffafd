// What `kzb check` prints, of modules that are right and of some that are not.

#include "cli/check_command.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace kzb::test {

namespace {

using nlohmann::json;

const std::string module_file = KZB_TEST_MODULE;

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
    // The head of the module for another machine, and the module without its end, of which the last may be half that
    // only debuggers read.
    std::ifstream file(module_file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const std::string path = std::filesystem::temp_directory_path() / "kzb-check-damaged.so";
    std::string other = bytes;
    other[18] = 8, other[19] = 0;
    std::ofstream(path, std::ios::binary) << other;
    EXPECT_EQ(report({path, "library"}, 1)["checks"][0]["sentence"],
              "the library is for another machine than this one");
    for (size_t length : {64, 1000, 20000}) {
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
