#include "plan.h"

#include "runtime/names.h"

#include <algorithm>
#include <set>

namespace kzb::cli {

namespace {

// How far the written arguments come with one form, from the worst mistake to none.
enum class Stage { unknown_name, too_many, missing, given_twice, no_fit, fits };

struct Attempt {
    const Form *form = nullptr;
    Stage stage = Stage::unknown_name;
    size_t parameter = 0; // where the mistake is: the place in the declaration,
    size_t argument = 0;  // and among the written arguments
    std::vector<PlannedArgument> arguments;
};

bool comes_further(const Attempt &attempt, const Attempt &other) {
    if (attempt.stage != other.stage) return attempt.stage > other.stage;
    if (attempt.stage == Stage::fits) return attempt.arguments.size() < other.arguments.size();
    return attempt.argument > other.argument;
}

// The parameter that an argument is for: the one of its name, else the next that the user gives.
size_t place_of(const WrittenArgument &argument, const Form &form, size_t &next) {
    const kzb_declaration &declaration = form.declaration;
    const kzb_parameter *parameters = declaration.parameters;
    if (argument.name.empty()) {
        while (next < declaration.parameter_count && form.giver_of(next) != Giver::user) ++next;
        return next < declaration.parameter_count ? next++ : next;
    }
    size_t place = 0;
    while (place < declaration.parameter_count && !same_name(parameters[place].name, argument.name)) ++place;
    return place;
}

Attempt attempt(const Form &form, const std::vector<WrittenArgument> &written) {
    const kzb_declaration &declaration = form.declaration;
    Attempt result;
    result.form = &form;
    const auto stop = [&](Stage stage, size_t parameter, size_t argument) {
        result.stage = stage;
        result.parameter = parameter;
        result.argument = argument;
        return result;
    };
    std::vector<const WrittenArgument *> given(declaration.parameter_count);
    size_t next = 0;
    for (size_t i = 0; i < written.size(); ++i) {
        const size_t place = place_of(written[i], form, next);
        if (place == declaration.parameter_count)
            return stop(written[i].name.empty() ? Stage::too_many : Stage::unknown_name, 0, i);
        if (given[place] != nullptr) return stop(Stage::given_twice, place, i);
        given[place] = &written[i];
    }
    for (size_t i = 0; i < declaration.parameter_count; ++i) {
        const kzb_parameter &parameter = declaration.parameters[i];
        if (given[i] == nullptr && form.giver_of(i) == Giver::user && !parameter.has_default)
            return stop(Stage::missing, i, 0);
    }
    for (size_t i = 0; i < declaration.parameter_count; ++i) {
        const kzb_parameter &parameter = declaration.parameters[i];
        if (given[i] == nullptr) {
            if (!parameter.has_default) result.arguments.push_back({parameter.name, form.giver_of(i), {}});
            continue;
        }
        if (!fits(given[i]->value.get(), parameter.type))
            return stop(Stage::no_fit, i, static_cast<size_t>(given[i] - written.data()));
        result.arguments.push_back({parameter.name, Giver::user, given[i]->value});
    }
    return stop(Stage::fits, 0, 0);
}

// "; write GammaFilter gamma, or ...": the ways in which a method can be a step.
std::string usages(const Method &method) {
    std::string text;
    std::set<std::string> told;
    for (const Form &form : method.forms) {
        if (!form.obstacle().empty() || !told.insert(form.usage()).second) continue;
        text += (text.empty() ? "; write " : ", or ") + form.usage();
    }
    return text;
}

[[noreturn]] void tell(const Method &method, const Attempt &attempt, const std::vector<WrittenArgument> &written) {
    const kzb_parameter &parameter = attempt.form->declaration.parameters[attempt.parameter];
    const std::string name = parameter.name;
    switch (attempt.stage) {
    case Stage::unknown_name: {
        const std::string &unknown = written[attempt.argument].name;
        Suggestion suggestion(unknown);
        for (const Form &form : method.forms)
            for (size_t i = 0; i < form.declaration.parameter_count; ++i)
                suggestion.consider(form.declaration.parameters[i].name);
        const std::string hint = suggestion.hint();
        fail(Exit::usage, "it has no argument named " + unknown + (hint.empty() ? usages(method) : hint));
    }
    case Stage::too_many:
        fail(Exit::usage, "'" + written[attempt.argument].text + "' is more than it takes" + usages(method));
    case Stage::given_twice:
        fail(Exit::usage, "the argument " + name + " is given twice" + usages(method));
    case Stage::missing:
        fail(Exit::usage, "the argument " + name + " (" + describe(parameter.type) + ") is missing" + usages(method));
    case Stage::no_fit:
        fail(Exit::usage, "the argument " + name + " must be " + describe(parameter.type) + ", not '" +
                              written[attempt.argument].text + "'");
    case Stage::fits:
        break;
    }
    fail(Exit::usage, "it cannot be used" + usages(method));
}

// The forms that can be steps are tried; a method without one says why.
Attempt choose(const Method &method, const std::vector<WrittenArgument> &written) {
    Attempt best;
    for (const Form &form : method.forms) {
        if (!form.obstacle().empty()) continue;
        Attempt next = attempt(form, written);
        if (best.form == nullptr || comes_further(next, best)) best = std::move(next);
    }
    if (best.form == nullptr)
        fail(Exit::usage,
             "it cannot be a step: it " + method.forms.front().obstacle() + "; 'kzb list' shows the methods that can");
    if (best.stage != Stage::fits) tell(method, best, written);
    return best;
}

std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

PlannedStep plan_step(size_t number, const std::vector<std::string> &split_words, const Catalogue &catalogue) {
    const std::vector<std::string> words = join_arrays(split_words);
    const std::string &name = words.front();
    const Method *method = catalogue.method(name);
    if (method == nullptr) {
        if (name.find_first_of(" \t") != name.npos)
            fail(Exit::usage, "this is one word to kzb; leave out the quotes around a step");
        std::string hint = catalogue.method_hint(name);
        if (hint.empty()) hint = "; 'kzb list' shows the methods";
        fail(Exit::usage, std::string(picture_class) + " has no such method" + hint);
    }
    std::vector<WrittenArgument> written;
    for (size_t i = 1; i < words.size(); ++i) {
        written.push_back(read_argument(words[i], catalogue));
        if (i > 1 && written[i - 1].name.empty() && !written[i - 2].name.empty())
            fail(Exit::usage, "'" + words[i] + "' has no name but stands after a named argument; put it before");
    }
    Attempt chosen = choose(*method, written);
    return {number, joined(words), chosen.form, std::move(chosen.arguments)};
}

} // namespace

std::optional<int64_t> PlannedStep::integer(std::string_view name) const {
    for (const PlannedArgument &argument : arguments)
        if (same_name(argument.name, name)) return argument.value.get().integer;
    return std::nullopt;
}

std::vector<PlannedStep> plan_chain(const std::vector<std::vector<std::string>> &steps, const Catalogue &catalogue) {
    std::vector<PlannedStep> plan;
    for (size_t i = 0; i < steps.size(); ++i) {
        try {
            plan.push_back(plan_step(i + 1, steps[i], catalogue));
        } catch (const Failure &failure) {
            fail(failure.exit, "step " + std::to_string(i + 1) + ", " + steps[i].front() + ": " + failure.message);
        }
    }
    return plan;
}

} // namespace kzb::cli
