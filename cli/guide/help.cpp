#include "help.h"

#include "guide.h"
#include "text.h"

#include "cli/argument_text.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/failure.h"
#include "cli/module_file.h"
#include "cli/notes/method_notes.h"
#include "cli/standard_output.h"
#include "runtime/names.h"

#include <algorithm>
#include <set>

namespace kzb::cli::guide {

namespace {

// Lines of a section, each told once.
class Section {
public:
    explicit Section(const char *title) : title_(title) {}

    void add(const std::string &line) {
        if (told_.insert(line).second) lines_ += "  " + line + "\n";
    }

    std::string text() const { return lines_.empty() ? "" : std::string("\n") + title_ + "\n" + lines_; }

private:
    const char *title_;
    std::set<std::string> told_;
    std::string lines_;
};

size_t longest_name(const Method &method) {
    size_t longest = 0;
    for (const Form &form : method.forms)
        for (size_t i = 0; i < form.declaration.parameter_count; ++i)
            longest = std::max(longest, std::string_view(form.declaration.parameters[i].name).size());
    return longest;
}

std::string describe_argument(const kzb_parameter &parameter, const Method &method) {
    std::string text = describe(parameter.type);
    if (parameter.type == KZB_TYPE_OBJECT) text = std::string("a ") + parameter.type_name;
    if (parameter.type == KZB_TYPE_INTEGER) text = "a whole number";
    if (constants_for(method.name, parameter.name) != nullptr) text = "one of the constants below, or its number";
    return parameter.has_default ? text + "; " + parameter.default_text + " when not given" : text;
}

std::string describe_supplied(size_t place, const Form &form) {
    const bool dest = same_name(form.declaration.parameters[place].name, "dest");
    if (form.giver_of(place) == Giver::chain_nil)
        return dest ? "nil: the result is a new picture" : "nil: made and dropped again";
    if (form.giver_of(place) == Giver::chain_new) return "a new picture of the current picture's size and layout";
    return form.writes_new_picture() ? "the current picture; the step writes a new one, with which the chain goes on"
                                     : "the current picture";
}

std::string describe_result(const Form &form) {
    const kzb_declaration &declaration = form.declaration;
    if (!form.obstacle().empty())
        return declaration.result == KZB_TYPE_NONE ? "nothing" : std::string("a ") + declaration.result_name;
    if (declaration.result == KZB_TYPE_BOOLEAN) return "true: done; false: the chain ends with exit code 1";
    if (declaration.result == KZB_TYPE_OBJECT) return "the new current picture; nil: the chain ends with exit code 1";
    return form.writes_new_picture() ? "nothing" : "nothing; the current picture itself is changed";
}

// Line after line of constants of one kind.
std::string constants_text(const Method &method, const Catalogue &catalogue) {
    std::set<std::string> kinds;
    for (const Form &form : method.forms)
        for (size_t i = 0; i < form.declaration.parameter_count; ++i)
            if (const char *kind = constants_for(method.name, form.declaration.parameters[i].name)) kinds.insert(kind);
    std::string names;
    for (const std::string &kind : kinds)
        for (const Constant &constant : catalogue.constants())
            if (constant.name.starts_with(kind)) names += (names.empty() ? "" : " ") + constant.name;
    return names.empty() ? "" : "\nConstants\n" + wrapped(names, 2);
}

} // namespace

std::string help_text(const std::string &name, const Catalogue &catalogue) {
    const Method *method = catalogue.method(name);
    if (method == nullptr) {
        const std::string hint = catalogue.method_hint(name);
        fail(Exit::usage, std::string(picture_class) + " has no method " + name +
                              (hint.empty() ? "; 'kzb list' shows the methods" : hint));
    }
    const size_t width = longest_name(*method) + 2;
    Section declared("Declared as"), steps("As a step"), arguments("Arguments"), supplied("Supplied by the chain"),
        results("Result");
    std::string obstacles;
    for (const Form &form : method->forms) {
        const std::string obstacle = form.obstacle();
        declared.add(form.text);
        if (obstacle.empty())
            steps.add(": " + form.usage());
        else
            obstacles = "none: it " + obstacle;
        for (size_t i = 0; i < form.declaration.parameter_count; ++i) {
            const kzb_parameter &parameter = form.declaration.parameters[i];
            const bool given = form.giver_of(i) == Giver::user;
            (given ? arguments : supplied)
                .add(padded(parameter.name, width) +
                     (given ? describe_argument(parameter, *method) : describe_supplied(i, form)));
        }
        results.add(describe_result(form));
    }
    if (!can_be_step(*method)) steps.add(obstacles);
    const MethodNote *note = note_on(method->name);
    std::string text = method->name + (note == nullptr ? "\n" : std::string(": ") + note->sentence + "\n");
    text += steps.text() + arguments.text() + supplied.text() + results.text();
    if (note != nullptr && note->remark != nullptr) text += "\nNote\n" + wrapped(note->remark, 2);
    return text + constants_text(*method, catalogue) + declared.text();
}

Exit run_help(const Words &words) {
    std::string subject;
    CommandOptions options("help",
                           "kzb help METHOD explains one method of PictureKZB: what it does, how it is written as "
                           "a step, its\narguments and an example. Without METHOD it explains kzb itself.");
    options.take("METHOD", subject, "A method, as 'kzb list' names them, or a command of kzb");
    if (!options.parse(words)) return Exit::done;
    if (subject.empty()) {
        const char *const ask[] = {"kzb", "--help"};
        print(parse_command_line(2, ask).text);
        return Exit::done;
    }
    for (const Command &command : commands())
        if (subject == command.name) return command.run({"--help"});
    print(help_text(subject, load_module(options.module).catalogue));
    return Exit::done;
}

} // namespace kzb::cli::guide
