// The manual page, from the command's own texts.
#include "guide.h"

#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/module_file.h"
#include "cli/notes/method_notes.h"
#include "cli/standard_output.h"

namespace kzb::cli::guide {

namespace {

// Text as roff prints it: a backslash and a dash as themselves, and no line taken for a request.
std::string plain(std::string_view text) {
    std::string roff;
    bool line_begins = true;
    for (const char letter : text) {
        if (line_begins && (letter == '.' || letter == '\'')) roff += "\\&";
        if (letter == '\\')
            roff += "\\e";
        else if (letter == '-')
            roff += "\\-";
        else if (letter == '\'')
            roff += "\\(aq";
        else
            roff += letter;
        line_begins = letter == '\n';
    }
    return roff;
}

std::string entry(const std::string &term, const std::string &sentence) {
    return ".TP\n.B " + plain(term) + "\n" + plain(sentence) + "\n";
}

std::string options_section() {
    std::string roff = ".SH OPTIONS\n";
    for (const OptionFact &fact : option_facts()) {
        std::string term;
        for (const std::string &name : fact.names) term += (term.empty() ? "" : ", ") + name;
        roff += entry(fact.type.empty() ? term : term + " " + fact.type, fact.sentence);
    }
    return roff;
}

std::string commands_section() {
    std::string roff = ".SH COMMANDS\nEach has a\n.B \\-\\-help\nof its own.\n";
    for (const Command &command : commands())
        roff +=
            entry(std::string("kzb ") + command.name + (*command.usage ? " " : "") + command.usage, command.sentence);
    return roff;
}

std::string methods_section(const Catalogue &catalogue) {
    std::string roff = ".SH METHODS\nkzb help METHOD explains one of them.\n";
    for (const Family &family : families()) {
        roff += ".SS " + plain(family.title) + "\n";
        for (const MethodNote &note : family.methods)
            if (const Method *method = catalogue.method(note.name)) roff += entry(method->name, note.sentence);
    }
    return roff;
}

} // namespace

Exit run_manual(const Words &words) {
    CommandOptions options("manual", "kzb manual prints the manual page: kzb manual | man -l -");
    if (!options.parse(words)) return Exit::done;
    std::string roff = ".TH KZB 1 \"\" \"kzb " KZB_VERSION "\" \"User commands\"\n"
                       ".SH NAME\nkzb \\- send pictures through a chain of the methods of PictureKZB\n"
                       ".SH SYNOPSIS\n.nf\n";
    roff += plain(usage_text()) + ".fi\n.SH DESCRIPTION\n" + plain(description()) + "\n";
    roff += options_section() + commands_section();
    roff += ".SH NOTES\n.nf\n" + plain(notes()) + ".fi\n";
    print(roff + methods_section(load_module(options.module).catalogue));
    return Exit::done;
}

} // namespace kzb::cli::guide
