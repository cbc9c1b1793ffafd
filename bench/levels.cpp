// The instruction sets one against the other, each in a process of its own.

#include "hold.h"
#include "kernels/level.h"
#include "measure.h"
#include "pictures.h"
#include "rows.h"
#include "sections.h"
#include "timing.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>

namespace kzb::bench {

using namespace test;

namespace {

constexpr Extent size = {1000, 750};
constexpr double round_length = 0.003;
constexpr int passes = 2;         // over all levels, in turn
constexpr double tolerance = 1.1; // to the level below, for what may be noise

using Times = std::map<std::string, double>;

std::string row_name(const Case &which, int32_t format) {
    return "levels/" + which.name + "/" + row_of(which, format, size).layout;
}

std::string quoted(const std::string &text) {
    std::string result = "'";
    for (char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}

// What a process at this level printed; nothing where the machine does not run it.
Times times_at(const char *level, const std::string &program, const std::string &filter, int rounds) {
    const std::string command = "KZB_ISA=" + std::string(level) + " " + quoted(program) + " --time-level --rounds " +
                                std::to_string(rounds) + " --filter " + quoted(filter);
    const std::unique_ptr<FILE, int (*)(FILE *)> output(popen(command.c_str(), "r"), &pclose);
    std::string text;
    char part[4096];
    while (output && std::fgets(part, sizeof part, output.get()) != nullptr) text += part;
    const auto json = nlohmann::json::parse(text, nullptr, false);
    if (json.is_discarded() || json["level"] != level) return {};
    return json["times"].get<Times>();
}

} // namespace

int time_level(const Section &section) {
    Times times;
    for (const Case &which : section.cases) {
        for (int32_t format : table_formats) {
            if ((which.colour_only && format == 11) || !section.wants(row_name(which, format))) continue;
            const Image source = painted(size.width, size.height, format, 1);
            const Pictures pictures = pictures_for(which, source);
            const auto seconds = time_interleaved({[&] { which.run(pictures); }}, section.rounds, round_length);
            const Extent to = which.destination_of(size);
            const double pixels =
                static_cast<double>(std::max(int64_t{size.width} * size.height, int64_t{to.width} * to.height));
            times[row_name(which, format)] = time_of(seconds[0], pixels).minimum;
        }
    }
    std::cout << nlohmann::json{{"level", kernels::name_of(kernels::level_in_use())}, {"times", times}} << std::endl;
    return 0;
}

nlohmann::json levels_section(const Section &section, const std::string &program, const std::string &filter) {
    nlohmann::json rows = nlohmann::json::array();
    bool wanted = false;
    for (const Case &which : section.cases)
        for (int32_t format : table_formats) wanted = wanted || section.wants(row_name(which, format));
    if (!wanted) return rows;

    std::map<std::string, Times> best;
    for (int pass = 0; pass < passes; ++pass)
        for (const char *level : kernels::level_names)
            for (const auto &[name, time] : times_at(level, program, filter, section.rounds)) {
                auto &known = best[level].try_emplace(name, time).first->second;
                known = std::min(known, time);
            }
    const Table table({{"least ns/px, 1000x750", -32},
                       {"layout", -6},
                       {"baseline", 8},
                       {"avx2", 8},
                       {"avx512", 8},
                       {"avx512vbmi", 10},
                       {"not slower", -10}},
                      section.style);
    std::cout << '\n' << table.heading() << '\n';
    for (const Case &which : section.cases) {
        for (int32_t format : table_formats) {
            const std::string name = row_name(which, format);
            std::vector<std::string> cells = {which.name, row_of(which, format, size).layout};
            nlohmann::json times;
            bool slower = false;
            double below = 0;
            for (const char *level : kernels::level_names) {
                const auto found = best[level].find(name);
                if (found == best[level].end()) {
                    cells.push_back("");
                    continue;
                }
                slower = slower || (below > 0 && found->second > below * tolerance);
                below = found->second;
                times[level] = below;
                cells.push_back(number(below));
            }
            if (times.empty()) continue;
            cells.push_back(slower ? "NO" : "yes");
            std::cout << table.line(cells) << '\n';
            rows.push_back({{"operation", which.name}, {"layout", cells[1]}, {"times", times}, {"slower", slower}});
        }
    }
    std::cout << '\n'
              << note("each level in processes of its own, KZB_ISA naming it; an empty column is a level that this "
                      "machine does not run; NO where a level takes over a tenth more than the one below it",
                      section.style);
    return rows;
}

} // namespace kzb::bench
