// The bench: every operation of the module beside what other libraries need for the same work. Started by bench/run.

#include "measure.h"
#include "print.h"
#include "timing.h"

#include <picturekzb/runtime.h>

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>
#include <regex>

namespace kzb::bench {
namespace {

struct Options {
    std::string filter = ".", json;
    bool markdown = false, list = false, no_peers = false, no_check = false;
    Measuring measuring;
};

void read_options(Options &options, CLI::App &app) {
    app.add_option("--filter", options.filter,
                   "Only rows whose name matches the regular expression. Names read operation/layout/size: "
                   "BoxBlurFilter 5/RGBA/4000x3000");
    app.add_option("--rounds", options.measuring.rounds, "Rounds, interleaved, of which the median is taken")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    app.add_option("--json", options.json, "Also write everything to this file, as JSON");
    app.add_flag("--markdown", options.markdown, "Print the table as Markdown");
    app.add_flag("--list", options.list, "Print the names of the rows and stop");
    app.add_flag("--no-peers", options.no_peers, "Time the module alone");
    app.add_flag("--no-check", options.no_check, "Do not hold results against the plain references first");
    app.add_flag("--whole", options.measuring.always_whole,
                 "Hold every result at full size, also where the reference is slow (many minutes)");
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

int run(const Options &options) {
    const std::regex filter(options.filter);
    const std::vector<Case> cases = every_case();
    if (options.list) {
        each_row(cases, filter, [](const Case &which, int32_t format, Extent size) {
            std::cout << row_of(which, format, size).name() << '\n';
        });
        return 0;
    }
    initialize_timing();
    std::vector<LoadedPeer> peers;
    if (!options.no_peers) peers = load_peers(KZB_BENCH_PEERS);
    const Style style = options.markdown ? Style::markdown : Style::text;
    for (const LoadedPeer &loaded : peers) std::cerr << loaded.name << " " << loaded.peer->version() << '\n';
    std::cout << heading(style) << std::endl;
    bool wrong = false;
    nlohmann::json rows = nlohmann::json::array();
    each_row(cases, filter, [&](const Case &which, int32_t format, Extent size) {
        const Row row = measure(which, format, size, peers, options.measuring);
        wrong = wrong || row.wrong();
        std::cout << line_of(row, style) << std::endl;
        rows.push_back(json_of(row));
    });
    std::cout << '\n' << legend(style);
    if (!options.json.empty()) std::ofstream(options.json) << rows.dump(1) << '\n';
    return wrong ? 1 : 0;
}

} // namespace
} // namespace kzb::bench

int main(int count, char **arguments) {
    using namespace kzb::bench;
    CLI::App app("Times every operation of the module beside other libraries, one thread each.", "bench/run");
    Options options;
    read_options(options, app);
    CLI11_PARSE(app, count, arguments);
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
