#include "plan.h"

#include "plan_mistakes.h"
#include "runtime/names.h"

#include <algorithm>
#include <set>
#include <unistd.h>

namespace kzb::cli {

namespace {

bool has_value_argument(const Form &form, const WrittenArgument &argument) {
    if (!form.assigns || !same_name(argument.name, "value")) return false;
    const kzb_declaration &declaration = form.declaration;
    return std::none_of(declaration.parameters, declaration.parameters + declaration.parameter_count,
                        [](const kzb_parameter &parameter) { return same_name(parameter.name, "value"); });
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

Source source_of(Giver giver) {
    switch (giver) {
    case Giver::chain_current:
        return Source::chain_current;
    case Giver::chain_new:
        return Source::chain_new;
    case Giver::chain_nil:
    case Giver::user:
        break;
    }
    return Source::chain_nil;
}

// A user's argument in its place; none when it does not fit.
std::optional<PlannedArgument> fitted(const WrittenArgument &written, const kzb_parameter &parameter,
                                      const Method &method, const KeptNames &kept) {
    PlannedArgument argument = {parameter.name, Source::value, {}, "", false};
    const bool object = parameter.type == KZB_TYPE_OBJECT;
    if (object && same_name(parameter.type_name, "FolderItem") && written.reference.empty() && !written.text.empty()) {
        // The file of a picture is truncated at first and deleted at last.
        if (access(written.text.c_str(), F_OK) == 0) return std::nullopt;
        KZBFolderItem item = kzb_folder_item_new(written.text.c_str());
        if (item == nullptr) throw std::bad_alloc();
        argument.value = Value::object(reinterpret_cast<KZBObject>(item));
        return argument;
    }
    if (!written.problem.empty()) return std::nullopt;
    if (!written.reference.empty()) {
        const auto known = kept.find(written.reference);
        if (!object || known == kept.end()) return std::nullopt;
        const bool host_picture = same_name(parameter.type_name, "Picture");
        if (!same_name(known->second, host_picture ? picture_class : parameter.type_name)) return std::nullopt;
        argument.source = Source::reference;
        argument.reference = written.reference;
        argument.as_host_picture = host_picture;
        return argument;
    }
    const char *constants = constants_wanted(method, parameter);
    if (constants != nullptr && !written.constant.empty() && !written.constant.starts_with(constants))
        return std::nullopt;
    if (!fits(written.value.get(), parameter.type)) return std::nullopt;
    // Without one of these the method would do nothing, or fail.
    const bool needed = object && !same_name(parameter.name, "dest") && !same_name(parameter.name, "temp");
    if (needed && written.value.is_nil()) return std::nullopt;
    argument.value = written.value;
    return argument;
}

Attempt attempt(const Method &method, const Form &form, const std::vector<WrittenArgument> &written,
                const KeptNames &kept) {
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
    size_t next = 0, first_misplaced = SIZE_MAX, misplaced_for = 0;
    for (size_t i = 0; i < written.size(); ++i) {
        if (has_value_argument(form, written[i])) {
            result.assigned = written[i].reference;
            if (result.assigned.empty()) return stop(Stage::no_fit, declaration.parameter_count, i);
            continue;
        }
        const size_t place = place_of(written[i], form, next);
        if (place == declaration.parameter_count)
            return stop(written[i].name.empty() ? Stage::too_many : Stage::unknown_name, 0, i);
        if (given[place] != nullptr) return stop(Stage::given_twice, place, i);
        given[place] = &written[i];
        const bool object = declaration.parameters[place].type == KZB_TYPE_OBJECT;
        if (method.forms.size() == 1 && object && first_misplaced > i &&
            !fitted(written[i], declaration.parameters[place], method, kept)) {
            first_misplaced = i;
            misplaced_for = place;
        }
    }
    for (size_t i = 0; i < declaration.parameter_count; ++i) {
        const kzb_parameter &parameter = declaration.parameters[i];
        if (given[i] == nullptr && form.giver_of(i) == Giver::user && !parameter.has_default) {
            // What stands where a picture belongs says more than what is missing at the end.
            if (first_misplaced < written.size()) return stop(Stage::no_fit, misplaced_for, first_misplaced);
            return stop(Stage::missing, i, 0);
        }
    }
    for (size_t i = 0; i < declaration.parameter_count; ++i) {
        const kzb_parameter &parameter = declaration.parameters[i];
        if (given[i] == nullptr) {
            if (!parameter.has_default)
                result.arguments.push_back({parameter.name, source_of(form.giver_of(i)), {}, "", false});
            continue;
        }
        auto argument = fitted(*given[i], parameter, method, kept);
        if (!argument) return stop(Stage::no_fit, i, static_cast<size_t>(given[i] - written.data()));
        result.arguments.push_back(std::move(*argument));
    }
    return stop(Stage::fits, 0, 0);
}

bool comes_further(const Attempt &attempt, const Attempt &other) {
    if (attempt.stage != other.stage) return attempt.stage > other.stage;
    if (attempt.stage == Stage::fits) return attempt.arguments.size() < other.arguments.size();
    return attempt.argument > other.argument;
}

// The forms that can be steps are tried; a method without one says why.
Attempt choose(const Method &method, const std::vector<WrittenArgument> &written, const KeptNames &kept) {
    Attempt best;
    for (const Form &form : method.forms) {
        if (!form.obstacle().empty()) continue;
        Attempt next = attempt(method, form, written, kept);
        if (best.form == nullptr || comes_further(next, best)) best = std::move(next);
    }
    if (best.form == nullptr)
        fail(Exit::usage,
             "it cannot be a step: it " + method.forms.front().obstacle() + "; 'kzb list' shows the methods that can");
    if (best.stage != Stage::fits) tell_mistake(method, best, written, kept);
    return best;
}

// A word of a step for people to read: long arrays are cut.
std::string shortened(const std::string &word) {
    constexpr size_t most = 60, start = 40, end = 15;
    if (word.size() <= most) return word;
    return word.substr(0, start) + "..." + word.substr(word.size() - end);
}

std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words) {
        if (!text.empty()) text += ' ';
        text += shortened(word);
    }
    return text;
}

std::string checked_name(const std::string &word) {
    const std::string name = word.substr(1);
    if (!is_name(name)) fail(Exit::usage, "'" + word + "' needs a name of letters, digits and '_' after its sign");
    return name;
}

// A step that is a name alone: "=name" or "@name".
PlannedStep plan_name(PlannedStep step, const std::vector<std::string> &words, KeptNames &kept) {
    if (words.size() > 1)
        fail(Exit::usage, "'" + words[1] + "' is more than it takes; a name stands alone in its step");
    step.name = checked_name(words[0]);
    step.kind = words[0][0] == '=' ? StepKind::keep : StepKind::recall;
    if (step.kind == StepKind::keep) {
        kept[step.name] = picture_class;
    } else {
        const auto known = kept.find(step.name);
        if (known == kept.end()) fail(Exit::usage, unknown_kept(step.name, kept));
        if (known->second != picture_class) fail(Exit::usage, step.name + " is a " + known->second + ", no picture");
    }
    return step;
}

PlannedStep plan_step(size_t number, const std::vector<std::string> &split_words, const Catalogue &catalogue,
                      KeptNames &kept) {
    std::vector<std::string> words = join_arrays(split_words);
    PlannedStep step = {.number = number, .written = joined(words)};
    if (words[0].starts_with('=') || words[0].starts_with('@')) return plan_name(std::move(step), words, kept);
    const std::string name = words[0];
    const Method *method = catalogue.method(name);
    if (method == nullptr) tell_no_method(name, catalogue);
    if (words.size() > 1 && words.back().starts_with('=')) {
        step.name = checked_name(words.back());
        words.pop_back();
    }
    std::vector<WrittenArgument> written;
    for (size_t i = 1; i < words.size(); ++i) {
        written.push_back(read_argument(words[i], catalogue));
        if (i > 1 && written[i - 1].name.empty() && !written[i - 2].name.empty())
            fail(Exit::usage, "'" + words[i] + "' has no name but stands after a named argument; put it before");
    }
    Attempt chosen = choose(*method, written, kept);
    step.form = chosen.form;
    step.arguments = std::move(chosen.arguments);
    step.assigned = std::move(chosen.assigned);
    if (!step.assigned.empty()) {
        const auto known = kept.find(step.assigned);
        if (known == kept.end()) fail(Exit::usage, unknown_kept(step.assigned, kept));
        if (!same_name(known->second, step.form->declaration.result_name))
            fail(Exit::usage, std::string("the argument value must be a ") + step.form->declaration.result_name +
                                  ", and " + step.assigned + " is a " + known->second);
        if (!step.name.empty()) fail(Exit::usage, "it takes a value and so gives none to keep as " + step.name);
    } else if (step.form->gives_other() && step.name.empty()) {
        fail(Exit::usage, std::string("it gives a ") + step.form->declaration.result_name +
                              ", with which a chain cannot go on; keep it under a name" + usages(*method));
    }
    if (!step.name.empty())
        kept[step.name] = step.form->gives_other() ? step.form->declaration.result_name : picture_class;
    return step;
}

} // namespace

