#include "help.h"

#include "guide.h"
#include "method_facts.h"
#include "text.h"

#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/failure.h"
#include "cli/module_file.h"
#include "cli/standard_output.h"

#include <algorithm>

namespace kzb::cli::guide {

namespace {

std::string section(const char *title, const std::vector<std::string> &lines, const char *before = "") {
    std::string text;
    for (const std::string &line : lines) text += wrapped(before + line, 2, 4);
    return text.empty() ? text : std::string("\n") + title + "\n" + text;
}

std::string section(const char *title, const std::vector<ArgumentFact> &arguments) {
    size_t width = 0;
    for (const ArgumentFact &argument : arguments) width = std::max(width, argument.name.size() + 2);
    std::string text;
    for (const ArgumentFact &argument : arguments)
        text += wrapped(padded(argument.name, width) + argument.text, 2, width + 2);
    return text.empty() ? text : std::string("\n") + title + "\n" + text;
}

std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

// Lines as they stand, for copying.
std::string lines_text(const char *title, std::string lines) {
    for (size_t end = lines.find('\n'); end != lines.npos; end = lines.find('\n', end + 3)) lines.insert(end + 1, "  ");
    return std::string("\n") + title + "\n  " + lines + "\n";
}

} // namespace

std::string help_text(const std::string &name, const Catalogue &catalogue) {
    const Method *method = catalogue.method(name);
    if (method == nullptr) {
        const std::string hint = catalogue.method_hint(name);
        fail(Exit::usage, std::string(picture_class) + " has no method " + name +
                              (hint.empty() ? "; 'kzb list' shows the methods" : hint));
    }
    const MethodFacts facts = facts_of(*method, catalogue);
    std::string text = facts.name + (facts.note == nullptr ? "\n" : std::string(": ") + facts.note->sentence + "\n");
    if (facts.steps.empty())
        text += section("As a step", std::vector<std::string>{"none: it " + facts.obstacle});
    else
        text += section("As a step", facts.steps, ": ");
    text += section("Arguments", facts.arguments) + section("Supplied by the chain", facts.supplied) +
            section("Result", facts.results);
    if (facts.note != nullptr && facts.note->remark != nullptr) text += "\nNote\n" + wrapped(facts.note->remark, 2);
    if (facts.note != nullptr) text += lines_text("Example", facts.note->example);
    if (facts.note != nullptr && facts.note->program != nullptr)
        text += lines_text("In a C program with the embedded host", facts.note->program);
    if (!facts.constants.empty()) text += "\nConstants\n" + wrapped(joined(facts.constants), 2);
    std::string declared;
    for (const std::string &declaration : facts.declarations) declared += "  " + declaration + "\n";
    return text + "\nDeclared as\n" + declared;
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
