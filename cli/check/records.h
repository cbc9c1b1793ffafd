// Walks over registration records in whatever state they are, and names them in findings.
#pragma once

#include "check.h"
#include "process.h"
#include "started_module.h"

#include <picturekzb/runtime.h>

namespace kzb::cli::check {

// "class PictureKZB", or "class 1" where a name is missing.
std::string name_of(const StartedModule &module, size_t class_index);

// One table of methods, shared methods or events: every declaration in it, nil ones too.
struct Declarations {
    std::string table; // "class PictureKZB, method"
    const ClassDefinition *of;
    std::vector<const char *> texts;
    const MethodDefinition *methods; // nil: events
};

// The tables of declarations of every class. A table that is nil or of a negative count is empty.
std::vector<Declarations> declarations_of(const StartedModule &module);

// The records of a table; none when the table is nil or its count negative.
template <class Record> std::span<const Record> records(const Record *table, kzb_word count) {
    if (!table || count < 0) return {};
    return {table, static_cast<size_t>(count)};
}

// Whether a name is a type of the language, a class of the host or of the module.
bool is_known_type(const StartedModule &module, const char *name);

// Whether the host has a type or class of this name itself.
bool is_host_type(const char *name);

// The type that a name stands for; KZB_TYPE_NONE for a text that is no name.
kzb_type type_named(const char *name);

// The class definitions that are not nil, each with its name in findings.
struct NamedClass {
    std::string name;
    const ClassDefinition *definition;
};
std::vector<NamedClass> classes_of(const StartedModule &module);

} // namespace kzb::cli::check
