#include "plan_mistakes.h"

#include "notes/method_notes.h"
#include "runtime/names.h"

#include <algorithm>
#include <set>

namespace kzb::cli {

namespace {

// A sentence and the ways to write the step.
std::string with_usage(const std::string &sentence, const Method &method) {
    std::string usage = usages(method);
    if (sentence.ends_with('?') && usage.starts_with("; w")) usage = " W" + usage.substr(3);
    return sentence + usage;
}

// What a parameter expects: "a whole number", "a kept picture, @name".
std::string expected(const Method &method, const kzb_parameter &parameter) {
    if (const char *constants = constants_wanted(method, parameter))
        return std::string("a constant ") + constants + "... or its number";
    if (parameter.type != KZB_TYPE_OBJECT) return describe(parameter.type);
    if (same_name(parameter.type_name, "FolderItem")) return "the path of a file that does not exist";
    const bool optional = same_name(parameter.name, "dest") || same_name(parameter.name, "temp");
    if (same_name(parameter.type_name, "MemoryBlock")) return "a kept memory block, @name";
    return optional ? "a kept picture, @name, or nil" : "a kept picture, @name";
}

std::string no_fit(const Method &method, const kzb_parameter &parameter, const WrittenArgument &argument,
                   const KeptNames &kept) {
    std::string text = std::string("the argument ") + parameter.name + " must be " + expected(method, parameter);
    if (!argument.problem.empty()) return text + "; " + argument.problem;
    if (!argument.reference.empty() && !kept.contains(argument.reference))
        return text + "; " + unknown_kept(argument.reference, kept);
    if (!argument.reference.empty() && parameter.type == KZB_TYPE_OBJECT)
        return text + ", and " + argument.reference + " is a " + kept.find(argument.reference)->second;
    return text + ", not '" + argument.text + "'";
}

// A text that is no value is told first, whatever else is wrong.
void tell_unreadable(const Method &method, const Attempt &attempt, const std::vector<WrittenArgument> &written,
                     const KeptNames &kept) {
    for (const WrittenArgument &argument : written) {
        if (argument.problem.empty()) continue;
        const bool told_below =
            attempt.stage == Stage::no_fit && &argument == &written[attempt.argument] && !argument.problem.empty();
        if (told_below) return;
        if (!argument.name.empty()) {
            const kzb_declaration &declaration = attempt.form->declaration;
            for (size_t i = 0; i < declaration.parameter_count; ++i)
                if (same_name(declaration.parameters[i].name, argument.name))
                    fail(Exit::usage, with_usage(no_fit(method, declaration.parameters[i], argument, kept), method));
        }
        if (attempt.stage == Stage::unknown_name && &argument == &written[attempt.argument]) return;
        fail(Exit::usage, with_usage(argument.problem, method));
    }
}

} // namespace

bool NameOrder::operator()(const std::string &a, const std::string &b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
        return lower(x) < lower(y);
    });
}

const char *constants_wanted(const Method &method, const kzb_parameter &parameter) {
    return parameter.type == KZB_TYPE_INTEGER ? constants_for(method.name, parameter.name) : nullptr;
}

std::string usages(const Method &method) {
    constexpr size_t most = 4;
    std::string text;
    std::set<std::string> told;
    for (const Form &form : method.forms) {
        if (!form.obstacle().empty() || !told.insert(form.usage()).second) continue;
        if (told.size() <= most) text += (text.empty() ? "; write " : ", or ") + form.usage();
    }
    if (told.size() <= most) return text;
    return text + ", or one of " + std::to_string(told.size() - most) + " other forms: 'kzb help " + method.name + "'";
}

std::string unknown_kept(const std::string &name, const KeptNames &kept) {
    Suggestion suggestion(name);
    for (const auto &[known, type] : kept) suggestion.consider(known.c_str());
    std::string hint = suggestion.hint();
    if (hint.empty()) hint = "; ': =" + name + "' as a step of its own keeps the current picture";
    return "no step before keeps anything as " + name + hint;
}

void tell_mistake(const Method &method, const Attempt &attempt, const std::vector<WrittenArgument> &written,
                  const KeptNames &kept) {
    tell_unreadable(method, attempt, written, kept);
    const kzb_declaration &declaration = attempt.form->declaration;
    const kzb_parameter &parameter = declaration.parameters[attempt.parameter];
    const std::string name = parameter.name;
    switch (attempt.stage) {
    case Stage::unknown_name: {
        const std::string &unknown = written[attempt.argument].name;
        Suggestion suggestion(unknown);
        for (const Form &form : method.forms)
            for (size_t i = 0; i < form.declaration.parameter_count; ++i)
                suggestion.consider(form.declaration.parameters[i].name);
        fail(Exit::usage, with_usage("it has no argument named " + unknown + suggestion.hint(), method));
    }
    case Stage::too_many:
        fail(Exit::usage, "'" + written[attempt.argument].text + "' is more than it takes" + usages(method));
    case Stage::given_twice:
        fail(Exit::usage, "the argument " + name + " is given twice" + usages(method));
    case Stage::missing:
        fail(Exit::usage,
             "the argument " + name + " (" + expected(method, parameter) + ") is missing" + usages(method));
    case Stage::no_fit:
        if (attempt.parameter == declaration.parameter_count)
            fail(Exit::usage, std::string("the argument value must be a kept ") + declaration.result_name +
                                  ", @name, not '" + written[attempt.argument].text + "'");
        fail(Exit::usage, with_usage(no_fit(method, parameter, written[attempt.argument], kept), method));
    case Stage::fits:
        break;
    }
    fail(Exit::usage, "it cannot be used" + usages(method));
}

void tell_no_method(const std::string &name, const Catalogue &catalogue) {
    if (name.find_first_of(" \t") != name.npos)
        fail(Exit::usage, "this is one word to kzb; leave out the quotes around a step");
    std::string hint = catalogue.method_hint(name);
    if (hint.empty()) hint = "; 'kzb list' shows the methods";
    fail(Exit::usage, std::string(picture_class) + " has no such method" + hint);
}

} // namespace kzb::cli
