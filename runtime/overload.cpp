#include "overload.h"

#include "declaration.h"
#include "error.h"
#include <algorithm>
#include <array>
#include <bitset>

namespace kzb {

namespace {

// How far a call comes with one method, from the worst mistake to none.
enum class Stage { unknown_name, too_many, given_twice, missing, wrong_type, fits };

struct Attempt {
    const Method *method = nullptr;
    Stage stage = Stage::unknown_name;
    size_t parameter = 0; // the argument in question: its place in the declaration,
    size_t argument = 0;  // and in the call
    size_t fitting = 0;   // arguments of a fitting type
    int conversions = 0;
    size_t defaults = 0;
    std::array<const kzb_value *, KZB_MAX_PARAMETERS> given = {};

    bool better_than(const Attempt &other) const {
        if (stage != other.stage) return stage > other.stage;
        if (stage != Stage::fits) return fitting > other.fitting;
        return defaults != other.defaults ? defaults < other.defaults : conversions < other.conversions;
    }
};

constexpr size_t none = static_cast<size_t>(-1);

size_t parameter_named(const kzb_declaration &d, const char *name) noexcept {
    for (size_t i = 0; i < d.parameter_count; ++i)
        if (same_name(d.parameters[i].name, name)) return i;
    return none;
}

size_t required(const kzb_declaration &d) noexcept {
    return static_cast<size_t>(std::count_if(d.parameters, d.parameters + d.parameter_count,
                                             [](const kzb_parameter &p) { return !p.has_default; }));
}

Wanted wanted_by(const Lookup &lookup, const kzb_parameter &p) noexcept {
    return wanted(p.type, p.type_name, module_class(lookup.type));
}

// Gives every argument its place, then looks at the types.
Attempt attempt(const Lookup &lookup, const Method &method, std::span<const kzb_value> arguments) {
    const kzb_declaration &d = method.declaration;
    Attempt a;
    a.method = &method;
    auto stop = [&](Stage stage, size_t parameter, size_t argument) {
        a.stage = stage;
        a.parameter = parameter;
        a.argument = argument;
        return a;
    };
    for (size_t i = 0; i < arguments.size(); ++i) {
        size_t place = arguments[i].name ? parameter_named(d, arguments[i].name) : i;
        if (place == none) return stop(Stage::unknown_name, 0, i);
        if (place >= d.parameter_count) return stop(Stage::too_many, 0, i);
        if (a.given[place]) return stop(Stage::given_twice, place, i);
        a.given[place] = &arguments[i];
    }
    for (size_t i = 0; i < d.parameter_count; ++i) {
        if (!a.given[i] && !d.parameters[i].has_default) return stop(Stage::missing, i, 0);
        a.defaults += !a.given[i];
    }
    size_t wrong = none;
    for (size_t i = 0; i < d.parameter_count; ++i) {
        if (!a.given[i]) continue;
        int conversion = fit(*a.given[i], wanted_by(lookup, d.parameters[i]), lookup.name);
        if (conversion == no_fit) {
            wrong = std::min(wrong, i);
        } else {
            ++a.fitting;
            a.conversions += conversion;
        }
    }
    if (wrong != none) return stop(Stage::wrong_type, wrong, static_cast<size_t>(a.given[wrong] - arguments.data()));
    return stop(Stage::fits, 0, 0);
}

bool is_candidate(const Lookup &lookup, const Method &method) noexcept {
    return method.key == lookup.key && same_name(method.declaration.name, lookup.name) &&
           (!lookup.assignment || method.setter);
}

// "0, 2 or 4 arguments": the numbers that the methods of the name take.
std::string numbers_taken(const Lookup &lookup) {
    std::bitset<KZB_MAX_PARAMETERS + 1> taken;
    for (const Method &method : lookup.methods)
        if (is_candidate(lookup, method))
            for (size_t n = required(method.declaration); n <= method.declaration.parameter_count; ++n) taken.set(n);
    std::string text;
    size_t left = taken.count();
    for (size_t n = 0; n < taken.size(); ++n) {
        if (!taken[n]) continue;
        text += std::to_string(n);
        if (--left > 0) text += left == 1 ? " or " : ", ";
    }
    return text + (text == "1" ? " argument" : " arguments");
}

std::string parameter_names(const kzb_declaration &d) {
    std::string text;
    for (size_t i = 0; i < d.parameter_count; ++i) text += (i ? ", " : "") + std::string(d.parameters[i].name);
    return text;
}

bool tell(const Lookup &lookup, const Attempt &a, std::span<const kzb_value> arguments, kzb_error *error) {
    std::string method = std::string(lookup.type.name) + "." + a.method->declaration.name;
    const kzb_declaration &d = a.method->declaration;
    const kzb_parameter &p = d.parameters[a.parameter];
    size_t candidates = static_cast<size_t>(std::count_if(lookup.methods.begin(), lookup.methods.end(),
                                                          [&](const Method &m) { return is_candidate(lookup, m); }));
    bool named = std::any_of(arguments.begin(), arguments.end(), [](const kzb_value &v) { return v.name; });
    switch (a.stage) {
    case Stage::unknown_name: {
        Suggestion suggestion(arguments[a.argument].name);
        for (const Method &m : lookup.methods)
            if (is_candidate(lookup, m))
                for (size_t i = 0; i < m.declaration.parameter_count; ++i)
                    suggestion.consider(m.declaration.parameters[i].name);
        std::string hint = suggestion.hint();
        if (hint.empty() && candidates == 1)
            hint = d.parameter_count == 0 ? "; it takes none" : "; its arguments are " + parameter_names(d);
        return fail(error, KZB_ERROR_USAGE, "%s has no argument named %s%s", method.c_str(), arguments[a.argument].name,
                    hint.c_str());
    }
    case Stage::given_twice:
        return fail(error, KZB_ERROR_USAGE, "%s was given the argument %s twice", method.c_str(), p.name);
    case Stage::missing:
        if (named || candidates == 1)
            return fail(error, KZB_ERROR_USAGE, "%s needs argument %zu (%s as %s), %s; %zu came", method.c_str(),
                        a.parameter + 1, p.name, p.type_name, describe(wanted_by(lookup, p)).c_str(), arguments.size());
        [[fallthrough]];
    case Stage::too_many:
        return fail(error, KZB_ERROR_USAGE, "%s takes %s; %zu came", method.c_str(), numbers_taken(lookup).c_str(),
                    arguments.size());
    case Stage::wrong_type: {
        Wanted expected = wanted_by(lookup, p);
        return fail(error, KZB_ERROR_USAGE, "%s, argument %zu (%s%s as %s): %s is expected, %s came", method.c_str(),
                    a.parameter + 1, p.name, p.type == KZB_TYPE_INTEGER_ARRAY ? "()" : "", p.type_name,
                    describe(expected).c_str(), describe(*a.given[a.parameter], expected).c_str());
    }
    case Stage::fits:
        break;
    }
    return true;
}

bool tell_unknown_method(const Lookup &lookup, kzb_error *error) {
    std::string name = lookup.type.name;
    bool same = std::any_of(lookup.methods.begin(), lookup.methods.end(),
                            [&](const Method &m) { return same_name(m.declaration.name, lookup.name); });
    if (same) return fail(error, KZB_ERROR_USAGE, "%s.%s cannot be assigned to", name.c_str(), lookup.name);
    if (const ModuleClass *type = module_class(lookup.type)) {
        for (const Property &p : type->properties)
            if (same_name(p.definition->name, lookup.name))
                return fail(error, KZB_ERROR_USAGE, "%s.%s is a property, not a %s", name.c_str(), p.definition->name,
                            lookup.what);
        const std::vector<Method> &others =
            lookup.methods.data() == type->methods.data() ? type->shared_methods : type->methods;
        for (const Method &m : others)
            if (same_name(m.declaration.name, lookup.name))
                return fail(error, KZB_ERROR_USAGE, "%s.%s is %s", name.c_str(), m.declaration.name,
                            &others == &type->methods ? "a method of an object, not of the class"
                                                      : "a shared method, called on the class");
    }
    Suggestion suggestion(lookup.name);
    for (const Method &m : lookup.methods) suggestion.consider(m.declaration.name);
    return fail(error, KZB_ERROR_USAGE, "%s has no %s %s%s", name.c_str(), lookup.what, lookup.name,
                suggestion.hint().c_str());
}

} // namespace

Choice::~Choice() {
    for (size_t i = 0; i < KZB_MAX_PARAMETERS; ++i)
        if (from_default[i]) kzb_release(&values[i]);
}

bool choose(const Lookup &lookup, std::span<const kzb_value> arguments, Choice &choice, kzb_error *error) {
    bool after_named = false;
    for (const kzb_value &argument : arguments) {
        if (after_named && !argument.name)
            return fail(error, KZB_ERROR_USAGE, "%s.%s was given an argument without a name after a named one",
                        lookup.type.name, lookup.name);
        after_named = argument.name;
    }
    Attempt best;
    for (const Method &method : lookup.methods) {
        if (!is_candidate(lookup, method)) continue;
        Attempt next = attempt(lookup, method, arguments);
        if (!best.method || next.better_than(best)) best = next;
    }
    if (!best.method) return tell_unknown_method(lookup, error);
    if (best.stage != Stage::fits) return tell(lookup, best, arguments, error);
    choice.method = best.method;
    const kzb_declaration &d = best.method->declaration;
    for (size_t i = 0; i < d.parameter_count; ++i) {
        choice.from_default[i] = !best.given[i];
        if (best.given[i])
            choice.values[i] = *best.given[i];
        else if (!parse_literal(d.parameters[i].default_text, choice.values[i]))
            throw std::bad_alloc(); // it has been parsed before
    }
    return true;
}

bool takes_nothing(std::span<const Method> methods, const char *name) noexcept {
    return std::any_of(methods.begin(), methods.end(), [&](const Method &m) {
        return same_name(m.declaration.name, name) && required(m.declaration) == 0;
    });
}

} // namespace kzb
