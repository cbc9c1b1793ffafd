// The module that the fuzzers call, and its tables as it registered them.
#pragma once

#include <picturekzb/runtime.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kzb::fuzz {

struct Method {
    const char *class_name; // of a shared method; nil for a method of an image
    kzb_declaration declaration;
    bool assignable;

    bool is(const char *name) const;
    // Index of the parameter of that name, ignoring case; -1 when there is none.
    int parameter(const char *name) const;
};

struct Property {
    std::string name;
    kzb_type type;
    bool writable;
};

struct Module {
    std::vector<Method> methods; // the images' own, then the shared ones
    std::vector<Property> properties;
};

// Loads the module at the first call; ends the process when that fails.
const Module &module();

// The module's clock, and the ticks that go by with each reading.
extern uint32_t clock_now;
extern uint32_t clock_step;

// Ends the process with a line that says what was found.
[[noreturn]] void found(const std::string &what);

bool same_name(const char *a, const char *b);

} // namespace kzb::fuzz
