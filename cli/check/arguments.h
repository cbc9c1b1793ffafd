// Arguments for calls of a module's methods, made from their declarations.
#pragma once

#include "check.h"

#include <picturekzb/runtime.h>
#include <random>
#include <vector>

namespace kzb::cli::check {

enum class Style {
    zero,     // 0, nil
    sound,    // small numbers; objects and texts that are there and large enough for whatever is 16 by 16
    negative, // as sound, but numbers below 0
    huge,     // as sound, but the largest numbers
    wild      // anything that the types can hold
};

// Numbers that depend on a seed and a name alone.
class Random {
public:
    Random(const Subject &subject, const std::string &name);

    uint32_t below(uint32_t limit) { return static_cast<uint32_t>(engine_() % limit); }
    int64_t bits() { return static_cast<int64_t>(engine_()); }

private:
    std::mt19937_64 engine_;
};

// Arguments by name, and the references that they hold until the end.
class Arguments {
public:
    Arguments(const Subject &subject, Random &random) : subject_(subject), random_(random) {}
    ~Arguments();
    Arguments(const Arguments &) = delete;
    Arguments &operator=(const Arguments &) = delete;

    void add(const kzb_parameter &parameter, Style style);
    // A value of a type, without a name.
    kzb_value value(kzb_type type, const char *type_name, Style style);

    const kzb_value *data() const { return values_.data(); }
    size_t size() const { return values_.size(); }

private:
    kzb_value object(const char *class_name, Style style);
    int64_t integer(Style style, int64_t least, int64_t most);
    double number(Style style);

    const Subject &subject_;
    Random &random_;
    std::vector<kzb_value> values_; // their names point into the declarations
    std::vector<kzb_value> kept_;
};

// A declaration, and the record that it stands in.
struct Declared {
    std::string text; // "PictureKZB.Close"
    const MethodDefinition *method;
    kzb_declaration declaration;
};

// The methods of a class, or its shared methods.
std::vector<Declared> declared(const ClassDefinition &definition, const MethodDefinition *methods, kzb_word count);

// An object that no constructor has seen; nil: none was made.
KZBObject fresh_object(const char *class_name);

// An object made by the first Constructor that takes numbers alone, with sound ones; a fresh one where there is none.
KZBObject sound_object(const Subject &subject, const ClassDefinition &definition, Random &random);

} // namespace kzb::cli::check