std::optional<int64_t> PlannedStep::integer(std::string_view wanted) const {
    for (const PlannedArgument &argument : arguments)
        if (same_name(argument.name, wanted)) return argument.value.get().integer;
    return std::nullopt;
}

bool PlannedStep::writes_new_picture() const {
    return std::any_of(arguments.begin(), arguments.end(), [](const PlannedArgument &argument) {
        return argument.source == Source::chain_current && same_name(argument.name, "source");
    });
}

bool PlannedStep::changes_picture() const {
    if (kind != StepKind::call || writes_new_picture()) return false;
    return !assigned.empty() || form->declaration.result == KZB_TYPE_NONE ||
           form->declaration.result == KZB_TYPE_BOOLEAN;
}

std::vector<PlannedStep> plan_chain(const std::vector<std::vector<std::string>> &steps, const Catalogue &catalogue) {
    std::vector<PlannedStep> plan;
    KeptNames kept;
    for (size_t i = 0; i < steps.size(); ++i) {
        try {
            plan.push_back(plan_step(i + 1, steps[i], catalogue, kept));
        } catch (const Failure &failure) {
            fail(failure.exit, "step " + std::to_string(i + 1) + ", " + steps[i].front() + ": " + failure.message);
        }
    }
    return plan;
}

} // namespace kzb::cli
