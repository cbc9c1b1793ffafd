#include "cli/check_command.h"

#include <sstream>

namespace kzb::test {

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

nlohmann::json report(std::vector<std::string> words, int exit) {
    words.push_back("--json");
    const Outcome outcome = check(words);
    EXPECT_EQ(outcome.exit, exit) << outcome.out << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const auto parsed = nlohmann::json::parse(outcome.out, nullptr, false);
    EXPECT_FALSE(parsed.is_discarded()) << outcome.out;
    return parsed.is_discarded() ? nlohmann::json() : parsed;
}

std::vector<std::string> names_listed() {
    std::vector<std::string> names;
    std::istringstream lines(check({"--list"}).out);
    for (std::string line; std::getline(lines, line);) names.push_back(line.substr(0, line.find(' ')));
    return names;
}

} // namespace kzb::test
