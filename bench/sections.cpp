#include "sections.h"

#include "hold.h"
#include "pictures.h"
#include "rows.h"
#include "timing.h"

#include <algorithm>
#include <iostream>

namespace kzb::bench {

using namespace test;

namespace {

constexpr int32_t rgba = 2;
constexpr double call_limit = 1000;  // nanoseconds for a picture of one pixel
constexpr double spread_limit = 2.0; // between the costs per pixel at the sizes
constexpr double short_round = 0.002;

// One of each kind, and none whose result or intermediate image would be too large for a small machine.
constexpr const char *sized[] = {"GammaFilter",
                                 "AutoLevel",
                                 "DitherFilter",
                                 "Invert",
                                 "CopyPixels",
                                 "HMirror",
                                 "Rotate90",
                                 "Rotate 17",
                                 "BoxBlurFilter 5",
                                 "ApplyMatrix",
                                 "UnsharpFilter",
                                 "EngraveFilter",
                                 "NeonFilter",
                                 "StampFilter",
                                 "Scale Lanczos3 to 1000x750",
                                 "ScaleFast to 1000x750"};
constexpr Extent sizes[] = {{64, 64}, {4000, 3000}, {16000, 12000}};

bool is_sized(const Case &which) {
    return std::any_of(std::begin(sized), std::end(sized), [&](const char *name) { return which.name == name; });
}

Time time_alone(const Case &which, Extent size, int rounds) {
    const Image source = painted(size.width, size.height, rgba, 1);
    const Pictures pictures = pictures_for(which, source);
    const auto times = time_interleaved({[&] { which.run(pictures); }}, rounds, short_round);
    const Extent to = which.destination_of(size);
    const int64_t pixels = std::max(int64_t{size.width} * size.height, int64_t{to.width} * to.height);
    return time_of(times[0], static_cast<double>(pixels));
}

const char *yes_or_no(bool reached) {
    return reached ? "yes" : "NO";
}

} // namespace

nlohmann::json calls_section(const Section &section) {
    nlohmann::json rows = nlohmann::json::array();
    const Table table({{"a call on 1x1", -30}, {"ns", 9}, {"min", 9}, {"goal", 6}, {"reached", -7}}, section.style);
    for (const Case &which : section.cases) {
        if (!section.wants("calls/" + which.name)) continue;
        if (rows.empty()) std::cout << '\n' << table.heading() << '\n';
        const Time time = time_alone(which, {1, 1}, section.rounds);
        std::cout << table.line({which.name, number(time.median, 1), number(time.minimum, 1), number(call_limit, 0),
                                 yes_or_no(time.median < call_limit)})
                  << std::endl;
        rows.push_back({{"operation", which.name}, {"median", time.median}, {"minimum", time.minimum}});
    }
    return rows;
}

nlohmann::json sizes_section(const Section &section) {
    nlohmann::json rows = nlohmann::json::array();
    const Table table({{"ns/px by size, RGBA", -30},
                       {"64x64", 9},
                       {"4000x3000", 9},
                       {"16000x12000", 11},
                       {"most to least", 13},
                       {"goal", 6},
                       {"reached", -7}},
                      section.style);
    for (const Case &which : section.cases) {
        if (!is_sized(which) || !section.wants("sizes/" + which.name)) continue;
        if (rows.empty()) std::cout << '\n' << table.heading() << '\n';
        std::vector<double> times;
        for (Extent size : sizes) times.push_back(time_alone(which, size, section.rounds).median);
        const auto [least, most] = std::minmax_element(times.begin(), times.end());
        const double spread = *most / *least;
        std::cout << table.line({which.name, number(times[0]), number(times[1]), number(times[2]), number(spread, 2),
                                 number(spread_limit, 1), yes_or_no(spread <= spread_limit)})
                  << std::endl;
        rows.push_back({{"operation", which.name}, {"medians", times}, {"spread", spread}});
    }
    if (!rows.empty())
        std::cout << '\n'
                  << note("times where memory speed differs between the sizes, as in copies, spread by more",
                          section.style);
    return rows;
}

std::vector<std::string> section_names(const std::vector<Case> &cases) {
    std::vector<std::string> names;
    for (const Case &which : cases) names.push_back("calls/" + which.name);
    for (const Case &which : cases)
        if (is_sized(which)) names.push_back("sizes/" + which.name);
    for (const Case &which : cases)
        if (which.form != Form::made) names.push_back("files/" + which.name);
    for (const Case &which : cases) names.push_back("levels/" + which.name);
    return names;
}

} // namespace kzb::bench
