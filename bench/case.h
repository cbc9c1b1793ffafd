// One operation of the module as the bench runs, checks and times it.
#pragma once

#include "fixtures/filter_check.h"
#include "task.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kzb::bench {

// What an operation does with a destination.
enum class Form : uint8_t {
    filter,   // takes one, or nil for a new image
    in_place, // changes the image it is called on, here the destination, which starts as a copy of the source
    drawn,    // is called on the destination, with the source as an argument
    made,     // always makes its result
};

// The layout of the destination beside the source's.
enum class DestinationLayout : uint8_t { same, swapped /* blue first */, gray };

struct Extent {
    int32_t width, height;
};

struct Pictures {
    test::Image source;
    test::Value dest; // nil for a new image
    test::Value temp; // for filtered scaling, the intermediate image; nil for a new one
};

// Ratios to the best peer's time that are to be reached, and nanoseconds per pixel of RGBA to stay under.
struct Targets {
    std::optional<double> colour = {}, gray = {};
    std::optional<double> nanoseconds = {};
};

struct Case {
    std::string name;
    Form form = Form::filter;
    std::function<test::Value(const Pictures &)> run;
    // What it means: writes the destination; in the form `made`, `made` gives the result.
    test::Reference reference = {};
    std::function<test::PlainImage(const test::PlainImage &source)> made = {};
    // The reference is fast enough for whole gray pictures; see hold().
    bool held_whole = true;
    Parameters parameters = {};
    Targets targets = {};
    bool turned = false;               // the destination is Height x Width
    std::optional<Extent> scaled = {}; // the destination's size for a source of 4000 x 3000
    bool nil_turned = false;           // a new destination is, without the pixels being turned
    bool uses_temp = false;
    DestinationLayout layout = DestinationLayout::same;
    bool colour_only = false;

    Extent destination_of(Extent source) const;
    int32_t destination_format(int32_t source_format) const;
    // The column "nil" has a meaning.
    bool takes_nil() const { return form == Form::filter || uses_temp; }
};

std::vector<Case> every_case();

// By subject; every_case has them all.
void add_tone_cases(std::vector<Case> &cases);
void add_geometry_cases(std::vector<Case> &cases);
void add_filter_cases(std::vector<Case> &cases);
void add_scale_cases(std::vector<Case> &cases);

} // namespace kzb::bench
