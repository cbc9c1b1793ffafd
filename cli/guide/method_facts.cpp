#include "method_facts.h"

#include "text.h"

#include "cli/argument_text.h"
#include "runtime/names.h"

#include <algorithm>

namespace kzb::cli::guide {

namespace {

template <class T> void add_once(std::vector<T> &list, T entry) {
    if (std::find(list.begin(), list.end(), entry) == list.end()) list.push_back(std::move(entry));
}

std::string type_text(const kzb_parameter &parameter, const Method &method) {
    if (constants_for(method.name, parameter.name) != nullptr) return "a constant, or its number";
    if (parameter.type == KZB_TYPE_OBJECT && same_name(parameter.type_name, "FolderItem")) return "a path";
    if (parameter.type == KZB_TYPE_OBJECT)
        return std::string("@NAME of a kept ") +
               (same_name(parameter.type_name, "MemoryBlock") ? "memory block" : "picture");
    if (parameter.type == KZB_TYPE_INTEGER) return "a whole number";
    return describe(parameter.type);
}

std::string argument_text(const kzb_parameter &parameter, const Method &method) {
    std::string text = type_text(parameter, method);
    if (const char *takes = note_on_argument(method.name, parameter.name)) text += std::string(": ") + takes;
    return parameter.has_default ? text + "; " + parameter.default_text + " when not given" : text;
}

std::string supplied_text(size_t place, const Form &form) {
    switch (form.giver_of(place)) {
    case Giver::chain_current:
        return "the current picture, from which the step makes a new one; source=@NAME takes another one, and the step "
               "writes to the current picture";
    case Giver::chain_new:
        return "a new picture of the current picture's size and layout";
    case Giver::chain_nil:
    case Giver::user:
        break;
    }
    return same_name(form.declaration.parameters[place].name, "dest") ? "nil: the result is a new picture"
                                                                      : "nil: made and dropped again";
}

std::string result_text(const Form &form) {
    const kzb_declaration &declaration = form.declaration;
    if (!form.obstacle().empty())
        return declaration.result == KZB_TYPE_NONE ? "nothing" : std::string("a ") + declaration.result_name;
    if (form.gives_other())
        return std::string("a ") + declaration.result_name + ", kept as NAME; nil: the chain ends with exit code 1";
    if (same_name(declaration.name, "Constructor"))
        return "the new current picture; not Valid: the chain ends with exit code 1";
    if (declaration.result == KZB_TYPE_BOOLEAN) return "true: done; false: the chain ends with exit code 1";
    if (declaration.result == KZB_TYPE_OBJECT) return "the new current picture; nil: the chain ends with exit code 1";
    return form.writes_new_picture() ? "nothing" : "nothing; the current picture itself is changed";
}

} // namespace

MethodFacts facts_of(const Method &method, const Catalogue &catalogue) {
    MethodFacts facts = {method.name, note_on(method.name), {}, {}, {}, {}, {}, {}, {}};
    for (const Form &form : method.forms) {
        add_once(facts.declarations, std::string(form.text));
        const std::string obstacle = form.obstacle();
        if (obstacle.empty())
            add_once(facts.steps, form.usage());
        else
            facts.obstacle = obstacle;
        for (size_t i = 0; i < form.declaration.parameter_count; ++i) {
            const kzb_parameter &parameter = form.declaration.parameters[i];
            if (form.giver_of(i) == Giver::user)
                add_once(facts.arguments, {parameter.name, argument_text(parameter, method)});
            else
                add_once(facts.supplied, {parameter.name, supplied_text(i, form)});
            const char *kind = constants_for(method.name, parameter.name);
            for (const Constant &constant : catalogue.constants())
                if (kind != nullptr && constant.name.starts_with(kind)) add_once(facts.constants, constant.name);
        }
        add_once(facts.results, result_text(form));
    }
    return facts;
}

} // namespace kzb::cli::guide
