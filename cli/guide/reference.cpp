// docs/reference.md, from what the module registers and the notes.
#include "guide.h"
#include "method_facts.h"
#include "text.h"

#include "cli/command_options.h"
#include "cli/module_file.h"
#include "cli/notes/class_notes.h"
#include "cli/standard_output.h"

namespace kzb::cli::guide {

namespace {

constexpr const char *introduction =
    R"(# Reference

Every class, method, property and constant of the module, as it registers them. `kzb reference` prints this page.

Command lines run as they stand in a folder with the pictures `photo.jpg`, without alpha, and `photo.png`, with alpha.
`kzb help METHOD` shows the same for one method, with what a chain supplies by itself. The examples in C stand in a
program with the embedded host ([runtime.md](runtime.md)): `image` is a `PictureKZB`, `picture` a picture of the host,
and `integer(n)` makes a value of a number. Names are the same in upper and lower case.

)";

std::string code(const std::string &text, size_t indent = 4) {
    std::string lines(indent, ' ');
    for (const char letter : text) {
        lines += letter;
        if (letter == '\n') lines.append(indent, ' ');
    }
    return lines + "\n";
}

std::string argument_rows(const std::vector<ArgumentFact> &arguments) {
    std::string rows;
    for (const ArgumentFact &argument : arguments) rows += "| `" + argument.name + "` | " + argument.text + " |\n";
    return rows.empty() ? "" : "\n| argument | |\n|---|---|\n" + rows;
}

std::string method_entry(const Method &method, const MethodNote &note, const Catalogue &catalogue) {
    const MethodFacts facts = facts_of(method, catalogue);
    std::string text = "\n### " + facts.name + "\n\n" + note.sentence + "\n\n";
    for (const std::string &declaration : facts.declarations) text += code(declaration);
    text += argument_rows(facts.arguments);
    if (note.remark != nullptr) text += std::string("\n") + note.remark + "\n";
    text.append("\n").append(code(note.example));
    if (note.program != nullptr) text.append("\n```c\n").append(note.program).append("\n```\n");
    return text;
}

std::string contents(const Catalogue &catalogue) {
    std::string text;
    for (const Family &family : families()) {
        std::string links;
        for (const MethodNote &note : family.methods)
            if (const Method *method = catalogue.method(note.name))
                links += (links.empty() ? "" : ", ") + ("[" + method->name + "](#") + lower(method->name) + ")";
        text += std::string("- ") + family.title + ": " + links + "\n";
    }
    return text + "- [Properties](#properties), [constants](#constants), [shared methods](#shared-methods), "
                  "[PictureFactoryKZB](#picturefactorykzb)\n";
}

const char *access_of(const PropertyDefinition &property) {
    return property.setter == nullptr ? "read" : "read, write";
}

std::string property_table(const ClassDefinition &definition) {
    std::string text = "\n## Properties\n\n| property | type | | |\n|---|---|---|---|\n";
    for (kzb_word i = 0; i < definition.property_count; ++i) {
        const PropertyDefinition &property = definition.properties[i];
        const char *note = note_on_property(property.name);
        text += std::string("| `") + property.name + "` | " + property.type_name + " | " + access_of(property) + " | " +
                (note != nullptr ? note : "") + " |\n";
    }
    return text;
}

std::string constant_tables(const Catalogue &catalogue) {
    std::string text = "\n## Constants\n";
    for (const ConstantGroup &group : constant_groups()) {
        text += std::string("\n### ") + group.title + "\n\n" + group.sentence + "\n\n| constant | value |\n|---|---|\n";
        for (const Constant &constant : catalogue.constants())
            if (constant.name.starts_with(group.prefix))
                text += "| `" + constant.name + "` | " + std::to_string(constant.value) + " |\n";
    }
    return text;
}

std::string declared(const char *declaration) {
    const std::string_view text = declaration;
    const char *note = note_on_shared(text.substr(0, text.find_first_of("( ")));
    return code(declaration) + (note != nullptr ? std::string("\n") + note + "\n" : "");
}

std::string shared_methods(const ClassDefinition &definition) {
    std::string text = "\nShared methods:\n\n";
    for (kzb_word i = 0; i < definition.shared_method_count; ++i)
        text += declared(definition.shared_methods[i].declaration);
    return text;
}

std::string factory_entry(const ClassDefinition &definition) {
    std::string text = std::string("\n## ") + definition.name + "\n\n" + note_on_class(definition.name) +
                       " [factories.md](factories.md) tells how.\n\nEvents:\n\n";
    for (kzb_word i = 0; i < definition.event_count; ++i) text += declared(definition.events[i].declaration);
    return text + shared_methods(definition);
}

} // namespace

Exit run_reference(const Words &words) {
    CommandOptions options("reference", "kzb reference prints the reference of all classes as Markdown.");
    if (!options.parse(words)) return Exit::done;
    const LoadedModule loaded = load_module(options.module);

    std::string text = introduction + contents(loaded.catalogue);
    for (const Family &family : families()) {
        text += std::string("\n## ") + family.title + "\n\n[With pictures](families/" + family.page + ".md).\n";
        for (const MethodNote &note : family.methods)
            if (const Method *method = loaded.catalogue.method(note.name))
                text += method_entry(*method, note, loaded.catalogue);
    }
    for (size_t i = 0; const ClassDefinition *definition = kzb_module_class(loaded.module, i); ++i) {
        if (definition->event_count > 0) {
            text += factory_entry(*definition);
            continue;
        }
        text += property_table(*definition) + constant_tables(loaded.catalogue) + "\n## Shared methods\n" +
                shared_methods(*definition).substr(sizeof "\nShared methods:\n" - 1);
    }
    print(text);
    return Exit::done;
}

} // namespace kzb::cli::guide
