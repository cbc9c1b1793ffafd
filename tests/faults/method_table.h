// Every method, property and shared method of both classes, with arguments made freshly for each call: what the tests
// of faults are driven by. A new method is covered by adding its rows; RowsCoverTheClasses fails until it has one.
#pragma once

#include "faults/inspection.h"

#include <functional>
#include <string>
#include <vector>

namespace kzb::test {

enum class Kind : uint8_t { method, assignment, shared, getter, setter };

// What a call gives that cannot do its work: the object and the arguments are then as they were.
enum class FailsWith : uint8_t {
    nil,
    no,      // false
    nothing, // no result anyway
    invalid  // a constructor: the image is not Valid
};

// What lack of memory does.
enum class Shortage : uint8_t {
    fails,     // the call fails, or does its work in another way
    untouched, // the result comes back with the pixels that it had, or some images are done and others not
    pixels     // the images that are written to come back with any pixels, the result perhaps not at all
};

struct Call {
    Object object; // none for shared methods
    std::vector<Value> arguments = {};
    Value assigned = {}; // for assignments and setters
};

struct Row {
    Kind kind;
    std::string declaration; // as registered; of a property its name
    std::string variant;     // what tells rows of one declaration apart
    FailsWith fails;
    Shortage shortage;
    std::function<Call()> make; // called by arrange()

    std::string name() const { return declaration + ", " + variant; }
};

const std::vector<Row> &method_table();

// The rows in runs of the same declaration.
std::vector<std::vector<const Row *>> rows_by_declaration();

// The declaration's name alone.
std::string plain_name(const std::string &declaration);

// Whether the row's method declares an image as its argument `index`.
bool is_image_argument(const Row &row, size_t index);

// The row's call: each time the same, made anew.
Call arrange(const Row &row);

// Makes the call. Exceptions are the result too.
struct Done {
    Value result;
    std::string exception; // empty: none was raised
};
Done perform(const Row &row, const Call &call);

// What a call led to: its result, and the object, the arguments and the assigned value as they are afterwards.
struct Observation {
    Seen result;
    std::string exception;
    std::vector<Seen> arguments;
    bool operator==(const Observation &) const = default;
};
Observation observe(const Done &done, const Call &call);

// Empty when `seen` is the right result, or the failure that the row states: `before` is the call's arguments before
// it, `right` what an undisturbed call led to. Otherwise what is wrong.
std::string judge(const Row &row, Shortage shortage, const Observation &before, const Observation &right,
                  const Observation &seen);

// Gives back what a call may have left with the module and the tests: the process's factory, the factories' handlers,
// guarded blocks. False when bytes around a guarded block have been written to.
bool clean_up();

} // namespace kzb::test
