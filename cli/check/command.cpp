#include "command.h"

#include "../standard_output.h"
#include "elf_file.h"
#include "report.h"
#include "runtime/names.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <optional>
#include <random>
#include <set>

namespace kzb::cli::check {

namespace {

constexpr const char *description_text =
    "kzb check looks at a module of the host interface from all sides: its file, what REALPluginMain does, what it\n"
    "registers, what its objects and methods do, and what they do while the host fails. Each check runs in a process\n"
    "of its own; a crash is a result.";

constexpr const char *footer_text = R"(Lines
  ok     nothing is wrong
  warn   nothing is wrong, but something is unusual
  FAIL   something is wrong: what, in which record and field, or during which call
  skip   not run, because a check on which this one rests did not pass

Exit codes
  0 nothing failed    1 a check failed    2 wrong usage    5 there is no such file, or it is no library
)";

class CheckHelp : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App *, std::string) const override {
        return "\nUsage: kzb check MODULE.so [CHECK...] [OPTION...]\n       kzb check --list\n";
    }
    std::string make_footer(const CLI::App *app) const override { return "\n" + app->get_footer(); }
};

struct Request {
    std::string module;
    std::vector<std::string> names; // of checks; empty: all
    bool list = false;
    bool json = false;
    uint64_t seed = 0;
    double time_limit = 10;
};

std::vector<const Check *> all_checks() {
    std::vector<const Check *> all;
    for (auto group :
         {file_checks(), startup_checks(), table_checks(), declaration_checks(), behaviour_checks(), fault_checks()})
        for (const Check &check : group) all.push_back(&check);
    return all;
}

// The checks of these names, in the order of all checks.
std::vector<const Check *> chosen_checks(const std::vector<std::string> &names) {
    const std::vector<const Check *> all = all_checks();
    for (const std::string &name : names) {
        if (std::any_of(all.begin(), all.end(), [&](const Check *check) { return name == check->name; })) continue;
        Suggestion suggestion(name);
        for (const Check *check : all) suggestion.consider(check->name);
        fail(Exit::usage, "there is no check " + name + suggestion.hint() + "; 'kzb check --list' shows the checks");
    }
    std::vector<const Check *> chosen;
    for (const Check *check : all)
        if (names.empty() || std::find(names.begin(), names.end(), check->name) != names.end()) chosen.push_back(check);
    return chosen;
}

// The absolute path of a file that is a library, of whatever machine.
std::string library_path(const std::string &path) {
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::canonical(path, error);
    if (error) fail(Exit::module, path + ": " + error.message() + "; give the path of a module");
    if (!std::filesystem::is_regular_file(absolute))
        fail(Exit::module, path + ": this is not a file; give the path of a module");
    if (!read_elf(absolute)) fail(Exit::module, path + ": this is not a library; give the path of a module");
    return absolute;
}

// An empty folder that goes with all that is in it.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "kzb-check-XXXXXX").string();
        if (!mkdtemp(name.data())) fail(Exit::output, name + ": no folder can be made there; set TMPDIR to another");
        path_ = name;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    const std::string &path() const { return path_; }

private:
    std::string path_;
};

Result run_one(const Check &check, const std::string &path, const Request &request) {
    using Clock = std::chrono::steady_clock;
    const ScratchFolder scratch;
    Subject subject = {path, scratch.path(), request.seed};
    const auto begin = Clock::now();
    const Ending ending = run_limited([&] { check.run(subject); }, request.time_limit);
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
    return judge(check, ending, take_findings(), took.count());
}

Exit run_checks(const Request &request) {
    const std::vector<const Check *> chosen = chosen_checks(request.names);
    const std::string path = library_path(request.module);
    Report report = {request.module, request.seed, request.time_limit, {}};
    std::set<std::string> not_passed;
    for (const Check *check : chosen) {
        const bool in_vain = check->after && not_passed.contains(check->after);
        report.results.push_back(in_vain ? skipped(*check) : run_one(*check, path, request));
        const Result &result = report.results.back();
        if (result.verdict == Verdict::fail || result.verdict == Verdict::skip) not_passed.insert(check->name);
        if (!request.json) print(line_of(result) + "\n");
    }
    print(request.json ? json_of(report) : summary_of(report) + "\n");
    return report.count(Verdict::fail) == 0 ? Exit::done : Exit::operation;
}

std::string list_text() {
    size_t width = 0;
    for (const Check *check : all_checks()) width = std::max(width, std::strlen(check->name) + 2);
    std::string text;
    for (const Check *check : all_checks()) {
        std::string name = check->name;
        name.resize(width, ' ');
        text += name + check->description + "\n";
    }
    return text;
}

// The request, or the text of --help.
std::optional<std::string> parse(std::vector<std::string> words, Request &request) {
    CLI::App app(description_text);
    app.formatter(std::make_shared<CheckHelp>());
    app.get_formatter()->column_width(22);
    app.footer(footer_text);
    app.set_help_flag("-h,--help", "Show this help and exit");
    app.add_option("MODULE", request.module, "The shared library")->type_name("");
    app.add_option("CHECK", request.names, "Names of checks; all of them when none is given")->type_name("");
    app.add_flag("--list", request.list, "Show the names of all checks and what they look at");
    app.add_flag("--json", request.json, "Print one JSON value");
    CLI::Option *seed =
        app.add_option("--seed", request.seed, "Repeat the random arguments of an earlier run")->type_name("N");
    app.add_option("--time-limit", request.time_limit, "Seconds that each check may take; 10 when not given")
        ->type_name("S")
        ->check(CLI::Range(0.1, 86400.0).description(""));
    std::reverse(words.begin(), words.end()); // CLI11 takes them from the back
    try {
        app.parse(words);
    } catch (const CLI::CallForHelp &) {
        return app.help();
    } catch (const CLI::ParseError &error) {
        fail(Exit::usage, std::string(error.what()) + "; 'kzb check --help' shows the options");
    }
    if (seed->count() == 0) request.seed = std::random_device()();
    return std::nullopt;
}

} // namespace

Exit run_check(const std::vector<std::string> &words) {
    Request request;
    if (const auto text = parse(words, request)) {
        print(*text);
        return Exit::done;
    }
    if (request.list) {
        print(request.json ? json_of(all_checks()) : list_text());
        return Exit::done;
    }
    if (request.module.empty()) fail(Exit::usage, "there is no MODULE; use kzb check MODULE.so, or kzb check --list");
    return run_checks(request);
}

} // namespace kzb::cli::check
