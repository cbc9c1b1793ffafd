#include "guide.h"

#include "text.h"

#include "cli/command_options.h"
#include "cli/module_file.h"
#include "cli/notes/method_notes.h"
#include "cli/standard_output.h"

#include <algorithm>
#include <set>

namespace kzb::cli::guide {

namespace {

bool contains(std::string_view text, std::string_view word) {
    const auto same = [](char a, char b) { return lower(a) == lower(b); };
    return std::search(text.begin(), text.end(), word.begin(), word.end(), same) != text.end();
}

bool is_about(const MethodNote &note, std::string_view word) {
    return contains(note.name, word) || contains(note.sentence, word) || contains(note.also, word);
}

// A family's lines; only of what has to do with the word.
std::string family_lines(const Family &family, const Catalogue &catalogue, std::string_view word, size_t width) {
    const bool whole = contains(family.title, word);
    std::string lines;
    for (const MethodNote &note : family.methods) {
        const Method *method = catalogue.method(note.name);
        if (method == nullptr || !(whole || is_about(note, word))) continue;
        lines += (can_be_step(*method) ? "  " : "* ") + padded(method->name, width) + note.sentence + "\n";
    }
    return lines.empty() ? "" : std::string("\n") + family.title + "\n" + lines;
}

} // namespace

Exit run_list(const Words &words) {
    std::string word;
    CommandOptions options("list", "kzb list names the methods of PictureKZB, a line each.");
    options.take("WORD", word, "Only families and methods that have to do with this");
    if (!options.parse(words)) return Exit::done;

    const Catalogue catalogue = load_module(options.module).catalogue;
    size_t width = 0;
    for (const Method &method : catalogue.methods()) width = std::max(width, method.name.size() + 2);
    std::string lines;
    for (const Family &family : families()) lines += family_lines(family, catalogue, word, width);
    // Of another module there may be methods that no note tells about.
    std::string others;
    for (const Method &method : catalogue.methods())
        if (note_on(method.name) == nullptr && contains(method.name, word))
            others += (can_be_step(method) ? "  " : "* ") + method.name + "\n";
    if (!others.empty()) lines += "\nOthers\n" + others;
    if (lines.empty())
        fail(Exit::usage, "no method has to do with '" + word + "'" + catalogue.method_hint(word) +
                              (catalogue.method_hint(word).empty() ? "; 'kzb list' shows all" : ""));
    const bool marked = lines.find("\n* ") != lines.npos;
    print(std::string("The methods of PictureKZB. 'kzb help METHOD' explains one") +
          (marked ? "; those marked * cannot be steps of a chain.\n" : ".\n") + lines);
    return Exit::done;
}

} // namespace kzb::cli::guide
