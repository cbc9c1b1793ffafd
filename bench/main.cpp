// The bench: every operation of the module beside what other libraries need for the same work. Started by bench/run.

#include "measure.h"
#include "print.h"
#include "sections.h"
#include "timing.h"

#include <picturekzb/runtime.h>

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>
#include <regex>

namespace kzb::bench {
namespace {

struct Options {
    std::string program, filter = ".", json;
    bool markdown = false, list = false, no_peers = false, no_check = false, level = false;
    Measuring measuring;
};

void read_options(Options &options, CLI::App &app) {
    app.add_option("--filter", options.filter,
                   "Only rows whose names match the regular expression. Names read operation/layout/size, such as "
                   "'BoxBlurFilter 5/RGBA/4000x3000'; those of the other tables calls/, sizes/, files/ or levels/ "
                   "and the operation. --filter 'ApplyMatrix.*4000|levels/ApplyMatrix' looks at one operation. "
                   "--list shows all names");
    app.add_option("--rounds", options.measuring.rounds, "Rounds, interleaved, of which the median is taken")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    app.add_option("--json", options.json, "Also write everything to this file, as JSON");
    app.add_flag("--markdown", options.markdown, "Print the tables as Markdown");
    app.add_flag("--list", options.list, "Print the names of the rows and stop");
    app.add_flag("--no-peers", options.no_peers, "Time the module alone");
    app.add_flag("--no-check", options.no_check, "Do not hold results against the plain references first");
    app.add_flag("--whole", options.measuring.always_whole,
                 "Hold every result at full size, also where the reference is slow (many minutes)");
    app.add_flag("--time-level", options.level)->group("");
}

constexpr Extent sizes[] = {{4000, 3000}, {256, 256}};

template <class Visit> void each_row(const std::vector<Case> &cases, const std::regex &filter, Visit visit) {
    for (Extent size : sizes)
        for (const Case &which : cases)
            for (int32_t format : table_formats) {
                if (which.colour_only && format == 11) continue;
                if (std::regex_search(row_of(which, format, size).name(), filter)) visit(which, format, size);
            }
}

void list_names(const std::vector<Case> &cases, const std::regex &filter) {
    each_row(cases, filter, [](const Case &which, int32_t format, Extent size) {
        std::cout << row_of(which, format, size).name() << '\n';
    });
    for (const std::string &name : section_names(cases))
        if (std::regex_search(name, filter)) std::cout << name << '\n';
}

std::string processor() {
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
    return "unknown processor";
}

// The table beside peers. False when a result was not what the reference says.
bool print_rows(const Options &options, const std::vector<Case> &cases, const std::regex &filter,
                nlohmann::json &json) {
    std::vector<LoadedPeer> peers;
    bool right = true;
    nlohmann::json rows = nlohmann::json::array();
    const Table table = row_table(options.markdown ? Style::markdown : Style::text);
    each_row(cases, filter, [&](const Case &which, int32_t format, Extent size) {
        if (rows.empty()) {
            std::string names;
            if (!options.no_peers) peers = load_peers(KZB_BENCH_PEERS);
            for (const LoadedPeer &loaded : peers)
                names += (names.empty() ? "" : ", ") + std::string(loaded.name) + " " + loaded.peer->version();
            std::cout << "Beside: " << (names.empty() ? "nothing" : names) << "\n\n" << table.heading() << '\n';
            json["peers"] = names;
        }
        const Row row = measure(which, format, size, peers, options.measuring);
        right = right && !row.wrong();
        std::cout << line_of(row, table) << std::endl;
        rows.push_back(json_of(row));
    });
    if (!rows.empty()) std::cout << '\n' << legend(table.style());
    json["rows"] = rows;
    return right;
}

int run(const Options &options) {
    const std::regex filter(options.filter);
    const std::vector<Case> cases = every_case();
    if (options.list) {
        list_names(cases, filter);
        return 0;
    }
    initialize_timing();
    const Section section = {cases, filter, options.measuring.rounds, options.markdown ? Style::markdown : Style::text};
    if (options.level) return time_level(section);
    nlohmann::json json = {{"processor", processor()}, {"rounds", options.measuring.rounds}};
    std::cout << "Processor: " << processor() << "\n\n";
    const bool right = print_rows(options, cases, filter, json);
    json["calls"] = calls_section(section);
    json["sizes"] = sizes_section(section);
    json["files"] = files_section(section);
    json["levels"] = levels_section(section, options.program, options.filter);
    if (!options.json.empty() && !(std::ofstream(options.json) << json.dump(1) << '\n')) {
        std::cerr << options.json << " cannot be written\n";
        return 2;
    }
    return right ? 0 : 1;
}

} // namespace
} // namespace kzb::bench

int main(int count, char **arguments) {
    using namespace kzb::bench;
    CLI::App app("Times every operation of the module beside other libraries, one thread each.", "bench/run");
    Options options;
    read_options(options, app);
    CLI11_PARSE(app, count, arguments);
    options.program = arguments[0];
    options.measuring.hold = !options.no_check;
    options.measuring.peers = !options.no_peers;
    kzb_error error = {};
    if (kzb_module_load(KZB_TEST_MODULE, &error) == nullptr) {
        std::cerr << error.message << '\n';
        return 2;
    }
    try {
        return run(options);
    } catch (const std::exception &failure) {
        std::cerr << failure.what() << '\n';
        return 2;
    }
}
